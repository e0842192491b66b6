// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/filelock.h"
#include "platform/configversions.h"
#include "tests/platform/storefixture.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"

#include <QFileInfo>
#include <QScopeGuard>
#include <QSet>
#include <QTest>

#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

namespace {

constexpr int kDepth = 10;

ConfigVersions Versions()
{
    return {View::Shared, QStringLiteral("Document")};
}

/// The numbers in the document's versions, newest first; -2 for a version that cannot be read.
QList<int> Numbers()
{
    QList<int> numbers;
    const ConfigVersions versions = Versions();
    const QList<ConfigVersion> list = versions.List();
    for (const ConfigVersion& version : list) {
        const auto root = versions.Open(version);
        numbers += root ? StoreFixture::Number(root.get()) : -2;
    }
    return numbers;
}

bool SetTime(const QString& path, const QDateTime& time)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime);
}

} // namespace

class TestConfigVersions : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_store.emplace();
        m_added = 0;
    }
    void cleanup() { m_store.reset(); }

    void everySaveKeepsTheEarlierContent()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(Versions().List().isEmpty());
        const QDateTime saved = QFileInfo(m_store->Document()).lastModified();
        QVERIFY(m_store->Save(2));

        const auto list = Versions().List();
        QCOMPARE(list.size(), 1);
        QCOMPARE(list.front().saved, saved);
        QCOMPARE(list.front().saved.timeSpec(), Qt::LocalTime);
        QCOMPARE(QFileInfo(list.front().file).absolutePath(), Versions().Folder());
        QCOMPARE(Numbers(), QList<int>({1}));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
    }

    void numbersCountUp()
    {
        for (int i = 1; i <= 4; ++i)
            QVERIFY(m_store->Save(i));
        QStringList numbers;
        for (const ConfigVersion& version : Versions().List())
            numbers += QFileInfo(version.file).fileName().section(u'-', 0, 0);
        QCOMPARE(numbers,
                 QStringList({QStringLiteral("00000003"), QStringLiteral("00000002"), QStringLiteral("00000001")}));
    }

    void tenVersionsAreKept()
    {
        QList<int> expected;
        for (int i = 1; i <= 14; ++i) {
            QVERIFY(SaveOnOneDay(i));
            if (i < 14)
                expected.prepend(i);
        }
        QCOMPARE(Numbers(), expected.first(kDepth));
        QCOMPARE(QDir(m_store->Versions()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(),
                 kDepth);
        QStringList byName = QDir(m_store->Versions()).entryList(QDir::Files, QDir::Name | QDir::Reversed);
        for (const ConfigVersion& version : Versions().List())
            QCOMPARE(QFileInfo(version.file).fileName(), byName.takeFirst());
    }

    void lastVersionOfEachDayIsKept()
    {
        QVERIFY(m_store->Save(1000));
        const QDate first(2024, 3, 1);
        for (int day = 0; day < 40; ++day) {
            AddVersion(10 * day, first.addDays(day), QTime(0, 0));
            AddVersion(10 * day + 1, first.addDays(day), QTime(12, 0));
            AddVersion(10 * day + 2, first.addDays(day), QTime(23, 59, 59, 999));
        }
        const QDateTime now(first.addDays(40), QTime(12, 0));
        QVERIFY(SetTime(m_store->Document(), now));
        QVERIFY(m_store->Save(1001));
        // The newest ten are of the four latest days; of 26 more days the last one each.
        QList<int> expected{1000, 392, 391, 390, 382, 381, 380, 372, 371, 370};
        for (int day = 36; day > 10; --day)
            expected.append(10 * day + 2);
        QCOMPARE(Numbers(), expected);

        QVERIFY(SetTime(m_store->Document(), now.addSecs(60)));
        QVERIFY(m_store->Save(1002));
        expected.removeOne(370);
        expected.prepend(1001);
        QCOMPARE(Numbers(), expected);
    }

    void wrongClockRemovesNothingElse()
    {
        QVERIFY(m_store->Save(1000));
        const QDate first(2024, 3, 1);
        const QDate future(2999, 12, 31);
        const QDate past(1970, 1, 1);
        // Twelve days, one of them in the future; then a clock that stands still in the past.
        for (int day = 1; day <= 12; ++day)
            AddVersion(day, day == 6 ? future : first.addDays(day), QTime(12, 0));
        for (int i = 0; i < 12; ++i)
            AddVersion(100 + i, past, QTime(12, i));
        QVERIFY(SetTime(m_store->Document(), QDateTime(past, QTime(13, 0))));
        QVERIFY(m_store->Save(1001));
        QList<int> expected{1000};
        for (int i = 11; expected.size() < kDepth; --i)
            expected.append(100 + i);
        for (int day = 12; day >= 1; --day)
            expected.append(day);
        QCOMPARE(Numbers(), expected);
    }

    void filterDecidesAboutVersions()
    {
        QList<std::pair<int, int>> asked;
        CfgCenter::SetVersionFilter([&asked](const ConfigValues& before, const ConfigValues& after) {
            const QString key = QStringLiteral("Number");
            asked.append({before.value(key).toInt(), after.value(key).toInt()});
            return after.value(key).toInt() % 10 == 0;
        });
        const auto reset = qScopeGuard([] { CfgCenter::SetVersionFilter({}); });
        for (const int number : {1, 2, 3, 10, 11, 20})
            QVERIFY(m_store->Save(number));
        QCOMPARE(Numbers(), QList<int>({11, 3}));
        QVERIFY(m_store->Save(20)); // nothing to save
        QCOMPARE(asked, (QList<std::pair<int, int>>{{1, 2}, {2, 3}, {3, 10}, {10, 11}, {11, 20}}));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 20);

        CfgCenter::SetVersionFilter({});
        QVERIFY(m_store->Save(21));
        QCOMPARE(Numbers(), QList<int>({20, 11, 3}));
    }

    void editedContentIsKeptWhateverTheFilterSays()
    {
        CfgCenter::SetVersionFilter([](const ConfigValues&, const ConfigValues&) { return false; });
        const auto reset = qScopeGuard([] { CfgCenter::SetVersionFilter({}); });
        QVERIFY(m_store->Save(1));
        const QByteArray edited = Files::Read(m_store->Document()).replace("\"1\"", "\"7\"");
        QVERIFY(Files::Write(m_store->Document(), edited));
        QVERIFY(m_store->Save(2));
        QCOMPARE(Numbers(), QList<int>({7}));
        QCOMPARE(Files::Read(Versions().List().constFirst().file), edited);

        // It is not replaced where it cannot be kept.
        QVERIFY(QDir(m_store->Versions()).removeRecursively());
        QVERIFY(Files::Write(m_store->Versions(), "in the way"));
        QVERIFY(Files::Write(m_store->Document(), edited));
        QVERIFY(!m_store->Save(3));
        QCOMPARE(Files::Read(m_store->Document()), edited);
    }

    void unchangedSaveKeepsNoVersion()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(m_store->Save(2));
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(Numbers(), QList<int>({1}));
    }

    void emptyDocumentsAreNotKept()
    {
        QVERIFY(QDir().mkpath(m_store->Path(QStringLiteral("shared"))));
        QVERIFY(Files::Write(m_store->Document(), QByteArray()));
        QVERIFY(m_store->Save(1));
        QVERIFY(Versions().List().isEmpty());

        m_store->Root()->Remove(QStringLiteral("Number"), 0);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(Numbers(), QList<int>({1}));
        QVERIFY(m_store->Save(2));
        QCOMPARE(Numbers(), QList<int>({1}));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
    }

    void emptiedDocumentIsNotDamaged()
    {
        QVERIFY(m_store->Save(1));
        m_store->Root()->Remove(QStringLiteral("Number"), 0);
        QVERIFY(CfgCenter::SaveDocument());
        const TraceRecorder traces;
        m_store->Reopen();
        QCOMPARE(m_store->Number(), -1);
        QVERIFY(traces.Messages().isEmpty());
    }

    void versionsNeverChange()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        const QByteArray version = Files::Read(Versions().List().front().file);
        QVERIFY(Files::Write(m_store->Document(), R"({"values": {"Number": 9}})"));
        QCOMPARE(Files::Read(Versions().List().front().file), version);
        QVERIFY(m_store->Save(3));
        QCOMPARE(Numbers(), QList<int>({9, 1}));
    }

    // A process killed after adding the version but before replacing the document leaves such a link.
    void linkToTheDocumentItselfIsNotListed()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        const QString name = m_store->Versions() + QStringLiteral("/00000002-20260102T030405.006Z.json");
        std::error_code error;
        std::filesystem::create_hard_link(QFileInfo(m_store->Document()).filesystemFilePath(),
                                          QFileInfo(name).filesystemFilePath(), error);
        if (error)
            QSKIP("This file system has no second names.");
        QCOMPARE(Numbers(), QList<int>({1}));
        QVERIFY(Files::Write(m_store->Document(), R"({"values": {"Number": 9}})"));
        QCOMPARE(Numbers(), QList<int>({1}));
        QVERIFY(m_store->Save(3));
        QCOMPARE(Numbers(), QList<int>({9, 1}));
    }

    void clockMayGoBackwards()
    {
        const QDateTime now = QDateTime::currentDateTime();
        QList<QDateTime> times;
        for (int i = 1; i <= 5; ++i) {
            QVERIFY(m_store->Save(i));
            QVERIFY(SetTime(m_store->Document(), now.addDays(-i)));
            times.prepend(QFileInfo(m_store->Document()).lastModified());
        }
        QVERIFY(m_store->Save(6));
        QCOMPARE(Numbers(), QList<int>({5, 4, 3, 2, 1}));
        QList<QDateTime> listed;
        for (const ConfigVersion& version : Versions().List())
            listed += version.saved;
        QCOMPARE(listed, times);
    }

    void savesWithinOneTickStayInOrder()
    {
        const QDateTime time(QDate(2026, 3, 4), QTime(5, 6, 7, 8));
        for (int i = 1; i <= 5; ++i) {
            QVERIFY(m_store->Save(i));
            QVERIFY(SetTime(m_store->Document(), time));
        }
        QVERIFY(m_store->Save(6));
        QCOMPARE(Numbers(), QList<int>({5, 4, 3, 2, 1}));
        QCOMPARE(Versions().List().back().saved, time);
    }

    void saveWorksWithoutAVersionFolder()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(Files::Write(m_store->Versions(), "in the way"));
        {
            const TraceRecorder traces;
            QVERIFY(m_store->Save(2));
            QCOMPARE(traces.Messages().size(), 1);
            QVERIFY(traces.Messages().front().contains(m_store->Document()));
        }
        QCOMPARE(Files::Read(m_store->Versions()), QByteArray("in the way"));
        QVERIFY(Versions().List().isEmpty());
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);

        QVERIFY(QFile::remove(m_store->Versions()));
        QVERIFY(m_store->Save(3));
        QCOMPARE(Numbers(), QList<int>({2}));
    }

    void foreignFilesAreIgnored()
    {
        constexpr int kFiles = 10000;
        QVERIFY(QDir().mkpath(m_store->Versions()));
        const QStringList nearly{QStringLiteral("00000001-20260102T030405.006Z.txt"),
                                 QStringLiteral("0000001-20260102T030405.006Z.json"),
                                 QStringLiteral("00000001-20261302T030405.006Z.json"),
                                 QStringLiteral("00000001-20260102T030405.006.json"),
                                 QStringLiteral("a00000001-20260102T030405.006Z.json"),
                                 QStringLiteral("Document.json.aBcDeF"),
                                 QStringLiteral("99999999.json")};
        QSet<QString> foreign(nearly.begin(), nearly.end());
        for (int i = 0; i < kFiles; ++i)
            foreign.insert(QStringLiteral("file %1").arg(i));
        for (const QString& name : std::as_const(foreign))
            QVERIFY(Files::Write(m_store->Versions() + u'/' + name, R"({"values": {"Number": 99}})"));
        const QString folder = QStringLiteral("00000001-20260102T030405.006Z.json");
        QVERIFY(QDir(m_store->Versions()).mkdir(folder));

        const TraceRecorder traces;
        for (int i = 1; i <= kDepth + 3; ++i)
            QVERIFY(SaveOnOneDay(i));
        QVERIFY2(traces.Messages().isEmpty(), qUtf8Printable(traces.Messages().join(u'\n')));
        QCOMPARE(Numbers(), QList<int>({12, 11, 10, 9, 8, 7, 6, 5, 4, 3}));

        const QStringList files = QDir(m_store->Versions()).entryList(QDir::Files);
        QCOMPARE(files.size(), foreign.size() + kDepth);
        QVERIFY(QSet<QString>(files.begin(), files.end()).contains(foreign));
        QVERIFY(QFileInfo(m_store->Versions() + u'/' + folder).isDir());
    }

    void highestNumberIsRenumbered()
    {
        QVERIFY(QDir().mkpath(m_store->Versions()));
        const QString last = m_store->Versions() + QStringLiteral("/99999999-20260102T030405.006Z.json");
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(m_store->Save(3));
        QVERIFY(Files::Write(last, R"({"values": {"Number": 99}})"));
        const TraceRecorder traces;
        QVERIFY(m_store->Save(4));
        QCOMPARE(Numbers(), QList<int>({3, 99, 2, 1}));
        QVERIFY(m_store->Save(5));
        QCOMPARE(Numbers(), QList<int>({4, 3, 99, 2, 1}));
        for (int i = 6; i <= 16; ++i)
            QVERIFY(SaveOnOneDay(i));
        QCOMPARE(Numbers().first(kDepth), QList<int>({15, 14, 13, 12, 11, 10, 9, 8, 7, 6}));
        QVERIFY2(traces.Messages().isEmpty(), qPrintable(traces.Messages().join(u'\n')));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 16);
    }

    void unreadableVersionsDoNotOpen()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        const ConfigVersion version = Versions().List().front();
        for (const QByteArray& content : {QByteArray("damage"), QByteArray(), QByteArray(100, '\0')}) {
            QVERIFY(Files::Write(version.file, content));
            QCOMPARE(Versions().List().size(), 1);
            auto obstacle = ConfigVersions::Obstacle::None;
            QVERIFY(!Versions().Open(version, &obstacle));
            QCOMPARE(obstacle, ConfigVersions::Obstacle::Damaged);
        }
        QVERIFY(QFile::remove(version.file));
        QVERIFY(!Versions().Open(version));
        QVERIFY(QDir().mkdir(version.file));
        QVERIFY(!Versions().Open(version));
        QVERIFY(Versions().List().isEmpty());
    }

    void writesToAVersionAreLost()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        const ConfigVersion version = Versions().List().front();
        const QByteArray before = Files::Read(version.file);
        const QByteArray document = Files::Read(m_store->Document());
        {
            const auto root = Versions().Open(version);
            root->SetInt(QStringLiteral("Number"), 7, 0);
            const std::unique_ptr<ICfg> child(root->OpenChild(QStringLiteral("Child"), 0));
            child->SetInt(QStringLiteral("Number"), 8, 0);
            QVERIFY(CfgCenter::SaveDocument());
            QCOMPARE(m_store->Number(), 2);
            CfgCenter::Close();
            QCOMPARE(child->GetInt(QStringLiteral("Number"), 0, 0), 8);
        }
        QCOMPARE(Files::Read(version.file), before);
        QCOMPARE(Files::Read(m_store->Document()), document);
    }

    void openCurrentReadsTheDisk()
    {
        auto root = Versions().OpenCurrent();
        QVERIFY(root);
        QCOMPARE(m_store->Number(root.get()), -1);
        QVERIFY(!QFile::exists(m_store->Document()));

        QVERIFY(m_store->Save(1));
        m_store->Root()->SetInt(QStringLiteral("Number"), 2, 0);
        root = Versions().OpenCurrent();
        QCOMPARE(m_store->Number(root.get()), 1);

        QVERIFY(m_store->Save(3));
        for (const QByteArray& content : {QByteArray("damage"), QByteArray()}) {
            QVERIFY(Files::Write(m_store->Document(), content));
            auto obstacle = ConfigVersions::Obstacle::None;
            QVERIFY(!Versions().OpenCurrent(&obstacle));
            QCOMPARE(obstacle, ConfigVersions::Obstacle::Damaged);
            QCOMPARE(Files::Read(m_store->Document()), content);
        }
    }

    void everyDocumentHasItsOwnVersions()
    {
        const ConfigVersions own(View::Application, {});
        const ConfigVersions legacy(View::Shared, QStringLiteral("KiteResources/ConnectData"));
        for (int i = 1; i <= 2; ++i) {
            CfgCenter::GetAppCfg(View::Application)->SetInt(QStringLiteral("Number"), i, 0);
            CfgCenter::CreateCfg(QStringLiteral("KiteResources/ConnectData"), View::Shared, QStringLiteral("Child"))
                ->SetInt(QStringLiteral("Number"), i + 10, 0);
            QVERIFY(CfgCenter::SaveDocument());
        }
        QCOMPARE(own.DocumentFile(), m_store->Path(QStringLiteral("application/@application.json")));
        QCOMPARE(legacy.DocumentFile(), m_store->Path(QStringLiteral("shared/KiteResources/ConnectData.json")));
        QCOMPARE(own.List().size(), 1);
        QCOMPARE(m_store->Number(own.Open(own.List().front()).get()), 1);
        QCOMPARE(legacy.List().size(), 1);
        const auto root = legacy.Open(legacy.List().front());
        const std::unique_ptr<ICfg> child(root->OpenChild(QStringLiteral("Child"), 0));
        QCOMPARE(m_store->Number(child.get()), 11);
        QVERIFY(Versions().List().isEmpty());
        QVERIFY(own.Folder() != legacy.Folder());
    }

    void thereAreNoVersionsWithoutAStore()
    {
        CfgCenter::Close();
        const ConfigVersions versions = Versions();
        QVERIFY(versions.DocumentFile().isEmpty());
        QVERIFY(versions.Folder().isEmpty());
        QVERIFY(versions.List().isEmpty());
        QVERIFY(!versions.OpenCurrent());
        const TraceRecorder traces;
        QVERIFY(!versions.Restore({}));
        QCOMPARE(traces.Messages().size(), 1);
    }

    void restoreReplacesTheDocument()
    {
        for (int i = 1; i <= 4; ++i)
            QVERIFY(m_store->Save(i));
        QVERIFY(Versions().Restore(Versions().List().at(1)));
        QCOMPARE(Numbers(), QList<int>({4, 3, 2, 1}));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);

        // Restoring can be undone.
        QVERIFY(Versions().Restore(Versions().List().front()));
        QCOMPARE(Numbers(), QList<int>({2, 4, 3, 2, 1}));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 4);
        QVERIFY(m_store->Save(5));
        QCOMPARE(Numbers(), QList<int>({4, 2, 4, 3, 2, 1}));
    }

    void oldestVersionCanBeRestored()
    {
        for (int i = 1; i <= kDepth + 1; ++i)
            QVERIFY(SaveOnOneDay(i));
        QVERIFY(Versions().Restore(Versions().List().back()));
        QCOMPARE(Numbers(), QList<int>({11, 10, 9, 8, 7, 6, 5, 4, 3, 2}));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
    }

    void restoringThePresentStateChangesNothing()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(m_store->Save(1));
        QVERIFY(Versions().Restore(Versions().List().back()));
        QCOMPARE(Numbers(), QList<int>({2, 1}));
        QCOMPARE(m_store->Number(), 1);
    }

    void restoreCreatesAMissingDocument()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(QFile::remove(m_store->Document()));
        QVERIFY(Versions().Restore(Versions().List().front()));
        QCOMPARE(Numbers(), QList<int>({1}));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
    }

    void restoreQuarantinesADamagedDocument()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(Files::Write(m_store->Document(), "damage"));
        QString quarantined;
        QVERIFY(Versions().Restore(Versions().List().front(), &quarantined));
        QCOMPARE(m_store->Quarantined().size(), 1);
        QCOMPARE(quarantined, m_store->Path(QStringLiteral("shared/")) + m_store->Quarantined().front());
        QCOMPARE(Files::Read(m_store->Path(QStringLiteral("shared/")) + m_store->Quarantined().front()),
                 QByteArray("damage"));
        QCOMPARE(Numbers(), QList<int>({1}));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
    }

    void failedRestoreChangesNothing()
    {
        for (int i = 1; i <= 3; ++i)
            QVERIFY(m_store->Save(i));
        const QByteArray document = Files::Read(m_store->Document());
        const ConfigVersion version = Versions().List().back();
        const TraceRecorder traces;

        auto lock = std::make_unique<FileLock>();
        QString error;
        QCOMPARE(lock->TryLock(m_store->Document() + QStringLiteral(".lock"), &error), FileLock::Result::Locked);
        QVERIFY(!Versions().Restore(version));
        QCOMPARE(traces.Messages().size(), 1);
        lock.reset();

        // The current document cannot be saved as a version.
        const ConfigVersion elsewhere{m_store->Path(QStringLiteral("elsewhere.json")), version.saved};
        QVERIFY(QFile::copy(version.file, elsewhere.file));
        const QString away = m_store->Path(QStringLiteral("away"));
        QVERIFY(QFile::rename(m_store->Versions(), away));
        QVERIFY(Files::Write(m_store->Versions(), "in the way"));
        QVERIFY(!Versions().Restore(elsewhere));
        QCOMPARE(traces.Messages().size(), 2);
        QVERIFY(traces.Messages().back().contains(m_store->Versions() + QStringLiteral(" cannot be created")));
        QVERIFY(QFile::remove(m_store->Versions()));
        QVERIFY(QFile::rename(away, m_store->Versions()));

        QVERIFY(Files::Write(version.file, "damage"));
        QVERIFY(!Versions().Restore(version));
        QVERIFY(!Versions().Restore({}));
        QCOMPARE(traces.Messages().size(), 4);

        QCOMPARE(Files::Read(m_store->Document()), document);
        QCOMPARE(Numbers(), QList<int>({2, -2}));
        QVERIFY(m_store->Quarantined().isEmpty());
    }

private:
    bool SaveOnOneDay(int number)
    {
        return m_store->Save(number) && SetTime(m_store->Document(), QDateTime(QDate(2026, 3, 4), QTime(12, 0)));
    }

    /// Adds a file as the newest version.
    void AddVersion(int number, QDate day, QTime time)
    {
        QVERIFY(QDir().mkpath(m_store->Versions()));
        const QString name = QStringLiteral("%1-%2Z.json")
                                 .arg(++m_added, 8, 10, QLatin1Char('0'))
                                 .arg(QDateTime(day, time).toUTC().toString(QStringLiteral("yyyyMMdd'T'HHmmss.zzz")));
        QVERIFY(Files::Write(m_store->Versions() + u'/' + name,
                             QStringLiteral(R"({"values": {"Number": %1}})").arg(number).toUtf8()));
    }

    int m_added = 0; // versions by AddVersion
    std::optional<StoreFixture> m_store;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestConfigVersions)
#include "tst_configversions.moc"
