#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "platform/idllinstance.h"

#include <QApplication>
#include <QDialog>
#include <QLibrary>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

/// The built plug-in file: what it exports, and a life of it through these exports alone.
class tst_Plugin : public QObject
{
    Q_OBJECT

private slots:
    void exportsExactlyTwoFunctions();
    void livesThroughItsExports();

private:
    QDialog* FindDialog() const
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == QLatin1String("VexelConnectDlgGUI")) {
                return qobject_cast<QDialog*>(widget);
            }
        }
        return nullptr;
    }
};

void tst_Plugin::exportsExactlyTwoFunctions()
{
#ifdef Q_OS_WIN
    QSKIP("nm reads no export table of this system's libraries");
#else
    const QString nm = QStandardPaths::findExecutable(QStringLiteral("nm"));
    QVERIFY2(!nm.isEmpty(), "nm comes with the compiler");
    QProcess process;
    process.start(nm, {QStringLiteral("-D"), QStringLiteral("--defined-only"), QStringLiteral("--format=posix"),
                       QStringLiteral(VEXEL_PLUGIN)});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QStringList symbols;
    for (const QString& line : QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n'))) {
        if (!line.isEmpty()) {
            symbols += line.section(QLatin1Char(' '), 0, 1);
        }
    }
    symbols.sort();
    QCOMPARE(symbols, (QStringList{QStringLiteral("ARCreateEx T"), QStringLiteral("ARDestroy T")}));
#endif
}

void tst_Plugin::livesThroughItsExports()
{
    QLibrary library(QStringLiteral(VEXEL_PLUGIN));
    QVERIFY2(library.load(), qPrintable(library.errorString()));
    const auto create = reinterpret_cast<IDllInstance* (*)(const wchar_t*)>(library.resolve("ARCreateEx"));
    const auto destroy = reinterpret_cast<void (*)(IDllInstance*)>(library.resolve("ARDestroy"));
    QVERIFY(create && destroy);
    destroy(nullptr);

    IDllInstance* const instance = create(L"VexelConnectDlg \u00fc\u4e2d");
    QVERIFY(instance);
    QCOMPARE(instance->Name(), QStringLiteral("VexelConnectDlg \u00fc\u4e2d"));
    QVERIFY(instance->IsAvailable());
    instance->Notify();
    QVERIFY(FindDialog());
    QVERIFY(!FindDialog()->isVisible());
    FindDialog()->show();
    QVERIFY(QTest::qWaitForWindowExposed(FindDialog()));
    instance->SaveSettings();
    destroy(instance);
    QVERIFY(!FindDialog());

    // Its classes are gone before the file: nothing of it may run after this.
    QVERIFY(library.unload());
    CfgCenter::Close();
}

QTEST_MAIN(tst_Plugin)
#include "tst_plugin.moc"
