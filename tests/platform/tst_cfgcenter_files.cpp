#include "platform/cfgcenter.h"
#include "platform/configversions.h"
#include "platform/icfg.h"
#include "tests/platform/tracerecorder.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSettings>
#include <QSize>
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

/// What becomes of the store's files: when they are written, when not, and what is done about bad ones.
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
        QVERIFY(QFile::exists(deep + QStringLiteral("/shared/Document.ini")));
    }

    void openRefusesWhatCannotBeUsed_data()
    {
        QTest::addColumn<QString>("directory");
        QTest::newRow("a file") << QStringLiteral("file");
        QTest::newRow("below a file") << QStringLiteral("file/store");
        QTest::newRow("deep below a file") << QStringLiteral("file/a/b/store");
        QTest::newRow("empty") << QString();
    }
    void openRefusesWhatCannotBeUsed()
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

        // As after Close: in memory.
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(!QFile::exists(DocumentFile()));
    }

    void openToLookMakesAndWritesNothing()
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

    void openDropsWhatWasThere()
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

    void whatOldHandlesWriteGoesNowhere()
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

    void saveOfTheSameValuesTouchesNoFile()
    {
        Document()->SetString(kKey, kValue, 0);
        Document()->SetInt(QStringLiteral("Number"), 1, 0);
        Document()->SetBool(QStringLiteral("Truth"), true, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(QFile::remove(DocumentFile())); // a save would bring it back

        Document()->SetString(kKey, kValue, 0);
        Document()->SetInt(QStringLiteral("Number"), 1, 0);
        Document()->SetBool(QStringLiteral("Truth"), true, 0);
        Document()->Remove(QStringLiteral("Missing"), 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(!QFile::exists(DocumentFile()));

        Document()->SetInt(QStringLiteral("Number"), 2, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(QFile::exists(DocumentFile()));
    }

    void whatComesAndGoesUnsavedMakesNoFile()
    {
        Document()->SetString(kKey, kValue, 0);
        Document()->Remove(kKey, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(!QFile::exists(DocumentFile()));
    }

    void saveLeavesNothingBesideTheFile()
    {
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        Document()->SetString(kKey, kOther, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(SharedFiles(), QStringList({QStringLiteral("Document.ini")}));
    }

    void saveThatFailsLeavesEverything()
    {
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        const auto before = ReadFile(DocumentFile());
        CfgCenter::GetAppCfg(View::User)->SetString(kKey, kValue, 0);
        Document()->SetString(kKey, kOther, 0);
        Document()->SetString(kOther, kOther, 0);

        // Another process that hangs while it saves.
        auto lock = std::make_unique<QLockFile>(DocumentFile() + QStringLiteral(".lock"));
        QVERIFY(lock->lock());
        {
            const TraceRecorder traces;
            QVERIFY(!CfgCenter::SaveDocument());
            QCOMPARE(traces.Messages().size(), 1);
            QVERIFY(traces.Messages().front().contains(DocumentFile()));
        }
        QCOMPARE(ReadFile(DocumentFile()), before);
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kOther);
        // It did not keep the other documents from their files.
        QVERIFY(QFile::exists(m_store->filePath(QStringLiteral("user/@application.ini"))));

        lock.reset();
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kOther);
        QCOMPARE(Document()->GetString(kOther, kNone, 0), kOther);
    }

    void changesOfASaveThatFailedGoWithClose()
    {
        Document()->SetString(kOther, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        const QString path = DocumentFile();
        Document()->SetString(kKey, kValue, 0);
        {
            QLockFile lock(path + QStringLiteral(".lock"));
            QVERIFY(lock.lock());
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

    void saveFailsWhereThereIsNoFolder()
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

    void whatIsNoFileIsQuarantined()
    {
        QVERIFY(QDir().mkpath(DocumentFile() + QStringLiteral("/inside")));
        const TraceRecorder traces;
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
        QCOMPARE(traces.Messages().size(), 1);
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(traces.Messages().size(), 1);
        QCOMPARE(SharedFiles(), QStringList({QStringLiteral("Document.ini")}));
        const QStringList aside =
            QDir(m_store->filePath(QStringLiteral("shared"))).entryList({QStringLiteral("*.damaged-*")}, QDir::Dirs);
        QCOMPARE(aside.size(), 1);
        QVERIFY(
            QFile::exists(m_store->filePath(QStringLiteral("shared/") + aside.front() + QStringLiteral("/inside"))));
    }

    // The working copy still knows what was stored, and it is saved again as if the document were damaged.
    void whatTakesThePlaceLaterIsQuarantined()
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
        QVERIFY2(notices.front().contains(DocumentFile() + QStringLiteral(" cannot be read, kept as ") + asidePath),
                 qPrintable(notices.front()));
        QCOMPARE(traces.Messages().size(), 1);
        QVERIFY(traces.Messages().front().contains(notices.front()));

        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(traces.Messages().size(), 1); // told of once
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kValue);
        QCOMPARE(Child(kOther)->GetString(kKey, kNone, 0), kValue);
    }

    // What is there is not known to be less than what would be written.
    void whatIsOpenedToLookCannotBeSaved()
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
        QCOMPARE(SharedFiles(), QStringList({QStringLiteral("Document.ini")}));
        QCOMPARE(ReadFile(DocumentFile()), std::optional(QByteArray("damage")));
    }

    void nothingIsTracedUnlessAskedFor()
    {
        QVERIFY(Files::Write(DocumentFile(), "damage"));
        const TraceRecorder traces;
        ErrorHandler::Instance().SetEnabledKinds(ErrorHandler::Assertion);
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(QDir().mkpath(DocumentFile() + QStringLiteral(".lock")));
        QVERIFY(!CfgCenter::SaveDocument());
        QVERIFY(traces.Messages().isEmpty());
    }

    // Of a process that was killed between making the lock and writing its name into it.
    void lockWithoutAnOwnerIsNoObstacle()
    {
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(Files::Write(DocumentFile() + QStringLiteral(".lock"), QByteArray()));
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(SharedFiles(), QStringList({QStringLiteral("Document.ini")}));
    }

    void damagedFilesAreQuarantined_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("a line that says nothing") << QByteArray("[General]\nKey=Value\nKey\n");
        QTest::newRow("section without an end") << QByteArray("[General\nKey=Value\n");
        QTest::newRow("null bytes") << QByteArray("[General]\nKey=Value\n\0\0\0\0", 25);
        QTest::newRow("only null bytes") << QByteArray(4096, '\0');
        QTest::newRow("another encoding") << QByteArray("[General]\nKey=Stra\xdf"
                                                        "e\n");
        QTest::newRow("two bytes a letter") << QByteArray("\xff\xfe[\0G\0]\0", 8);
        QTest::newRow("a program") << QByteArray("\x7f"
                                                 "ELF\x02\x01\x01\n\xde\xad\xbe\xef");
        QTest::newRow("another format") << QByteArray("<?xml version='1.0'?>\n<Key>\nValue\n</Key>\n");
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
        QVERIFY2(aside.startsWith(QLatin1String("Document.ini.damaged-2")), qUtf8Printable(aside));
        QCOMPARE(ReadFile(m_store->filePath(QStringLiteral("shared/") + aside)), content);

        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kValue);
        QCOMPARE(ReadFile(m_store->filePath(QStringLiteral("shared/") + aside)), content);
        QCOMPARE(traces.Messages().size(), 1);
    }

    void everyDamagedFileIsKept()
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

    // The working copy still knows what was in the file: it comes back whole, not just what was changed.
    void fileDamagedMeanwhileIsQuarantinedAndMended()
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

    void emptyFilesAreEmptyDocuments()
    {
        QVERIFY(Files::Write(DocumentFile(), QByteArray()));
        const TraceRecorder traces;
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
        QVERIFY(traces.Messages().isEmpty());
        QCOMPARE(SharedFiles().size(), 1);
    }

    void filesTypedByHandAreRead_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        const QString root;
        QTest::newRow("no section") << QByteArray("Key=Value") << root << kKey << kValue;
        QTest::newRow("spaces") << QByteArray("[General]\n  Key  =  Value  \n") << root << kKey << kValue;
        QTest::newRow("comments") << QByteArray("; a\n[Other]\n;Key=no\nKey=Value\n") << kOther << kKey << kValue;
        QTest::newRow("other line ends") << QByteArray("[Other]\r\nKey=Value\r\n") << kOther << kKey << kValue;
        QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbf[Other]\nKey=Value\n") << kOther << kKey << kValue;
        QTest::newRow("letters") << QByteArray("Key=Stra\xc3\x9f"
                                               "e\n")
                                 << root << kKey << QStringLiteral("Stra\u00dfe");
        QTest::newRow("comma") << QByteArray("Key=Smith, John\n") << root << kKey << QStringLiteral("Smith, John");
        QTest::newRow("commas and at") << QByteArray("Key=a, @b, c\n") << root << kKey << QStringLiteral("a, @b, c");
        QTest::newRow("quoted comma") << QByteArray("Key=\"a,b\"\n") << root << kKey << QStringLiteral("a,b");
        QTest::newRow("node in node") << QByteArray("[A]\nB\\Key=Value\n") << QStringLiteral("A") << QStringLiteral("B")
                                      << kNone;
        QTest::newRow("section twice") << QByteArray("[A]\nKey=Value\n[B]\nKey=b\n[A]\nOther=x\n")
                                       << QStringLiteral("A") << kKey << kValue;
        QTest::newRow("node General") << QByteArray("[%General]\nKey=Value\n") << QStringLiteral("General") << kKey
                                      << kValue;
        QTest::newRow("percent") << QByteArray("100%25=Value\n") << root << QStringLiteral("100%") << kValue;
        QTest::newRow("no key") << QByteArray("=nothing\n[A]\n=nothing\nKey=Value\n") << QStringLiteral("A") << kKey
                                << kValue;
        QTest::newRow("no text") << QByteArray("Key=@Size(1 2)\n") << root << kKey << kNone;
    }
    void filesTypedByHandAreRead()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, node);
        QFETCH(QString, key);
        QFETCH(QString, value);
        QVERIFY(Files::Write(DocumentFile(), content));
        for (int round = 0; round < 2; ++round) {
            if (node.isEmpty())
                QCOMPARE(Document()->GetString(key, kNone, 0), value);
            else
                QCOMPARE(Child(node)->GetString(key, kNone, 0), value);
            QCOMPARE(SharedFiles(), QStringList({QStringLiteral("Document.ini")}));
            // And the same after a save of something else.
            Document()->SetString(QStringLiteral("Saved"), kValue, 0);
            QVERIFY(CfgCenter::SaveDocument());
            QVERIFY(CfgCenter::Open(m_store->path()));
        }
    }

    void newKeysJoinTheNodeThatWasTypedByHand()
    {
        QVERIFY(Files::Write(DocumentFile(), "[Smith%20%26%20Co]\nA=1\n[%General]\nB=2\n"));
        Child(QStringLiteral("Smith & Co"))->SetString(kKey, kValue, 0);
        Child(QStringLiteral("General"))->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(ReadFile(DocumentFile()).value_or(QByteArray()).count("Key=Value"), 2);
        QCOMPARE(ReadFile(DocumentFile()).value_or(QByteArray()).count('['), 2);
    }

    void valuesOfOthersThatAreNoTextStay()
    {
        {
            QSettings settings(DocumentFile(), QSettings::IniFormat);
            settings.setValue(QStringLiteral("Size"), QSize(3, 4));
            settings.setValue(kKey, 5);
        }
        QCOMPARE(Document()->GetString(QStringLiteral("Size"), kNone, 0), kNone);
        QCOMPARE(Document()->GetInt(kKey, 0, 0), 5);
        Document()->SetInt(kKey, 6, 0);
        QVERIFY(CfgCenter::SaveDocument());
        const QSettings settings(DocumentFile(), QSettings::IniFormat);
        QCOMPARE(settings.value(QStringLiteral("Size")).toSize(), QSize(3, 4));
        QCOMPARE(settings.value(kKey).toInt(), 6);
    }

    // Same size, and within one tick of the clock that stamps files: nothing but the content tells.
    void changesOfOthersThatLeaveSizeAndTimeAreSeen()
    {
        Document()->SetString(kKey, QStringLiteral("1"), 0);
        Document()->SetString(kOther, QStringLiteral("1"), 0);
        QVERIFY(CfgCenter::SaveDocument());
        const QDateTime stamp = QFileInfo(DocumentFile()).lastModified();
        QByteArray content = ReadFile(DocumentFile()).value_or(QByteArray());
        content.replace("Other=1", "Other=2");
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

    // Names that people give to copies of their own, and that programs make of a file's name.
    void copiesOfOthersStay()
    {
        QStringList names;
        for (const char* end : {".backup", ".before", ".aBcDeF", ".backup2", ".2024-1", ".unfinished", "~"})
            names += QStringLiteral("Document.ini") + QString::fromLatin1(end);
        names += {QStringLiteral("Document2.ini.aBcDeF"), QStringLiteral("Document.txt"), QStringLiteral(".hidden"),
                  QStringLiteral(".unfinished-Document.ini")};
        QVERIFY(QDir().mkpath(m_store->filePath(QStringLiteral("shared/Document.ini.versions"))));
        for (const QString& name : std::as_const(names)) {
            QVERIFY(Files::Write(m_store->filePath(QStringLiteral("shared/") + name), "copy"));
            QVERIFY(Files::Write(m_store->filePath(QStringLiteral("shared/Document.ini.versions/") + name), "copy"));
        }
        const QString version = QStringLiteral("00000001-20260102T030405.006Z.ini.backup");
        QVERIFY(Files::Write(m_store->filePath(QStringLiteral("shared/Document.ini.versions/") + version), "copy"));

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
        expected = names + QStringList{QStringLiteral("Document.ini")};
        expected.sort();
        QCOMPARE(SharedFiles(), expected);
    }

    // Left as they are by a process that is killed between its steps; tst_savekills makes them by killing.
    void whatKilledProcessesLeftIsCleanedUp()
    {
        Document()->SetString(kKey, kOther, 0);
        QVERIFY(CfgCenter::SaveDocument());
        const QStringList left = {
            QStringLiteral("shared/.unfinished-314e49b79b023203-0123456789abcdef"),
            QStringLiteral("shared/.unfinished-314e49b79b023203-0123456789abcdef.aBcDeF"),
            QStringLiteral("shared/Document.ini.versions/.unfinished-0123456789abcdef-0123456789abcdef.aBcDeF")};
        const QString ofAnother = QStringLiteral(".unfinished-0000000000000000-0123456789abcdef");
        QVERIFY(QDir().mkpath(m_store->filePath(QStringLiteral("shared/Document.ini.versions"))));
        for (const QString& name : left)
            QVERIFY(Files::Write(m_store->filePath(name), "half"));
        QVERIFY(Files::Write(m_store->filePath(QStringLiteral("shared/") + ofAnother), "half"));
        Document()->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        for (const QString& name : left)
            QVERIFY2(!QFile::exists(m_store->filePath(name)), qPrintable(name));
        QCOMPARE(SharedFiles(), QStringList({ofAnother, QStringLiteral("Document.ini")}));
    }

private:
    QString DocumentFile() const { return m_store->filePath(QStringLiteral("shared/Document.ini")); }

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
