// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "userinterface/kitecontrol/kitecontrolwindow.h"
#include "userinterface/kitecontrol/launchreport.h"
#include "userinterface/kitecontrol/legacyrecords.h"

#include "tests/kitecontrol/records.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

namespace {

LaunchReport ReportFor(const QString& station, const std::vector<ConnectData>& records)
{
    LegacyRecords known;
    known.configuration = QStringLiteral("/store");
    known.records = records;
    return LaunchReport::Make(QStringLiteral("kitecontrol"),
                              {QStringLiteral("KiteControl:XMsgDlg.dll"), QStringLiteral("Server"), station}, known);
}

QString TextOf(const QWidget& window, const char* objectName)
{
    const auto* const label = window.findChild<QLabel*>(QLatin1String(objectName));
    return label ? label->text() : QStringLiteral("(no such label)");
}

} // namespace

class TestKiteControlWindow : public QObject
{
    Q_OBJECT

private slots:
    void recordIsShown();
    void headingIsLarger();
    void labelsAreHighEnough();
    void candidatesAreShown();
    void nameIsPlainText();
    void valuesCanBeCopied();
    void longNameIsShortened();
    void closeButtonCloses();
};

void TestKiteControlWindow::recordIsShown()
{
    Records records;
    records.Add("Mast", "Kite Echo", "192.0.2.9");
    const LaunchReport report = ReportFor(QStringLiteral("Mast"), records.List());
    const KiteControlWindow window(report);
    QCOMPARE(window.windowTitle(), QStringLiteral("KiteControl - Mast"));
    QCOMPARE(TextOf(window, "m_pApplication"), QStringLiteral("KiteControl"));
    QCOMPARE(TextOf(window, "m_pStation"), QStringLiteral("Mast"));
    QCOMPARE(TextOf(window, "m_pCommandLine"), report.CommandLine());
    QCOMPARE(TextOf(window, "m_pConfiguration"), QStringLiteral("/store"));
    QCOMPARE(TextOf(window, "m_pFinding"), QStringLiteral("ConnectData0 matches this command line"));
    const QList<LaunchReport::Fact> facts = LaunchReport::Facts(records.Last());
    QCOMPARE(facts.size(), 8);
    for (const LaunchReport::Fact& fact : facts) {
        const QString shown = fact.value.isEmpty() ? QString(QChar(0x2013)) : fact.value;
        QCOMPARE(TextOf(window, fact.label), shown);
    }
    QVERIFY(!window.findChild<QListWidget*>());
}

void TestKiteControlWindow::headingIsLarger()
{
    const KiteControlWindow window(ReportFor(QStringLiteral("Mast"), Records().Add("Mast", "Kite Echo").List()));
    const auto fontOf = [&window](const char* objectName) {
        return window.findChild<QLabel*>(QLatin1String(objectName))->font();
    };
    const QFont application = fontOf("m_pApplication");
    const QFont station = fontOf("m_pStation");
    QVERIFY(application.bold());
    QVERIFY(!station.bold());
    QVERIFY(application.pointSizeF() > station.pointSizeF());
    QVERIFY(station.pointSizeF() > fontOf("m_pFinding").pointSizeF());
}

void TestKiteControlWindow::labelsAreHighEnough()
{
    const QString name =
        QStringLiteral("A mast with a name that needs two lines, because it says where it stands and why");
    KiteControlWindow window(ReportFor(name, Records().Add(qUtf8Printable(name), "Kite Echo").List()));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QList<QLabel*> labels = window.findChildren<QLabel*>();
    QVERIFY(labels.size() > 8);
    for (const QLabel* const label : labels) {
        const int needed = label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
        QVERIFY2(label->height() >= needed, qPrintable(label->text()));
    }
}

void TestKiteControlWindow::candidatesAreShown()
{
    Records records;
    for (int i = 0; i < LaunchReport::kMaximumCandidates + 5; ++i)
        records.Add("Mast", "Kite Echo");
    const KiteControlWindow window(ReportFor(QStringLiteral("Mast"), records.List()));
    const auto* const list = window.findChild<QListWidget*>(QStringLiteral("m_pCandidates"));
    QVERIFY(list);
    QCOMPARE(list->count(), LaunchReport::kMaximumCandidates + 1);
    QVERIFY(list->wordWrap());
    QCOMPARE(list->item(0)->text(), LaunchReport::Summary(records.List().at(0)));
    QCOMPARE(list->item(list->count() - 1)->text(), QStringLiteral("and 5 more"));
}

void TestKiteControlWindow::nameIsPlainText()
{
    const QString name = QStringLiteral("<b>Mast</b> & <i>co</i>");
    const KiteControlWindow window(ReportFor(name, Records().Add(qUtf8Printable(name), "Kite Echo").List()));
    const auto* const label = window.findChild<QLabel*>(QStringLiteral("m_pStation"));
    QVERIFY(label);
    QCOMPARE(label->text(), name);
    QCOMPARE(label->textFormat(), Qt::PlainText);
}

void TestKiteControlWindow::valuesCanBeCopied()
{
    const KiteControlWindow window(ReportFor(QStringLiteral("Mast"), Records().Add("Mast", "Kite Echo").List()));
    for (const char* const name : {"m_pStation", "m_pCommandLine", "Device type"}) {
        const auto flags = window.findChild<QLabel*>(QLatin1String(name))->textInteractionFlags();
        QVERIFY(flags.testFlag(Qt::TextSelectableByMouse));
        QVERIFY(flags.testFlag(Qt::TextSelectableByKeyboard));
    }
}

void TestKiteControlWindow::longNameIsShortened()
{
    const QString name(1'000'000, QLatin1Char('m'));
    const KiteControlWindow window(ReportFor(name, Records().Add(qUtf8Printable(name), "Kite Echo").List()));
    const QString shown = TextOf(window, "m_pStation");
    QVERIFY(shown.size() < 1000);
    QVERIFY(shown.startsWith(QLatin1String("mmmm")));
    QVERIFY(window.windowTitle().size() < 1000);
}

void TestKiteControlWindow::closeButtonCloses()
{
    KiteControlWindow window(ReportFor(QStringLiteral("Mast"), {}));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto* const button = window.findChild<QPushButton*>();
    QVERIFY(button);
    QVERIFY(button->isDefault());
    QTest::mouseClick(button, Qt::LeftButton);
    QTRY_VERIFY(!window.isVisible());
}

VEXEL_TEST(QTEST_MAIN, TestKiteControlWindow)
#include "tst_kitecontrolwindow.moc"
