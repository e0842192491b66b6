// A host in forty lines: loads the plug-in, shows its dialog until it is closed, and saves.
//
//     integration <plug-in library> <configuration directory>

#include "platform/cfgcenter.h"
#include "platform/idllinstance.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFileInfo>
#include <QLibrary>

#include <cstdio>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3 || !CfgCenter::Open(arguments[2]))
        return std::fputs("usage: integration <plug-in library> <configuration directory>\n", stderr), 1;

    // By its absolute path: a bare name would be looked for in places that others can write to.
    QLibrary library(QFileInfo(arguments[1]).absoluteFilePath());
    const auto create = reinterpret_cast<IDllInstance* (*)(const wchar_t*)>(library.resolve("ARCreateEx"));
    const auto destroy = reinterpret_cast<void (*)(IDllInstance*)>(library.resolve("ARDestroy"));
    if (!create || !destroy)
        return std::fprintf(stderr, "no plug-in: %s\n", qPrintable(library.errorString())), 2;

    IDllInstance* const instance = create(L"VexelConnectDlg");
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* const dialog = qobject_cast<QDialog*>(window);
        if (!dialog || dialog->objectName() != QLatin1String("VexelConnectDlgGUI"))
            continue;
        // Both buttons hide the dialog, the one to be called back, the other for good, as do Escape and the title bar.
        const auto button = [dialog](const char* name) {
            return dialog->findChild<QAbstractButton*>(QLatin1String(name));
        };
        QObject::connect(button("m_pConnectButton"), &QAbstractButton::clicked, dialog, &QWidget::show);
        QObject::connect(button("m_pCloseButton"), &QAbstractButton::clicked, &application, &QApplication::quit);
        QObject::connect(dialog, &QDialog::rejected, &application, &QApplication::quit);
        dialog->show();
    }
    QApplication::exec();

    instance->SaveSettings();
    destroy(instance); // stores once more what ended with it
    return CfgCenter::SaveDocument() ? 0 : 3;
}
