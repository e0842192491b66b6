// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/plugin/tellingdialog.h"
#include "tests/support/testmain.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <QTest>

#include <memory>

/// A dialog whose method returns something else.
class OddDialog : public FakeDialog
{
    Q_OBJECT

public:
    Q_INVOKABLE QString ApplicationOf(int row) const { return QString::number(row); }
};

class TestConnectDialog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void partsAreFound();
    void missingPartIsNamed_data();
    void missingPartIsNamed();
    void missingDialogIsReported();
    void rowsFollowTheModelNotTheView();
    void entriesToConnectAreTold();
    void applicationOfEntryIsAskedFor();
    void applicationIsUnknownToThePlugin_data();
    void applicationIsUnknownToThePlugin();
    void failedAppendChangesNothing();

private:
    std::unique_ptr<FakeDialog> m_pFake;
};

void TestConnectDialog::init()
{
    m_pFake = std::make_unique<FakeDialog>();
    new QAbstractItemModelTester(&m_pFake->entries, QAbstractItemModelTester::FailureReportingMode::QtTest,
                                 &m_pFake->entries);
}

void TestConnectDialog::cleanup()
{
    m_pFake.reset();
}

void TestConnectDialog::partsAreFound()
{
    const ConnectDialog dialog = FindDialog();
    QCOMPARE(dialog.Window(), m_pFake.get());
    QCOMPARE(dialog.Views(), m_pFake->views);
    QCOMPARE(dialog.Entries(), &m_pFake->entries);
}

void TestConnectDialog::missingPartIsNamed_data()
{
    QTest::addColumn<QString>("part");
    QTest::newRow("basic view") << QStringLiteral("m_pBasicView");
    QTest::newRow("details view") << QStringLiteral("m_pDetailsView");
    QTest::newRow("list") << QStringLiteral("ConnectionsModel");
}

void TestConnectDialog::missingPartIsNamed()
{
    QFETCH(const QString, part);
    if (auto* widget = m_pFake->findChild<QWidget*>(part))
        widget->setObjectName(QStringLiteral("somethingElse"));
    else
        m_pFake->entries.setObjectName(QStringLiteral("somethingElse"));
    QString error;
    QVERIFY(!ConnectDialog::Find(error));
    QVERIFY2(error.contains(part), qPrintable(error));
}

void TestConnectDialog::missingDialogIsReported()
{
    m_pFake.reset();
    QString error;
    QVERIFY(!ConnectDialog::Find(error));
    QVERIFY2(error.contains(QLatin1String("VexelConnectDlgGUI")), qPrintable(error));
}

void TestConnectDialog::rowsFollowTheModelNotTheView()
{
    m_pFake->Add(QStringLiteral("zebra"), true, 1);
    m_pFake->Add(QStringLiteral("ant"));
    QCOMPARE(m_pFake->proxy.index(0, 1).data().toString(), QStringLiteral("ant"));

    const ConnectDialog dialog = FindDialog();
    QCOMPARE(dialog.Count(), 2);
    QCOMPARE(dialog.Name(0), QStringLiteral("zebra"));
    QCOMPARE(dialog.Name(1), QStringLiteral("ant"));
    QVERIFY(dialog.IsTicked(0));
    QVERIFY(!dialog.IsTicked(1));
    QCOMPARE(dialog.Status(0), 1);
    QCOMPARE(dialog.Status(1), 0);
    m_pFake->SetTicked(1, true);
    QVERIFY(dialog.IsTicked(1));
}

void TestConnectDialog::entriesToConnectAreTold()
{
    m_pFake.reset();
    TellingDialog fake;
    const ConnectDialog dialog = FindDialog();
    QVERIFY(dialog.ConnectEntries({2, 0}));
    QCOMPARE(fake.connected, QList<int>({2, 0}));
    fake.isProgramEnding = true;
    QVERIFY(!dialog.ConnectEntries({1}));
}

void TestConnectDialog::applicationOfEntryIsAskedFor()
{
    m_pFake.reset();
    TellingDialog fake;
    const ConnectDialog dialog = FindDialog();
    const QDateTime since = QDateTime::currentDateTime();
    const QVariantMap running{{QStringLiteral("program"), QStringLiteral("/opt/kite")},
                              {QStringLiteral("process"), qint64{1} << 40},
                              {QStringLiteral("since"), since}};
    fake.applications = {{}, running, running, running};
    fake.applications[2].insert(QStringLiteral("exitCode"), 0);
    fake.applications[3].insert({{QStringLiteral("crashed"), true}, {QStringLiteral("signal"), 11}});

    QVERIFY(!dialog.ApplicationOf(0));
    auto application = dialog.ApplicationOf(1);
    QVERIFY(application);
    QCOMPARE(application->program, QStringLiteral("/opt/kite"));
    QCOMPARE(application->process, qint64{1} << 40);
    QCOMPARE(application->since, since);
    QVERIFY(!application->exitCode && !application->signal && !application->isCrash);
    application = dialog.ApplicationOf(2);
    QVERIFY(application);
    QCOMPARE(application->exitCode, std::optional(0));
    QVERIFY(!application->signal && !application->isCrash);
    application = dialog.ApplicationOf(3);
    QVERIFY(application);
    QVERIFY(!application->exitCode && application->isCrash);
    QCOMPARE(application->signal, std::optional(11));
}

void TestConnectDialog::applicationIsUnknownToThePlugin_data()
{
    QTest::addColumn<bool>("otherType");
    QTest::newRow("no such method") << false;
    QTest::newRow("another return type") << true;
}

void TestConnectDialog::applicationIsUnknownToThePlugin()
{
    QFETCH(const bool, otherType);
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
    std::unique_ptr<FakeDialog> other;
    if (otherType) {
        m_pFake.reset();
        other = std::make_unique<OddDialog>();
    }
    QVERIFY(!FindDialog().ApplicationOf(0));
}

void TestConnectDialog::failedAppendChangesNothing()
{
    m_pFake->Add(QStringLiteral("a"));
    const ConnectDialog dialog = FindDialog();
    // This model does not know the document at all.
    QVERIFY(!dialog.Append("<ConnectionEntries/>"));
    QCOMPARE(dialog.Count(), 1);
}

VEXEL_TEST(QTEST_MAIN, TestConnectDialog)
#include "tst_connectdialog.moc"
