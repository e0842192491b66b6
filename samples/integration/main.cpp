// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// A minimal host: loads the plug-in, shows its dialog until it is closed, and saves.
//
//     integration <plug-in library> <configuration directory>
//
// Exit codes: 1 invalid command line, 2 the configuration cannot be used, for example because another host uses it, 3
// the plug-in cannot be used, 4 something could not be saved.

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

#ifdef Q_OS_WIN // inline, so that the example is one file
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

    // The installed tree of the plug-in; a host installed elsewhere has to name these directories.
    const QFileInfo plugin(arguments[1]);
    const QDir tree(QDir::cleanPath(plugin.absolutePath() + QStringLiteral("/../..")));
    TranslationCenter::Instance().SetDirectory(tree.filePath(QStringLiteral("share/vexel/translations")));
#ifdef Q_OS_WIN
    const QString libraries = QDir::toNativeSeparators(tree.filePath(QStringLiteral("bin")));
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    AddDllDirectory(reinterpret_cast<const wchar_t*>(libraries.utf16()));
#endif

    // Two hosts on one configuration would overwrite each other's changes.
    InstanceLock lock;
    if (lock.TryLock(arguments[2]) != InstanceLock::Result::Locked)
        return Fail(2, lock.ErrorText());
    if (!CfgCenter::Open(arguments[2]))
        return Fail(2, CfgCenter::OpenError());

    // An absolute path: a bare name would be searched in places that others can write to.
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

    // Both buttons hide the dialog. After "&Connect" it is shown again; "Close", Escape and the title bar quit.
    const auto button = [dialog](const char* name) {
        return dialog->findChild<QAbstractButton*>(QLatin1String(name));
    };
    QObject::connect(button("m_pConnectButton"), &QAbstractButton::clicked, dialog, &QWidget::show);
    QObject::connect(button("m_pCloseButton"), &QAbstractButton::clicked, &application, &QApplication::quit);
    QObject::connect(dialog, &QDialog::rejected, &application, &QApplication::quit);
    // At the end of a session this may be the last chance to save.
    const auto save = [&instance] {
        instance->SaveSettings();
        return CfgCenter::SaveDocument();
    };
    QObject::connect(&application, &QGuiApplication::commitDataRequest, dialog, save, Qt::DirectConnection);
    dialog->show();
    QApplication::exec();

    save();
    instance.reset(); // stores its settings once more
    return CfgCenter::SaveDocument() ? 0 : Fail(4, QStringLiteral("the configuration could not be saved"));
}
