// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/filelock.h"
#include "platform/cfgcenter.h"
#include "platform/config/documenttext.h"
#include "platform/configversions.h"
#include "platform/icfg.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <optional>

namespace {

const QString kKey = QStringLiteral("Key");
const QString kOther = QStringLiteral("Other");
const QString kValue = QStringLiteral("Value");
const QString kNone = QStringLiteral("(none)");

ICfg* Document()
{
    return CfgCenter::CreateCfg(QStringLiteral("Document"), View::Shared, {});
}

std::unique_ptr<ICfg> Child(const QString& name)
{
    return std::unique_ptr<ICfg>(Document()->OpenChild(name, 0));
}

std::optional<QByteArray> ReadFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? std::optional(file.readAll()) : std::nullopt;
}

} // namespace

/// The store's files: when they are written, and how damaged ones are handled.
class TestCfgCenterFiles : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_store.emplace();
        QVERIFY(m_store->isValid());
        QVERIFY(CfgCenter::Open(m_store->path()));
        QVERIFY(QDir(m_store->path()).mkpath(QStringLiteral("shared")));
    }
    void cleanup()
    {
        CfgCenter::Close();
        m_store.reset();
    }

    void openCreatesTheDirectory()
    {
        const QString deep = m_store->filePath(QStringLiteral("a/b c/\u00e4"));
        QVERIFY(CfgCenter::Open(deep));
        QVERIFY(QDir(deep).exists());
        QVERIFY(QDir(deep).isEmpty());
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(QFile::exists(deep + QStringLiteral("/shared/Document.json")));
    }

    void openRefusesUnusableDirectories_data()
    {
        QTest::addColumn<QString>("directory");
        QTest::newRow("a file") << QStringLiteral("file");
        QTest::newRow("below a file") << QStringLiteral("file/store");
        QTest::newRow("deep below a file") << QStringLiteral("file/a/b/store");
        QTest::newRow("empty") << QString();
    }
    void openRefusesUnusableDirectories()
    {
        QFETCH(QString, directory);
        QVERIFY(Files::Write(m_store->filePath(QStringLiteral("file")), "content"));
        Document()->SetString(kKey, kValue, 0);

        const TraceRecorder traces;
        QVERIFY(!CfgCenter::Open(directory.isEmpty() ? directory : m_store->filePath(directory)));
        QCOMPARE(traces.Messages().size(), 1);
        QVERIFY(traces.Messages().front().contains(directory));
        QVERIFY(!CfgCenter::OpenError().isEmpty());
        QVERIFY(traces.Messages().front().endsWith(CfgCenter::OpenError()));
        QCOMPARE(ReadFile(m_store->filePath(QStringLiteral("file"))), QByteArray("content"));

        // As after Close, the configuration is in memory only.
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(!QFile::exists(DocumentFile()));
    }

    void readOnlyStoreIsNeitherCreatedNorWritten()
    {
        const QString missing = m_store->filePath(QStringLiteral("not/there"));
        QVERIFY(!CfgCenter::OpenReadOnly(missing));
        QVERIFY(!QFile::exists(missing));
        QCOMPARE(CfgCenter::Directory(), QString());
        QVERIFY(!CfgCenter::OpenReadOnly(QString()));
        QCOMPARE(CfgCenter::Directory(), QString());

        QVERIFY(CfgCenter::Open(m_store->path()));
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        const QDateTime changed = QFileInfo(m_store->path()).lastModified();
        QVERIFY(CfgCenter::OpenReadOnly(m_store->path()));
        QCOMPARE(QFileInfo(m_store->path()).lastModified(), changed);
        QCOMPARE(CfgCenter::Directory(), m_store->path());
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kValue);
    }

    void openDropsUnsavedChanges()
    {
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(!QFile::exists(DocumentFile()));
    }

    void closeSavesNothing()
    {
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        Document()->SetString(kKey, kOther, 0);
        Child(kOther)->SetString(kKey, kOther, 0);
        const auto before = ReadFile(DocumentFile());
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        CfgCenter::Close();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        QCOMPARE(ReadFile(DocumentFile()), before);
    }

    void handlesOutliveTheirDocument()
    {
        auto handle = Child(QStringLiteral("A"));
        handle->SetString(kKey, kValue, 0);
        CfgCenter::Close();
        handle->SetString(kKey, kOther, 0);
        handle->Remove(kOther, 0);
        QCOMPARE(handle->GetInt(kOther, 3, 0), 3);
        const std::unique_ptr<ICfg> grandchild(handle->OpenChild(QStringLiteral("B"), 0));
        handle.reset();
        grandchild->SetString(kKey, kOther, 0);
        QCOMPARE(grandchild->GetString(kKey, kNone, 0), kOther);
    }

    void writesThroughOldHandlesAreLost()
    {
        const auto handle = Child(QStringLiteral("A"));
        QVERIFY(CfgCenter::Open(m_store->path()));
        const auto fresh = Child(QStringLiteral("A"));
        handle->SetString(kKey, kOther, 0);
        QCOMPARE(fresh->GetString(kKey, kNone, 0), kNone);
        fresh->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Child(QStringLiteral("A"))->GetString(kKey, kNone, 0), kValue);
    }

    void savingUnchangedValuesTouchesNoFile()
    {
        Document()->SetString(kKey, kValue, 0);
        Document()->SetInt(QStringLiteral("Number"), 1, 0);
        Document()->SetBool(QStringLiteral("Truth"), true, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(QDir().mkpath(DocumentFile() + QStringLiteral(".lock"))); // now a save would fail

        Document()->SetString(kKey, kValue, 0);
        Document()->SetInt(QStringLiteral("Number"), 1, 0);
        Document()->SetBool(QStringLiteral("Truth"), true, 0);
        Document()->Remove(QStringLiteral("Missing"), 0);
        QVERIFY(CfgCenter::SaveDocument());

        Document()->SetInt(QStringLiteral("Number"), 2, 0);
        QVERIFY(!CfgCenter::SaveDocument());
    }

    void removedDirectoryIsWrittenAnew()
    {
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(QDir(m_store->path()).removeRecursively());
        QVERIFY(CfgCenter::SaveDocument()); // nothing was changed since the last one
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kValue);
    }

    void undoneChangesCreateNoFile()
    {
        Document()->SetString(kKey, kValue, 0);
        Document()->Remove(kKey, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(!QFile::exists(DocumentFile()));
    }

    void saveLeavesNoOtherFiles()
    {
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        Document()->SetString(kKey, kOther, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(SharedFiles(), QStringList({QStringLiteral("Document.json")}));
    }

    void failedSaveKeepsFileAndChanges()
    {
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        const auto before = ReadFile(DocumentFile());
        CfgCenter::GetAppCfg(View::User)->SetString(kKey, kValue, 0);
        Document()->SetString(kKey, kOther, 0);
        Document()->SetString(kOther, kOther, 0);

        // As if another process hung while saving.
        auto lock = std::make_unique<FileLock>();
        QString error;
        QCOMPARE(lock->TryLock(DocumentFile() + QStringLiteral(".lock"), &error), FileLock::Result::Locked);
        {
            const TraceRecorder traces;
            QVERIFY(!CfgCenter::SaveDocument());
            QCOMPARE(traces.Messages().size(), 1);
            QVERIFY(traces.Messages().front().contains(DocumentFile()));
        }
        QCOMPARE(ReadFile(DocumentFile()), before);
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kOther);
        // The other documents were saved.
        QVERIFY(QFile::exists(m_store->filePath(QStringLiteral("user/@application.json"))));

        lock.reset();
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kOther);
        QCOMPARE(Document()->GetString(kOther, kNone, 0), kOther);
    }

    void closeDropsChangesOfAFailedSave()
    {
        Document()->SetString(kOther, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        const QString path = DocumentFile();
        Document()->SetString(kKey, kValue, 0);
        {
            FileLock lock;
            QString error;
            QCOMPARE(lock.TryLock(path + QStringLiteral(".lock"), &error), FileLock::Result::Locked);
            QVERIFY(!CfgCenter::SaveDocument());
        }

        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
        Document()->SetString(kOther, kOther, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
        QCOMPARE(Document()->GetString(kOther, kNone, 0), kOther);
    }

    void saveFailsWithoutAFolder()
    {
        QVERIFY(QDir(m_store->path()).rmdir(QStringLiteral("shared")));
        QVERIFY(Files::Write(m_store->filePath(QStringLiteral("shared")), "a file"));
        Document()->SetString(kKey, kValue, 0);
        const TraceRecorder traces;
        QVERIFY(!CfgCenter::SaveDocument());
        QCOMPARE(traces.Messages().size(), 1);
        QCOMPARE(ReadFile(m_store->filePath(QStringLiteral("shared"))), QByteArray("a file"));

        QVERIFY(QFile::remove(m_store->filePath(QStringLiteral("shared"))));
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(QFile::exists(DocumentFile()));
    }

    void folderInPlaceOfTheFileIsQuarantined()
    {
        QVERIFY(QDir().mkpath(DocumentFile() + QStringLiteral("/inside")));
        const TraceRecorder traces;
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
        QCOMPARE(traces.Messages().size(), 1);
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(traces.Messages().size(), 1);
        QCOMPARE(SharedFiles(), QStringList({QStringLiteral("Document.json")}));
        const QStringList aside =
            QDir(m_store->filePath(QStringLiteral("shared"))).entryList({QStringLiteral("*.damaged-*")}, QDir::Dirs);
        QCOMPARE(aside.size(), 1);
        QVERIFY(
            QFile::exists(m_store->filePath(QStringLiteral("shared/") + aside.front() + QStringLiteral("/inside"))));
    }

    void failedSaveKeepsOnlyTheChangesToBeSaved()
    {
        Document()->SetString(kKey, kValue, 0);
        Document()->SetString(kOther, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        // By another program.
        const QString theirs = QStringLiteral("theirs");
        QVERIFY(Files::Write(DocumentFile(), DocumentText::Write({{kKey, theirs}, {kOther, kValue}})));

        const QString inTheWay = DocumentFile() + QStringLiteral(".lock");
        QVERIFY(QDir().mkpath(inTheWay));
        Document()->SetString(kOther, QStringLiteral("mine"), 0);
        QVERIFY(!CfgCenter::SaveDocument());
        QVERIFY(QDir().rmdir(inTheWay));
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(ReadFile(DocumentFile()), DocumentText::Write({{kKey, theirs}, {kOther, QStringLiteral("mine")}}));
    }

    // The working copy still has the stored content, which is saved again as for a damaged document.
    void folderThatAppearsLaterIsQuarantined()
    {
        Child(kOther)->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(QFile::remove(DocumentFile()));
        QVERIFY(QDir().mkpath(DocumentFile() + QStringLiteral("/inside")));
        Document()->SetString(kKey, kValue, 0);

        QStringList notices;
        CfgCenter::SetNoticeSink([&](const QString& line) { notices += line; });
        const TraceRecorder traces;
        QVERIFY(CfgCenter::SaveDocument());
        CfgCenter::SetNoticeSink({});
        const QStringList aside =
            QDir(m_store->filePath(QStringLiteral("shared"))).entryList({QStringLiteral("*.damaged-*")}, QDir::Dirs);
        QCOMPARE(aside.size(), 1);
        const QString asidePath = m_store->filePath(QStringLiteral("shared/") + aside.front());
        QVERIFY(QFile::exists(asidePath + QStringLiteral("/inside")));
        QCOMPARE(notices.size(), 1);
        QVERIFY2(
            notices.front().contains(DocumentFile() + QStringLiteral(" cannot be read, quarantined as ") + asidePath),
            qPrintable(notices.front()));
        QCOMPARE(traces.Messages().size(), 1);
        QVERIFY(traces.Messages().front().contains(notices.front()));

        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(traces.Messages().size(), 1); // reported only once
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kValue);
        QCOMPARE(Child(kOther)->GetString(kKey, kNone, 0), kValue);
    }

    void readOnlyStoreCannotBeSaved()
    {
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        const auto before = ReadFile(DocumentFile());
        QVERIFY(CfgCenter::OpenReadOnly(m_store->path()));
        QVERIFY(CfgCenter::IsAppCfgKnown(View::Application));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kValue);
        QVERIFY(CfgCenter::SaveDocument()); // nothing to save
        Document()->SetString(kKey, kOther, 0);
        QVERIFY(!CfgCenter::SaveDocument());
        QCOMPARE(ReadFile(DocumentFile()), before);

        QVERIFY(Files::Write(DocumentFile(), "damage"));
        QVERIFY(CfgCenter::OpenReadOnly(m_store->path()));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
        QCOMPARE(SharedFiles(), QStringList({QStringLiteral("Document.json")}));
        QCOMPARE(ReadFile(DocumentFile()), std::optional(QByteArray("damage")));
    }

    void nothingIsTracedWhileTracesAreOff()
    {
        QVERIFY(Files::Write(DocumentFile(), "damage"));
        const TraceRecorder traces;
        ErrorHandler::Instance().SetEnabledKinds(ErrorHandler::Assertion);
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(QDir().mkpath(DocumentFile() + QStringLiteral(".lock")));
        QVERIFY(!CfgCenter::SaveDocument());
        QVERIFY(traces.Messages().isEmpty());
    }

    // A killed process leaves its lock file behind.
    void leftoverLockIsNoObstacle()
    {
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(Files::Write(DocumentFile() + QStringLiteral(".lock"), QByteArray()));
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(SharedFiles(), QStringList({QStringLiteral("Document.json")}));
    }

    void damagedFilesAreQuarantined_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("comment") << QByteArray("{\n// mast\n\"values\": {\"Key\": \"Value\"}}");
        QTest::newRow("trailing comma") << QByteArray("{\"values\": {\"Key\": \"Value\",}}");
        QTest::newRow("trailing null bytes") << QByteArray("{\"values\": {}}\0\0\0\0", 18);
        QTest::newRow("only null bytes") << QByteArray(4096, '\0');
        QTest::newRow("another encoding") << QByteArray("{\"values\": {\"Key\": \"Stra\xdf"
                                                        "e\"}}");
        QTest::newRow("UTF-16") << QByteArray("\xff\xfe{\0}\0", 6);
        QTest::newRow("a program") << QByteArray("\x7f"
                                                 "ELF\x02\x01\x01\n\xde\xad\xbe\xef");
        QTest::newRow("another format") << QByteArray("<?xml version='1.0'?>\n<Key>\nValue\n</Key>\n");
        QTest::newRow("JSON of another structure") << QByteArray("{\"Key\": \"Value\"}");
        QTest::newRow("value that is not a string") << QByteArray("{\"values\": {\"Key\": []}}");
    }
    void damagedFilesAreQuarantined()
    {
        QFETCH(QByteArray, content);
        QVERIFY(Files::Write(DocumentFile(), content));
        const TraceRecorder traces;
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
        QCOMPARE(traces.Messages().size(), 1);
        QVERIFY(traces.Messages().front().contains(DocumentFile()));
        QVERIFY(!QFile::exists(DocumentFile()));
        QCOMPARE(SharedFiles().size(), 1);
        const QString aside = SharedFiles().front();
        QVERIFY2(aside.startsWith(QLatin1String("Document.json.damaged-2")), qUtf8Printable(aside));
        QCOMPARE(ReadFile(m_store->filePath(QStringLiteral("shared/") + aside)), content);

        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kValue);
        QCOMPARE(ReadFile(m_store->filePath(QStringLiteral("shared/") + aside)), content);
        QCOMPARE(traces.Messages().size(), 1);
    }

    void everyDamagedFileGetsItsOwnCopy()
    {
        constexpr int kTimes = 5;
        for (int i = 0; i < kTimes; ++i) {
            QVERIFY(Files::Write(DocumentFile(), QByteArray("damage ") + QByteArray::number(i)));
            QVERIFY(CfgCenter::Open(m_store->path()));
            Document();
        }
        QSet<QByteArray> contents;
        const QStringList files = SharedFiles();
        for (const QString& file : files)
            contents.insert(ReadFile(m_store->filePath(QStringLiteral("shared/") + file)).value_or(QByteArray()));
        QCOMPARE(contents.size(), kTimes);
    }

    // The working copy still has the file's content: everything is restored, not only the changes.
    void fileDamagedWhileOpenIsQuarantinedAndRewritten()
    {
        Document()->SetString(kKey, kValue, 0);
        Child(kOther)->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(Files::Write(DocumentFile(), "damage"));
        Document()->SetString(kOther, kOther, 0);
        {
            const TraceRecorder traces;
            QVERIFY(CfgCenter::SaveDocument());
            QCOMPARE(traces.Messages().size(), 1);
        }
        QCOMPARE(SharedFiles().size(), 2);
        QCOMPARE(ReadFile(m_store->filePath(QStringLiteral("shared/") + SharedFiles().at(1))), QByteArray("damage"));
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kValue);
        QCOMPARE(Child(kOther)->GetString(kKey, kNone, 0), kValue);
        QCOMPARE(Document()->GetString(kOther, kNone, 0), kOther);
    }

    void noticeNamesTheDamagedLine_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("line");
        QTest::newRow("trailing comma") << QByteArray("{\n  \"values\": {\n    \"Key\": \"Value\",\n  }\n}")
                                        << QStringLiteral("line 4: ");
        QTest::newRow("comment") << QByteArray("{\n  \"values\": {\n    // mast\n    \"Key\": \"Value\"\n  }\n}")
                                 << QStringLiteral("line 3: ");
    }
    void noticeNamesTheDamagedLine()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, line);
        QVERIFY(Files::Write(DocumentFile(), content));
        QStringList notices;
        CfgCenter::SetNoticeSink([&](const QString& notice) { notices += notice; });
        Document();
        CfgCenter::SetNoticeSink({});
        QCOMPARE(notices.size(), 1);
        QVERIFY2(notices.front().contains(DocumentFile() + QStringLiteral(" is damaged (") + line),
                 qPrintable(notices.front()));
    }

    void fileTypedByHandIsReadAndKept()
    {
        QVERIFY(
            Files::Write(DocumentFile(), "\xef\xbb\xbf{ \"values\" :\r\n{ \"Key\" :5,\"Other/Key\":\"Value\" } }\r\n"));
        const QByteArray typed = Files::Read(DocumentFile());
        QCOMPARE(Document()->GetInt(kKey, 0, 0), 5);
        QCOMPARE(Child(kOther)->GetString(kKey, kNone, 0), kValue);
        const auto isIntact = [](const QByteArray& text) {
            const DocumentText::Parsed parsed = DocumentText::Parse(text);
            return DocumentText::IsIntact(*parsed.values, parsed.digest);
        };
        QVERIFY(!isIntact(typed));
        QVERIFY(isIntact(Files::Read(DocumentFile())));
        const QList<ConfigVersion> versions = ConfigVersions(View::Shared, QStringLiteral("Document")).List();
        QCOMPARE(versions.size(), 1);
        QCOMPARE(Files::Read(versions.front().file), typed);

        Document()->SetInt(kKey, 6, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Document()->GetInt(kKey, 0, 0), 6);
        QCOMPARE(Child(kOther)->GetString(kKey, kNone, 0), kValue);
    }

    // With the same size and time stamp, only the content shows the change.
    void foreignChangeWithSameSizeAndTimeIsNoticed()
    {
        Document()->SetString(kKey, QStringLiteral("1"), 0);
        Document()->SetString(kOther, QStringLiteral("1"), 0);
        QVERIFY(CfgCenter::SaveDocument());
        const QDateTime stamp = QFileInfo(DocumentFile()).lastModified();
        QByteArray content = ReadFile(DocumentFile()).value_or(QByteArray());
        content.replace("\"Other\": \"1\"", "\"Other\": \"2\"");
        QVERIFY(Files::Write(DocumentFile(), content));
        QFile file(DocumentFile());
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(stamp, QFileDevice::FileModificationTime));
        file.close();

        Document()->SetString(kKey, QStringLiteral("3"), 0);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(Document()->GetString(kOther, kNone, 0), QStringLiteral("2"));
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Document()->GetString(kOther, kNone, 0), QStringLiteral("2"));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), QStringLiteral("3"));
    }

    // Names that users give to copies, and that programs derive from a file name.
    void foreignFilesStay()
    {
        QStringList names;
        for (const char* end : {".backup", ".before", ".aBcDeF", ".backup2", ".2024-1", ".unfinished", "~"})
            names += QStringLiteral("Document.json") + QString::fromLatin1(end);
        names += {QStringLiteral("Document2.json.aBcDeF"), QStringLiteral("Document.txt"), QStringLiteral(".hidden"),
                  QStringLiteral(".unfinished-Document.json")};
        QVERIFY(QDir().mkpath(m_store->filePath(QStringLiteral("shared/Document.json.versions"))));
        for (const QString& name : std::as_const(names)) {
            QVERIFY(Files::Write(m_store->filePath(QStringLiteral("shared/") + name), "copy"));
            QVERIFY(Files::Write(m_store->filePath(QStringLiteral("shared/Document.json.versions/") + name), "copy"));
        }
        const QString version = QStringLiteral("00000001-20260102T030405.006Z.json.backup");
        QVERIFY(Files::Write(m_store->filePath(QStringLiteral("shared/Document.json.versions/") + version), "copy"));

        for (const QString& value : {kValue, kOther, kNone}) {
            Document()->SetString(kKey, value, 0);
            QVERIFY(CfgCenter::SaveDocument());
        }
        const ConfigVersions versions(View::Shared, QStringLiteral("Document"));
        QCOMPARE(versions.List().size(), 2);
        QVERIFY(versions.Restore(versions.List().constLast()));

        QStringList kept = QDir(versions.Folder()).entryList(QDir::Files | QDir::Hidden);
        for (const ConfigVersion& listed : versions.List())
            kept.removeOne(QFileInfo(listed.file).fileName());
        kept.sort();
        names.sort();
        QStringList expected = names + QStringList{version};
        expected.sort();
        QCOMPARE(kept, expected);
        expected = names + QStringList{QStringLiteral("Document.json")};
        expected.sort();
        QCOMPARE(SharedFiles(), expected);
    }

    // A process killed while saving leaves such files; tst_savekills really kills processes.
    void leftoversOfKilledProcessesAreRemoved()
    {
        Document()->SetString(kKey, kOther, 0);
        QVERIFY(CfgCenter::SaveDocument());
        const QStringList left = {
            QStringLiteral("shared/.unfinished-c1919cac7cac4ba5-0123456789abcdef"),
            QStringLiteral("shared/.unfinished-c1919cac7cac4ba5-0123456789abcdef.aBcDeF"),
            QStringLiteral("shared/Document.json.versions/.unfinished-0123456789abcdef-0123456789abcdef.aBcDeF")};
        const QString ofAnother = QStringLiteral(".unfinished-0000000000000000-0123456789abcdef");
        QVERIFY(QDir().mkpath(m_store->filePath(QStringLiteral("shared/Document.json.versions"))));
        for (const QString& name : left)
            QVERIFY(Files::Write(m_store->filePath(name), "half"));
        QVERIFY(Files::Write(m_store->filePath(QStringLiteral("shared/") + ofAnother), "half"));
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        for (const QString& name : left)
            QVERIFY2(!QFile::exists(m_store->filePath(name)), qPrintable(name));
        QCOMPARE(SharedFiles(), QStringList({ofAnother, QStringLiteral("Document.json")}));
    }

private:
    QString DocumentFile() const { return m_store->filePath(QStringLiteral("shared/Document.json")); }

    QStringList SharedFiles() const
    {
        QStringList files =
            QDir(m_store->filePath(QStringLiteral("shared"))).entryList(QDir::Files | QDir::Hidden, QDir::NoSort);
        files.sort();
        return files;
    }

    std::optional<QTemporaryDir> m_store;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCfgCenterFiles)
#include "tst_cfgcenter_files.moc"
