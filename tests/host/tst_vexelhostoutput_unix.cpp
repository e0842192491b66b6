#include "tests/host/hostsetup.h"
#include "tests/support/brokenoutput_unix.h"
#include "tests/support/testmain.h"

#include <QFileInfo>

/// The host's executable where what it prints does not arrive.
class TestVexelHostOutputUnix : public QObject
{
    Q_OBJECT

private slots:
    void whatCannotBePrintedFails_data();
    void whatCannotBePrintedFails();
    void whatIsDoneIsDoneWithoutAReader_data();
    void whatIsDoneIsDoneWithoutAReader();
    void complaintsWithoutAReader_data();
    void complaintsWithoutAReader();
};

void TestVexelHostOutputUnix::whatCannotBePrintedFails_data()
{
    AddBrokenOutputs({{QStringLiteral("--export=-")},
                      {QStringLiteral("--list")},
                      {QStringLiteral("--list"), QStringLiteral("--json")},
                      {QStringLiteral("--backups")},
                      {QStringLiteral("--backups"), QStringLiteral("--json")},
                      {QStringLiteral("--diagnose")},
                      {QStringLiteral("--diagnose"), QStringLiteral("--json")},
                      {QStringLiteral("--help")},
                      {QStringLiteral("--version")}});
}

void TestVexelHostOutputUnix::whatCannotBePrintedFails()
{
    QFETCH(const BrokenOutput::Kind, kind);
    QFETCH(const QStringList, arguments);
    const BrokenOutput output(kind);
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one")});
    const QByteArray stored = setUp.StoredText();
    QProcess host;
    output.Give(host, STDOUT_FILENO);
    setUp.Start(host, arguments);
    const auto result = HostSetUp::End(host);
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.error, QStringLiteral("vexelhost: cannot write everything to standard output\n"));
    QCOMPARE(setUp.StoredText(), stored);
}

void TestVexelHostOutputUnix::whatIsDoneIsDoneWithoutAReader_data()
{
    AddBrokenOutputs({{QStringLiteral("--restore=1")}});
}

void TestVexelHostOutputUnix::whatIsDoneIsDoneWithoutAReader()
{
    QFETCH(const BrokenOutput::Kind, kind);
    QFETCH(const QStringList, arguments);
    const BrokenOutput output(kind);
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one")});
    setUp.Fill({QStringLiteral("two")});
    QProcess host;
    output.Give(host, STDOUT_FILENO);
    setUp.Start(host, arguments);
    const auto result = HostSetUp::End(host);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.error, QString());
    QVERIFY(!QFileInfo::exists(setUp.Config() + QStringLiteral("/vexelhost.lock")));
    QCOMPARE(setUp.Names(), QStringList(QStringLiteral("one")));
}

void TestVexelHostOutputUnix::complaintsWithoutAReader_data()
{
    AddBrokenOutputs({{QStringLiteral("--no-such-option")}, {QStringLiteral("--restore=7")}});
}

void TestVexelHostOutputUnix::complaintsWithoutAReader()
{
    QFETCH(const BrokenOutput::Kind, kind);
    QFETCH(const QStringList, arguments);
    const BrokenOutput errors(kind);
    HostSetUp setUp;
    setUp.Fill({QStringLiteral("one")});
    QProcess host;
    errors.Give(host, STDERR_FILENO);
    setUp.Start(host, arguments);
    QCOMPARE(HostSetUp::End(host).exitCode, 1);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHostOutputUnix)
#include "tst_vexelhostoutput_unix.moc"
