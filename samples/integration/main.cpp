// A host in some forty lines: loads the plug-in, shows its dialog until it is closed, and saves.
//
//     integration <plug-in library> <configuration directory>
//
// Ends with 1 where its command line is wrong, 2 where the configuration cannot be used, as while another host works on
// it, 3 where the plug-in cannot, and 4 where something could not be saved.

#include "platform/cfgcenter.h"
#include "platform/idllinstance.h"
#include "platform/instancelock.h"
#include "platform/translationcenter.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>

#include <cstdio>
#include <memory>

#ifdef Q_OS_WIN // here, so that the example is one file
#include <windows.h>
#endif

static int Fail(int code, const QString& why)
{
    std::fprintf(stderr, "integration: %s\n", qPrintable(why));
    return code;
}

static QDialog* FindDialog()
{
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->objectName() == QLatin1String("VexelConnectDlgGUI"))
            return qobject_cast<QDialog*>(window);
    return nullptr;
}

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3)
        return Fail(1, QStringLiteral("usage: integration <plug-in library> <configuration directory>"));

    // The installed tree that the plug-in belongs to; a host that lies elsewhere names what it needs of it.
    const QFileInfo plugin(arguments[1]);
    const QDir tree(QDir::cleanPath(plugin.absolutePath() + QStringLiteral("/../..")));
    TranslationCenter::Instance().SetDirectory(tree.filePath(QStringLiteral("share/vexel/translations")));
#ifdef Q_OS_WIN
    const QString libraries = QDir::toNativeSeparators(tree.filePath(QStringLiteral("bin")));
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    AddDllDirectory(reinterpret_cast<const wchar_t*>(libraries.utf16()));
#endif

    // Two hosts on one configuration would undo what the other stores.
    InstanceLock lock;
    if (lock.TryLock(arguments[2]) != InstanceLock::Result::Locked)
        return Fail(2, lock.ErrorText());
    if (!CfgCenter::Open(arguments[2]))
        return Fail(2, CfgCenter::OpenError());

    // By its absolute path: a bare name would be looked for in places that others can write to.
    QLibrary library(plugin.absoluteFilePath());
    const auto create = reinterpret_cast<IDllInstance* (*)(const wchar_t*)>(library.resolve("ARCreateEx"));
    const auto destroy = reinterpret_cast<void (*)(IDllInstance*)>(library.resolve("ARDestroy"));
    if (!create || !destroy)
        return Fail(3, QStringLiteral("no plug-in: %1").arg(library.errorString()));

    std::unique_ptr<IDllInstance, void (*)(IDllInstance*)> instance(create(L"VexelConnectDlg"), destroy);
    if (!instance || !instance->IsAvailable())
        return Fail(3, QStringLiteral("the plug-in cannot be used"));
    QDialog* const dialog = FindDialog();
    if (!dialog)
        return Fail(3, QStringLiteral("the plug-in has no connect dialog"));

    // Both buttons hide the dialog, the one to be called back, the other for good, as do Escape and the title bar.
    const auto button = [dialog](const char* name) {
        return dialog->findChild<QAbstractButton*>(QLatin1String(name));
    };
    QObject::connect(button("m_pConnectButton"), &QAbstractButton::clicked, dialog, &QWidget::show);
    QObject::connect(button("m_pCloseButton"), &QAbstractButton::clicked, &application, &QApplication::quit);
    QObject::connect(dialog, &QDialog::rejected, &application, &QApplication::quit);
    // A session of the system that ends waits for this, and for nothing that comes later.
    const auto save = [&instance] {
        instance->SaveSettings();
        return CfgCenter::SaveDocument();
    };
    QObject::connect(&application, &QGuiApplication::commitDataRequest, dialog, save, Qt::DirectConnection);
    dialog->show();
    QApplication::exec();

    save();
    instance.reset(); // stores once more what ended with it
    return CfgCenter::SaveDocument() ? 0 : Fail(4, QStringLiteral("the configuration could not be saved"));
}
