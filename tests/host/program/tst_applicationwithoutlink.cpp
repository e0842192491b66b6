// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "starter/linkcall.h"
#include "tests/host/hostinprocess.h"
#include "tests/support/files.h"
#include "tests/support/linkport.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"

#include <QDir>
#include <QTcpServer>

#include <chrono>
#include <future>

using namespace std::chrono_literals;

/// The host and its dialog where another program has the port of the link.
class TestApplicationWithoutLink : public QObject
{
    Q_OBJECT

private slots:
    void dialogWorksWithoutTheLink();
};

void TestApplicationWithoutLink::dialogWorksWithoutTheLink()
{
    NEED_PORT();
    QTcpServer other;
    QVERIFY2(other.listen(QHostAddress(QHostAddress::LocalHost), LinkPort::kNumber), qPrintable(other.errorString()));
    int calls = 0;
    connect(&other, &QTcpServer::newConnection, &other, [&] {
        ++calls;
        other.nextPendingConnection()->write("somebody else\n");
    });

    Host host;
    QVERIFY(Files::Write(host.directory.filePath(QStringLiteral("CfgVEXEL.xml")),
                         "<CfgVEXEL><Machine><App1><Startup><exe>" +
                             QDir().absoluteFilePath(QStringLiteral(VEXEL_TESTCHILD)).toUtf8() +
                             "</exe></Startup></App1></Machine></CfgVEXEL>"));
    QVERIFY(Files::Write(host.directory.filePath(QStringLiteral("TypeApplicationMappings.xml")),
                         "<TypeApplicationMappings><Mapping><DeviceType>4</DeviceType><Application>App1</Application>"
                         "</Mapping></TypeApplicationMappings>"));
    qputenv("VEXEL_TESTCHILD_REPORTS", QFile::encodeName(host.directory.path()));
    qputenv("VEXEL_TESTCHILD_MODE", "stay");

    const TraceRecorder traces;
    bool wasInUse = false;
    bool wasHidden = false;
    bool stayedHidden = false;
    LinkAnswer answer = LinkAnswer::Accepted;
    const ExitCode code = host.Run([&](const ConnectDialog& dialog) {
        QVERIFY(dialog.Window()->isVisible());
        AddEntry(dialog, QStringLiteral("mast"), true);
        ConnectButton(dialog)->click();
        wasInUse = dialog.Status(0) != ConnectDialog::kFree;
        wasHidden = !dialog.Window()->isVisible();

        auto call = std::async(std::launch::async, [] { return CallLink(LinkPort::kNumber, QDeadlineTimer(30s)); });
        QTRY_VERIFY_WITH_TIMEOUT(call.wait_for(0s) == std::future_status::ready, 30'000);
        answer = call.get();
        QCoreApplication::processEvents();
        stayedHidden = !dialog.Window()->isVisible();
    });
    QCOMPARE(code, ExitCode::Done);
    QVERIFY(wasInUse);
    QVERIFY(wasHidden && stayedHidden);
    QCOMPARE(answer, LinkAnswer::OtherService);
    QCOMPARE(calls, 1);
    QVERIFY(host.HasStored("mast"));
    // Once, and no other word of the link's: there is none.
    QCOMPARE(traces.Messages(QStringLiteral("userinterface/vexelconnectdlg/tcpserver")),
             QStringList(QStringLiteral("TCPServer(): Creation of Server TCP interface failed.")));
}

VEXEL_TEST(QTEST_MAIN, TestApplicationWithoutLink)
#include "tst_applicationwithoutlink.moc"
