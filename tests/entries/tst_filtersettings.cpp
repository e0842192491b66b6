// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/cfgcenter.h"
#include "tests/support/confignodes.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/filter/filtersettings.h"

#include <QTemporaryDir>
#include <QTest>

#include <limits>

class TestFilterSettings : public QObject
{
    Q_OBJECT

private slots:
    void init() { CfgCenter::Close(); }
    void cleanup() { CfgCenter::Close(); }

    void missingSettingsAreDefaults();
    void columnIsCorrectedByOneStep_data();
    void columnIsCorrectedByOneStep();
    void invalidSearchModeIsPlainText_data();
    void invalidSearchModeIsPlainText();
    void settingsAreStoredInUserView();
    void settingsAreStoredUnchecked();
    void settingsAreStoredOnDisk();
    void storingDoesNotSaveDocument();
};

void TestFilterSettings::missingSettingsAreDefaults()
{
    const FilterSettings settings = FilterSettings::Load();
    QCOMPARE(settings.column, 1);
    QCOMPARE(settings.pattern, QString());
    QCOMPARE(settings.searchMode, 0);
}

void TestFilterSettings::columnIsCorrectedByOneStep_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<int>("column");
    for (const int column : {0, 3, 9})
        QTest::addRow("%d", column) << column << column;
    QTest::newRow("-1") << -1 << 0;
    QTest::newRow("10") << 10 << 9;
    // Further outside the column stays invalid: the combo box then has no current item.
    QTest::newRow("11") << 11 << 10;
    QTest::newRow("lowest") << std::numeric_limits<int>::min() << std::numeric_limits<int>::min() + 1;
    QTest::newRow("highest") << std::numeric_limits<int>::max() << std::numeric_limits<int>::max() - 1;
}

void TestFilterSettings::columnIsCorrectedByOneStep()
{
    QFETCH(int, stored);
    QFETCH(int, column);
    ConfigNodes::Filter()->SetInt(QStringLiteral("Column"), stored, 0);
    QCOMPARE(FilterSettings::Load().column, column);
    // The stored value is not changed.
    QCOMPARE(ConfigNodes::Filter()->GetInt(QStringLiteral("Column"), 4711, 0), stored);
}

void TestFilterSettings::invalidSearchModeIsPlainText_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<int>("mode");
    for (const int mode : {0, 1, 2})
        QTest::addRow("%d", mode) << mode << mode;
    for (const int stored : {-1, 3, 7, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        QTest::addRow("%d", stored) << stored << 0;
}

void TestFilterSettings::invalidSearchModeIsPlainText()
{
    QFETCH(int, stored);
    QFETCH(int, mode);
    ConfigNodes::Filter()->SetInt(QStringLiteral("SearchMode"), stored, 0);
    QCOMPARE(FilterSettings::Load().searchMode, mode);
}

void TestFilterSettings::settingsAreStoredInUserView()
{
    FilterSettings settings;
    settings.column = 3;
    settings.pattern = QStringLiteral("Heron");
    settings.searchMode = 2;
    settings.Save();
    QCOMPARE(ConfigNodes::Filter()->GetInt(QStringLiteral("Column"), -1, 0), 3);
    QCOMPARE(ConfigNodes::Filter()->GetString(QStringLiteral("FilterPattern"), QString(), 0), QStringLiteral("Heron"));
    QCOMPARE(ConfigNodes::Filter()->GetInt(QStringLiteral("SearchMode"), -1, 0), 2);
    for (const View other : {View::Application, View::Shared})
        QCOMPARE(ConfigNodes::Filter(other)->GetInt(QStringLiteral("Column"), -1, 0), -1);
}

void TestFilterSettings::settingsAreStoredUnchecked()
{
    FilterSettings settings;
    settings.column = -1;
    settings.pattern = QStringLiteral("");
    settings.searchMode = -1;
    settings.Save();
    QCOMPARE(ConfigNodes::Filter()->GetInt(QStringLiteral("Column"), 4711, 0), -1);
    QCOMPARE(ConfigNodes::Filter()->GetString(QStringLiteral("FilterPattern"), QStringLiteral("(none)"), 0), QString());
    QCOMPARE(ConfigNodes::Filter()->GetInt(QStringLiteral("SearchMode"), 4711, 0), -1);
}

void TestFilterSettings::settingsAreStoredOnDisk()
{
    const QTemporaryDir store;
    FilterSettings settings;
    settings.column = 5;
    settings.searchMode = 2;
    for (const QString& pattern : {QStringLiteral("^10\\.0\\..*[;#=\"%,]$"), QStringLiteral(u" \U0001F4E1 \u00FC "),
                                   QStringLiteral("@Invalid()"), QStringLiteral("a\nb"), QStringLiteral("")}) {
        settings.pattern = pattern;
        QVERIFY(CfgCenter::Open(store.path()));
        settings.Save();
        QVERIFY(CfgCenter::SaveDocument());
        CfgCenter::Close();
        QVERIFY(CfgCenter::Open(store.path()));
        QCOMPARE(FilterSettings::Load().column, 5);
        QCOMPARE(FilterSettings::Load().pattern, pattern);
        QCOMPARE(FilterSettings::Load().searchMode, 2);
    }
}

void TestFilterSettings::storingDoesNotSaveDocument()
{
    const QTemporaryDir store;
    QVERIFY(CfgCenter::Open(store.path()));
    FilterSettings settings;
    settings.column = 5;
    settings.Save();
    QVERIFY(CfgCenter::Open(store.path()));
    QCOMPARE(FilterSettings::Load().column, 1);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestFilterSettings)

#include "tst_filtersettings.moc"
