// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Kills a process at random moments while it saves continuously, and checks the files it leaves. VEXEL_SAVE_KILLS sets
// the number of kills; VEXEL_SAVE_KILLS_START repeats the random delays of an earlier run.

#include "platform/cfgcenter.h"
#include "platform/configversions.h"
#include "platform/icfg.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"
#include "tests/support/waitforend.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <memory>
#include <optional>

namespace {

constexpr int kDefaultKills = 25;
constexpr int kKeys = 3000;
constexpr qsizetype kDepth = 10;

// Longer than some saves, so that kills hit any part of a save.
constexpr quint32 kLongestDelayUs = 120'000;

const QString kDocument = QStringLiteral("KiteResources/ConnectData");

ConfigVersions Versions()
{
    return {View::Shared, kDocument};
}

/// The number that all keys have; empty if they differ.
std::optional<int> NumberIn(ICfg* root)
{
    const int number = root ? root->GetInt(QStringLiteral("Key0"), -1, 0) : -1;
    for (int i = 1; i < kKeys && number >= 0; ++i)
        if (root->GetInt(QStringLiteral("Key%1").arg(i), -1, 0) != number)
            return std::nullopt;
    return number < 0 ? std::nullopt : std::optional(number);
}

} // namespace

class TestSaveKills : public QObject
{
    Q_OBJECT

private slots:
    void killedSaveLeavesTheOldOrTheNewState()
    {
        const int kills = qMax(1, qEnvironmentVariableIntValue("VEXEL_SAVE_KILLS"));
        m_kills = qEnvironmentVariableIsSet("VEXEL_SAVE_KILLS") ? kills : kDefaultKills;
        const quint32 start = qEnvironmentVariableIsSet("VEXEL_SAVE_KILLS_START")
                                  ? qEnvironmentVariable("VEXEL_SAVE_KILLS_START").toUInt()
                                  : QRandomGenerator::global()->generate();
        qInfo("delays from random start %u", start);
        QRandomGenerator random(start);

        QVERIFY(m_root.isValid());
        QVERIFY(QDir(m_root.path()).mkdir(QStringLiteral("tmp")));
        CfgCenter::SetNoticeSink([this](const QString& line) { m_notices += line; });
        for (int kill = 1; kill <= m_kills; ++kill) {
            KillOnce(kill % 2 == 0 ? QStringLiteral("rewrite") : QStringLiteral("rewrite-in-thread"),
                     random.bounded(kLongestDelayUs));
            if (QTest::currentTestFailed()) {
                qWarning("at kill %d of %d", kill, m_kills);
                break;
            }
        }
        CfgCenter::SetNoticeSink({});
        qInfo(
            "%d kills: found the old state %d times, the new one %d times; %d hit a save under way, %d of these while "
            "it replaced the file",
            m_old + m_new, m_old, m_new, m_inSave, m_inReplace);
        QVERIFY(m_inSave > 0); // otherwise the test proves nothing
    }

    void cleanupTestCase() { CfgCenter::Close(); }

private:
    void KillOnce(const QString& command, quint32 delayUs)
    {
        QProcess process;
        // The test removes temporary files of killed processes.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const QString& name : {QStringLiteral("TMPDIR"), QStringLiteral("TMP"), QStringLiteral("TEMP")})
            environment.insert(name, m_root.filePath(QStringLiteral("tmp")));
        environment.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(PLATFORMPROCESS), {command, Store(), kDocument, QString::number(kKeys)});

        // It announces each number before saving it. The second announcement means that the first number is saved.
        int announced = 0;
        const auto readAnnouncements = [&] {
            while (process.canReadLine())
                announced = process.readLine().trimmed().toInt();
        };
        for (int i = 0; i < 2; ++i) {
            QTRY_VERIFY_WITH_TIMEOUT(process.canReadLine() || process.state() == QProcess::NotRunning, 60000);
            announced = process.readLine().trimmed().toInt();
            if (announced <= m_reached) {
                process.kill();
                WaitForEnd(process);
                const QByteArray errors = process.readAllStandardError().left(2000);
                QFAIL(("the save after a kill did not work: " + errors).constData());
            }
        }
        QThread::usleep(delayUs);
        process.kill();
        QVERIFY(WaitForEnd(process));
        QCOMPARE(process.exitStatus(), QProcess::CrashExit);
        readAnnouncements();

        m_inSave += QFile::exists(File() + QStringLiteral(".lock"));
        // Finds the number announced last or the one before, without a recovery, which could hide damage.
        QVERIFY(CfgCenter::Open(Store()));
        // An unfinished file exists beside the document, or the document has already been linked as a version.
        m_inReplace +=
            !QDir(Folder()).entryList({QStringLiteral(".unfinished-*")}, QDir::Files | QDir::Hidden).isEmpty() ||
            VersionFiles() > Versions().List().size();
        const auto number = NumberIn(Versions().OpenCurrent().get());
        ICfg* const root = CfgCenter::CreateCfg(kDocument, View::Shared, {});
        const auto loaded = NumberIn(root);
        QVERIFY(loaded);
        QVERIFY(*loaded == announced || *loaded == announced - 1);
        QVERIFY2(m_notices.isEmpty(), qPrintable(m_notices.join(u'\n')));
        QCOMPARE(number, loaded);
        ++(*loaded == announced ? m_new : m_old);

        CheckVersions(*loaded, kDepth + 1); // the kill may have prevented removing the oldest
        if (QTest::currentTestFailed())
            return;

        // The next save works, and removes leftovers.
        m_reached = announced + 1;
        for (int i = 0; i < kKeys; ++i)
            root->SetInt(QStringLiteral("Key%1").arg(i), m_reached, 0);
        const TraceRecorder traces;
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY2(traces.Messages().isEmpty(), qPrintable(traces.Messages().join(u'\n')));
        QCOMPARE(NumberIn(Versions().OpenCurrent().get()), std::optional(m_reached));
        CheckVersions(m_reached, kDepth);
        QCOMPARE(QDir(Folder()).entryList(QDir::Files | QDir::Hidden),
                 QStringList({QStringLiteral("ConnectData.json")}));
        QCOMPARE(VersionFiles(), Versions().List().size());
    }

    // Each version is complete and older than the one before it in the list; the newest is older than `present`.
    static void CheckVersions(int present, qsizetype most)
    {
        const ConfigVersions versions = Versions();
        const QList<ConfigVersion> list = versions.List();
        QVERIFY(!list.isEmpty() || present == 1);
        QVERIFY(list.size() <= most);
        int later = present;
        for (const ConfigVersion& version : list) {
            const auto number = NumberIn(versions.Open(version).get());
            QVERIFY2(number, qPrintable(version.file));
            QVERIFY(*number < later);
            QVERIFY(later - *number <= 2); // the save of the number in between may have been killed
            later = *number;
        }
    }

    static qsizetype VersionFiles() { return QDir(Versions().Folder()).entryList(QDir::Files | QDir::Hidden).size(); }
    QString Store() const { return m_root.filePath(QStringLiteral("store")); }
    QString Folder() const { return Store() + QStringLiteral("/shared/KiteResources"); }
    QString File() const { return Folder() + QStringLiteral("/ConnectData.json"); }

    const QTemporaryDir m_root;
    QStringList m_notices;
    int m_kills = 0;
    int m_reached = 0;
    int m_old = 0;
    int m_new = 0;
    int m_inSave = 0;
    int m_inReplace = 0;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestSaveKills)
#include "tst_savekills.moc"
