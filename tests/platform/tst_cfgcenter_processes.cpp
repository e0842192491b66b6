// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/cfgcenter.h"
#include "platform/configversions.h"
#include "platform/icfg.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <optional>
#include <vector>

namespace {

const QString kDocument = QStringLiteral("KiteResources/ConnectData");
const QString kKey = QStringLiteral("Key");
const QString kValue = QStringLiteral("Value");
const QString kNone = QStringLiteral("(none)");

ICfg* Document()
{
    return CfgCenter::CreateCfg(kDocument, View::Shared, {});
}

std::unique_ptr<ICfg> Child(const QString& name)
{
    return std::unique_ptr<ICfg>(Document()->OpenChild(name, 0));
}

} // namespace

/// Several processes using one store.
class TestCfgCenterProcesses : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_root.emplace();
        QVERIFY(m_root->isValid());
        QVERIFY(QDir(m_root->path()).mkdir(QStringLiteral("tmp")));
        QVERIFY(CfgCenter::Open(Store()));
    }
    void cleanup()
    {
        CfgCenter::Close();
        m_root.reset();
    }

    void secondProcessReadsWhileTheFirstRuns()
    {
        const auto record = Child(QStringLiteral("ConnectData0"));
        record->SetString(QStringLiteral("StationName"), QStringLiteral("Stra\u00dfe, \"Nord\""), 0);
        QCOMPARE(ReadElsewhere(QStringLiteral("ConnectData0"), QStringLiteral("StationName")), kNone);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(ReadElsewhere(QStringLiteral("ConnectData0"), QStringLiteral("StationName")),
                 QStringLiteral("Stra\u00dfe, \"Nord\""));
        record->SetString(QStringLiteral("StationName"), kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(ReadElsewhere(QStringLiteral("ConnectData0"), QStringLiteral("StationName")), kValue);
    }

    void changesOfAnotherProcessAreMerged()
    {
        Document()->SetString(kKey, kValue, 0);
        Document()->SetString(QStringLiteral("Both0"), QStringLiteral("mine"), 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(WriteElsewhere(QStringLiteral("Theirs"), 2));
        QVERIFY(WriteElsewhere(QStringLiteral("Both"), 2));

        // Changes of other processes appear with the next save.
        QCOMPARE(Document()->GetString(QStringLiteral("Theirs0"), kNone, 0), kNone);
        Document()->SetString(QStringLiteral("Both1"), QStringLiteral("mine, and later"), 0);
        QVERIFY(CfgCenter::SaveDocument());

        for (int round = 0; round < 2; ++round) {
            QCOMPARE(Document()->GetString(kKey, kNone, 0), kValue);
            QCOMPARE(Document()->GetString(QStringLiteral("Theirs0"), kNone, 0), QStringLiteral("Theirs"));
            QCOMPARE(Document()->GetString(QStringLiteral("Theirs1"), kNone, 0), QStringLiteral("Theirs"));
            QCOMPARE(Document()->GetString(QStringLiteral("Both0"), kNone, 0), QStringLiteral("Both"));
            QCOMPARE(Document()->GetString(QStringLiteral("Both1"), kNone, 0), QStringLiteral("mine, and later"));
            QVERIFY(CfgCenter::Open(Store()));
        }
    }

    void removingKeepsWhatAnotherProcessWrote()
    {
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(WriteElsewhere(QStringLiteral("Theirs"), 1));
        Document()->Remove(kKey, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(CfgCenter::Open(Store()));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
        QCOMPARE(Document()->GetString(QStringLiteral("Theirs0"), kNone, 0), QStringLiteral("Theirs"));
    }

    void simultaneousWritersLoseNothing()
    {
        constexpr int kWriters = 3;
        constexpr int kKeys = 40;
        std::vector<std::unique_ptr<QProcess>> writers;
        writers.reserve(kWriters);
        for (int i = 0; i < kWriters; ++i) {
            writers.push_back(Start({QStringLiteral("write"), Store(), kDocument, QStringLiteral("Writer%1-").arg(i),
                                     QString::number(kKeys)}));
        }
        for (int i = 0; i < kKeys; ++i) { // this process writes, too
            Document()->SetString(QStringLiteral("Here%1").arg(i), kValue, 0);
            CfgCenter::SaveDocument(); // may time out; then the next save includes the change
        }
        for (const auto& writer : writers)
            QVERIFY(IsDone(*writer));
        QVERIFY(CfgCenter::SaveDocument());

        QVERIFY(CfgCenter::Open(Store()));
        for (int n = 0; n < kKeys; ++n) {
            QCOMPARE(Document()->GetString(QStringLiteral("Here%1").arg(n), kNone, 0), kValue);
            for (int i = 0; i < kWriters; ++i) {
                const QString prefix = QStringLiteral("Writer%1-").arg(i);
                QCOMPARE(Document()->GetString(prefix + QString::number(n), kNone, 0), prefix);
            }
        }
        QCOMPARE(Files(), QStringList({QStringLiteral("ConnectData.json")}));

        // The versions are complete, too: every save added one key.
        const ConfigVersions versions(View::Shared, kDocument);
        const QList<ConfigVersion> list = versions.List();
        QCOMPARE(list.size(), 10);
        int keys = kKeys * (kWriters + 1);
        for (const ConfigVersion& version : list) {
            const auto root = versions.Open(version);
            QVERIFY(root);
            int found = 0;
            for (int n = 0; n < kKeys; ++n) {
                found += root->GetString(QStringLiteral("Here%1").arg(n), {}, 0) == kValue;
                for (int i = 0; i < kWriters; ++i) {
                    const QString prefix = QStringLiteral("Writer%1-").arg(i);
                    found += root->GetString(prefix + QString::number(n), {}, 0) == prefix;
                }
            }
            QVERIFY(found < keys);
            keys = found;
        }
    }

    // The process sets all keys to one number, saves, and continues with the next number. Whenever it is killed or the
    // file is read, all keys have the same number, and no saved number is lost.
    void killedProcessesLeaveAValidFile()
    {
        const int kills =
            qEnvironmentVariableIsSet("VEXEL_SAVE_KILLS") ? qEnvironmentVariableIntValue("VEXEL_SAVE_KILLS") : 30;
        constexpr int kKeys = 600; // so that a kill hits the middle of a save
        int reached = 0;
        for (int kill = 0; kill < kills; ++kill) {
            const auto process = Start({QStringLiteral("rewrite"), Store(), kDocument, QString::number(kKeys)});
            int announced = 0;
            for (int saves = 0; saves < 2; ++saves) {
                if (!process->canReadLine())
                    QTRY_VERIFY(process->canReadLine() || process->state() == QProcess::NotRunning);
                announced = process->readLine().trimmed().toInt();
                QVERIFY(announced > reached);
            }
            // `announced` is being saved, and its predecessor has been saved. A varying number of reads before the kill
            // spreads the kills over the duration of a save.
            for (int reads = 0; reads < kill % 6; ++reads)
                QVERIFY(IsWhole(kKeys, announced - 1));
            process->kill();
            QVERIFY(WaitForEnd(*process));
            QCOMPARE(process->exitStatus(), QProcess::CrashExit);

            QVERIFY(IsWhole(kKeys, announced - 1));
            reached = Document()->GetInt(QStringLiteral("Key0"), 0, 0);
        }

        // No lock blocks other processes, and no files accumulate.
        Document()->SetString(QStringLiteral("Last"), kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(Files(), QStringList({QStringLiteral("ConnectData.json")}));
    }

private:
    QString Store() const { return m_root->filePath(QStringLiteral("store")); }

    QStringList Files() const
    {
        return QDir(Store() + QStringLiteral("/shared/KiteResources")).entryList(QDir::Files | QDir::Hidden);
    }

    std::unique_ptr<QProcess> Start(const QStringList& arguments) const
    {
        auto process = std::make_unique<QProcess>();
        // The test removes temporary files of killed processes.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const QString& name : {QStringLiteral("TMPDIR"), QStringLiteral("TMP"), QStringLiteral("TEMP")})
            environment.insert(name, m_root->filePath(QStringLiteral("tmp")));
        process->setProcessEnvironment(environment);
        process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process->start(QStringLiteral(PLATFORMPROCESS), arguments);
        return process;
    }

    static bool IsDone(QProcess& process)
    {
        constexpr int kTimeoutMs = 120000;
        if (!WaitForEnd(process, kTimeoutMs))
            return false;
        return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    }

    QString ReadElsewhere(const QString& node, const QString& key) const
    {
        const auto process = Start({QStringLiteral("read"), Store(), kDocument, node, key});
        if (!IsDone(*process))
            return QStringLiteral("(failed)");
        QByteArray output = process->readAllStandardOutput();
        output.replace("\r\n", "\n");
        output.chop(1);
        return QString::fromUtf8(output);
    }

    bool WriteElsewhere(const QString& prefix, int count) const
    {
        const auto process = Start({QStringLiteral("write"), Store(), kDocument, prefix, QString::number(count)});
        return IsDone(*process);
    }

    /// Reopens the document. Returns whether all `count` keys have the same number, which is at least `least`.
    bool IsWhole(int count, int least)
    {
        if (!CfgCenter::Open(Store()))
            return false;
        const int number = Document()->GetInt(QStringLiteral("Key0"), 0, 0);
        if (number < least)
            return false;
        for (int i = 1; i < count; ++i)
            if (Document()->GetInt(QStringLiteral("Key%1").arg(i), 0, 0) != number)
                return false;
        return true;
    }

    std::optional<QTemporaryDir> m_root;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCfgCenterProcesses)
#include "tst_cfgcenter_processes.moc"
