// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/cfgcenter.h"
#include "platform/config/documenttext.h"
#include "platform/icfg.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QDirIterator>
#include <QTemporaryDir>
#include <QTest>

#include <climits>
#include <memory>
#include <optional>

namespace {

const QString kKey = QStringLiteral("Key");
const QString kValue = QStringLiteral("Value");
const QString kNone = QStringLiteral("(none)");

ICfg* Document(const QString& name = QStringLiteral("Document"))
{
    return CfgCenter::CreateCfg(name, View::Application, {});
}

std::unique_ptr<ICfg> Child(ICfg* node, const QString& name)
{
    return std::unique_ptr<ICfg>(node->OpenChild(name, 0));
}

/// Names that file formats and file systems often handle wrongly.
void AddAwkwardNames(qsizetype longest)
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("space") << QStringLiteral(" ");
    QTest::newRow("spaces around") << QStringLiteral("  a b  ");
    QTest::newRow("slash") << QStringLiteral("a/b");
    QTest::newRow("only a slash") << QStringLiteral("/");
    QTest::newRow("slashes") << QStringLiteral("//a//b//");
    QTest::newRow("backslash") << QStringLiteral("a\\b");
    QTest::newRow("drive letter") << QStringLiteral("C:\\a/b");
    QTest::newRow("dots") << QStringLiteral("..");
    QTest::newRow("parents") << QStringLiteral("../../a");
    QTest::newRow("percent") << QStringLiteral("%");
    QTest::newRow("looks escaped") << QStringLiteral("%002F%2F%U0041");
    QTest::newRow("equals sign") << QStringLiteral("a=b");
    QTest::newRow("brackets") << QStringLiteral("[a]");
    QTest::newRow("comment signs") << QStringLiteral(";#a");
    QTest::newRow("quotes") << QStringLiteral("\"a\"");
    QTest::newRow("line breaks") << QStringLiteral("a\nb\r\nc");
    QTest::newRow("null character") << QStringLiteral("a") + QChar(0) + QStringLiteral("b");
    QTest::newRow("General") << QStringLiteral("General");
    QTest::newRow("general") << QStringLiteral("general");
    QTest::newRow("%General") << QStringLiteral("%General");
    QTest::newRow("characters beyond the BMP") << QStringLiteral("Stra\u00dfe \u0416 \u6f22 \U0001F4E1");
    QTest::newRow("unpaired surrogate") << QStringLiteral("a") + QChar(0xDC00) + QStringLiteral("b");
    QTest::newRow("long") << QString(longest, u'a');
}

} // namespace

/// The configuration's interface, in memory and after a restart.
class TestCfgCenter : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_store.emplace();
        QVERIFY(m_store->isValid());
        QVERIFY(CfgCenter::Open(m_store->path()));
    }
    void cleanup()
    {
        CfgCenter::Close();
        m_store.reset();
    }

    void viewValuesAreFixed()
    {
        QCOMPARE(int(View::User), 1);
        QCOMPARE(int(View::Application), 2);
        QCOMPARE(int(View::Shared), 4);
    }

    void nodesLiveInMemoryWithoutOpen()
    {
        CfgCenter::Close();
        Document()->SetString(kKey, kValue, 0);
        CfgCenter::GetAppCfg(View::User)->SetInt(kKey, 7, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kValue);
        QCOMPARE(CfgCenter::GetAppCfg(View::User)->GetInt(kKey, 0, 0), 7);
        QVERIFY(QDir(m_store->path()).isEmpty());
        CfgCenter::Close();
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
    }

    void sameNodeForTheSameDocument()
    {
        QCOMPARE(Document(), Document());
        QCOMPARE(CfgCenter::GetAppCfg(View::User), CfgCenter::GetAppCfg(View::User));
        QCOMPARE(CfgCenter::CreateCfg(kKey, View::User, QStringLiteral("Sub")),
                 CfgCenter::CreateCfg(kKey, View::User, QStringLiteral("Sub")));
        QVERIFY(Document(QStringLiteral("A")) != Document(QStringLiteral("B")));
    }

    void viewsAndNamesAreSeparateDocuments()
    {
        const QList<View> views{View::User, View::Application, View::Shared};
        const QStringList names{QStringLiteral("A"), QStringLiteral("A/A"),          QStringLiteral("A/B"),
                                QString(),           QStringLiteral("@application"), QStringLiteral("application")};
        for (int round = 0; round < 2; ++round) {
            int number = 0;
            for (const View view : views) {
                for (const QString& name : names) {
                    ++number;
                    if (round == 0)
                        CfgCenter::CreateCfg(name, view, {})->SetInt(kKey, number, 0);
                    else
                        QCOMPARE(CfgCenter::CreateCfg(name, view, {})->GetInt(kKey, 0, 0), number);
                }
                ++number;
                if (round == 0)
                    CfgCenter::GetAppCfg(view)->SetInt(kKey, number, 0);
                else
                    QCOMPARE(CfgCenter::GetAppCfg(view)->GetInt(kKey, 0, 0), number);
            }
            QVERIFY(CfgCenter::SaveDocument());
            Restart();
        }
    }

    void subIsAChildNode()
    {
        CfgCenter::CreateCfg(QStringLiteral("Document"), View::Application, QStringLiteral("Sub"))
            ->SetString(kKey, kValue, 0);
        QCOMPARE(Child(Document(), QStringLiteral("Sub"))->GetString(kKey, kNone, 0), kValue);
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
    }

    void missingValuesReadAsTheDefault()
    {
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
        QCOMPARE(Document()->GetInt(kKey, -5, 0), -5);
        QCOMPARE(Document()->GetBool(kKey, true, 0), true);
        QCOMPARE(Document()->GetBool(kKey, false, 0), false);
        QCOMPARE(Child(Document(), QStringLiteral("Missing"))->GetInt(kKey, 3, 0), 3);
    }

    void savedValuesAreReadByTheNextRun()
    {
        Document()->SetString(QStringLiteral("String"), kValue, 0);
        Document()->SetString(QStringLiteral("Empty"), QString(), 0);
        Document()->SetInt(QStringLiteral("Least"), INT_MIN, 0);
        Document()->SetInt(QStringLiteral("Greatest"), INT_MAX, 0);
        Document()->SetBool(QStringLiteral("True"), true, 0);
        Document()->SetBool(QStringLiteral("False"), false, 0);
        Child(Child(Document(), QStringLiteral("A")).get(), QStringLiteral("B"))->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        Restart();
        QCOMPARE(Document()->GetString(QStringLiteral("String"), kNone, 0), kValue);
        QCOMPARE(Document()->GetString(QStringLiteral("Empty"), kNone, 0), QString());
        QCOMPARE(Document()->GetInt(QStringLiteral("Least"), 0, 0), INT_MIN);
        QCOMPARE(Document()->GetInt(QStringLiteral("Greatest"), 0, 0), INT_MAX);
        QCOMPARE(Document()->GetBool(QStringLiteral("True"), false, 0), true);
        QCOMPARE(Document()->GetBool(QStringLiteral("False"), true, 0), false);
        QCOMPARE(Child(Child(Document(), QStringLiteral("A")).get(), QStringLiteral("B"))->GetString(kKey, kNone, 0),
                 kValue);
    }

    void textsConvertToOtherTypes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<std::optional<int>>("number");
        QTest::addColumn<std::optional<bool>>("truth");
        using Number = std::optional<int>;
        using Truth = std::optional<bool>;
        QTest::newRow("1") << QStringLiteral("1") << Number(1) << Truth(true);
        QTest::newRow("0") << QStringLiteral("0") << Number(0) << Truth(false);
        QTest::newRow("2") << QStringLiteral("2") << Number(2) << Truth();
        QTest::newRow("-12") << QStringLiteral("-12") << Number(-12) << Truth();
        QTest::newRow("true") << QStringLiteral("true") << Number() << Truth(true);
        QTest::newRow("False") << QStringLiteral("False") << Number() << Truth(false);
        QTest::newRow("yes") << QStringLiteral("yes") << Number() << Truth();
        QTest::newRow("empty") << QString() << Number() << Truth();
        QTest::newRow("2147483648") << QStringLiteral("2147483648") << Number() << Truth();
        QTest::newRow("1.5") << QStringLiteral("1.5") << Number() << Truth();
        QTest::newRow("0x10") << QStringLiteral("0x10") << Number() << Truth();
        QTest::newRow("10 s") << QStringLiteral("10 s") << Number() << Truth();
    }
    void textsConvertToOtherTypes()
    {
        QFETCH(QString, text);
        QFETCH(std::optional<int>, number);
        QFETCH(std::optional<bool>, truth);
        Document()->SetString(kKey, text, 0);
        for (const int defaultValue : {-77, 77})
            QCOMPARE(Document()->GetInt(kKey, defaultValue, 0), number.value_or(defaultValue));
        for (const bool defaultValue : {false, true})
            QCOMPARE(Document()->GetBool(kKey, defaultValue, 0), truth.value_or(defaultValue));
        QCOMPARE(Document()->GetString(kKey, kNone, 0), text);
    }

    void valuesAreStoredAsText()
    {
        Document()->SetInt(kKey, -12, 0);
        QCOMPARE(Document()->GetString(kKey, kNone, 0), QStringLiteral("-12"));
        Document()->SetBool(kKey, true, 0);
        QCOMPARE(Document()->GetString(kKey, kNone, 0), QStringLiteral("true"));
        Document()->SetBool(kKey, false, 0);
        QCOMPARE(Document()->GetString(kKey, kNone, 0), QStringLiteral("false"));
    }

    void flagsAndModesAreIgnored()
    {
        Document()->SetString(kKey, kValue, 5);
        QCOMPARE(Document()->GetString(kKey, kNone, -1), kValue);
        const std::unique_ptr<ICfg> child(Document()->OpenChild(QStringLiteral("A"), 9));
        child->SetInt(kKey, 1, 2);
        QCOMPARE(Child(Document(), QStringLiteral("A"))->GetInt(kKey, 0, 3), 1);
        Document()->Remove(kKey, 4);
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
    }

    void handlesOfOneNodeShareItsValues()
    {
        const auto first = Child(Document(), QStringLiteral("A"));
        auto second = Child(Document(), QStringLiteral("A"));
        first->SetString(kKey, kValue, 0);
        QCOMPARE(second->GetString(kKey, kNone, 0), kValue);
        second.reset();
        QCOMPARE(first->GetString(kKey, kNone, 0), kValue);
    }

    void removeDeletesKeyAndChildOfThatName()
    {
        const QString a = QStringLiteral("A");
        Document()->SetString(a, kValue, 0);
        Child(Document(), a)->SetString(kKey, kValue, 0);
        Child(Child(Document(), a).get(), a)->SetString(kKey, kValue, 0);
        // Nodes whose names only start with it remain, as do keys of that name in other nodes.
        const QStringList others{QStringLiteral("AB"), QStringLiteral("A/B"), QStringLiteral("A B"),
                                 QStringLiteral("a")};
        for (const QString& other : others) {
            Document()->SetString(other, other, 0);
            Child(Document(), other)->SetString(a, other, 0);
        }
        QVERIFY(CfgCenter::SaveDocument());

        Document()->Remove(a, 0);
        for (int round = 0; round < 2; ++round) {
            QCOMPARE(Document()->GetString(a, kNone, 0), kNone);
            QCOMPARE(Child(Document(), a)->GetString(kKey, kNone, 0), kNone);
            QCOMPARE(Child(Child(Document(), a).get(), a)->GetString(kKey, kNone, 0), kNone);
            for (const QString& other : others) {
                QCOMPARE(Document()->GetString(other, kNone, 0), other);
                QCOMPARE(Child(Document(), other)->GetString(a, kNone, 0), other);
            }
            QVERIFY(CfgCenter::SaveDocument());
            Restart();
        }
    }

    void removingAMissingNameIsNoError()
    {
        Document()->SetString(kKey, kValue, 0);
        Document()->Remove(QStringLiteral("Missing"), 0);
        Child(Document(), kKey)->Remove(kKey, 0);
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kValue);
    }

    void valuesWrittenAfterARemoveStay()
    {
        const auto node = Child(Document(), QStringLiteral("A"));
        node->SetString(QStringLiteral("Old"), kValue, 0);
        node->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        Document()->Remove(QStringLiteral("A"), 0);
        node->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        Restart();
        QCOMPARE(Child(Document(), QStringLiteral("A"))->GetString(kKey, kNone, 0), kValue);
        QCOMPARE(Child(Document(), QStringLiteral("A"))->GetString(QStringLiteral("Old"), kNone, 0), kNone);
    }

    void anyKeyNameWorks_data() { AddAwkwardNames(1000); }
    void anyKeyNameWorks()
    {
        QFETCH(QString, name);
        Document()->SetString(name, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        Restart();
        QCOMPARE(Document()->GetString(name, kNone, 0), kValue);
        Document()->Remove(name, 0);
        QVERIFY(CfgCenter::SaveDocument());
        Restart();
        QCOMPARE(Document()->GetString(name, kNone, 0), kNone);
    }

    void anyNodeNameWorks_data() { AddAwkwardNames(1000); }
    void anyNodeNameWorks()
    {
        QFETCH(QString, name);
        Child(Document(), name)->SetString(name, kValue, 0);
        Child(Child(Document(), kKey).get(), name)->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        Restart();
        QCOMPARE(Child(Document(), name)->GetString(name, kNone, 0), kValue);
        QCOMPARE(Child(Child(Document(), kKey).get(), name)->GetString(kKey, kNone, 0), kValue);
    }

    void similarNamesStayDistinct()
    {
        const QStringList names{QStringLiteral("Name"),    QStringLiteral("name"),
                                QStringLiteral("NAME"),    QStringLiteral("General"),
                                QStringLiteral("general"), QStringLiteral("GENERAL"),
                                QStringLiteral("a/b"),     QStringLiteral("a\\b"),
                                QStringLiteral("a%002Fb"), QString(),
                                QStringLiteral("%"),       QStringLiteral("/"),
                                QStringLiteral("\u00c4"),  QStringLiteral("\u00e4"),
                                QStringLiteral("A\u0308")};
        const QString longest = names.join(u'|');
        for (const QString& name : names) {
            Document()->SetString(name, name + longest, 0);
            for (const QString& key : names)
                Child(Document(), name)->SetString(key, name + key + longest, 0);
            QVERIFY(CfgCenter::SaveDocument()); // one by one, so that the file already contains the earlier ones
        }
        Restart();
        for (const QString& name : names) {
            QCOMPARE(Document()->GetString(name, kNone, 0), name + longest);
            for (const QString& key : names)
                QCOMPARE(Child(Document(), name)->GetString(key, kNone, 0), name + key + longest);
        }
    }

    void anyTextCanBeStored_data()
    {
        QTest::addColumn<QString>("value");
        QTest::newRow("empty") << QString();
        QTest::newRow("spaces around") << QStringLiteral("  a  ");
        QTest::newRow("only a space") << QStringLiteral(" ");
        QTest::newRow("tabs and line breaks") << QStringLiteral("\ta\nb\r\nc\rd\t");
        QTest::newRow("commas") << QStringLiteral("a,b, c,,");
        QTest::newRow("comment signs") << QStringLiteral("; a # b ; c");
        QTest::newRow("equals signs, brackets") << QStringLiteral("=a=[b]=");
        QTest::newRow("quotes") << QStringLiteral("\"a\" 'b' \"");
        QTest::newRow("backslashes") << QStringLiteral("C:\\new\\x41\\");
        QTest::newRow("percent") << QStringLiteral("100% %20 %1");
        QTest::newRow("at") << QStringLiteral("@");
        QTest::newRow("at at") << QStringLiteral("@@a");
        QTest::newRow("@Invalid()") << QStringLiteral("@Invalid()");
        QTest::newRow("@ByteArray(a)") << QStringLiteral("@ByteArray(\u00e4)");
        QTest::newRow("@Variant(a)") << QStringLiteral("@Variant(\\0\\0)");
        QTest::newRow("@String(a)") << QStringLiteral("@String(a)");
        QTest::newRow("@Size(1 2)") << QStringLiteral("@Size(1 2)");
        QTest::newRow("null character") << QStringLiteral("a") + QChar(0) + QStringLiteral("1b");
        QTest::newRow("only a null character") << QString(QChar(0));
        QTest::newRow("control characters before digits") << QStringLiteral("\u0001"
                                                                            "1\u001f"
                                                                            "f\u007f"
                                                                            "0\u0085"
                                                                            "a");
        QTest::newRow("characters beyond the BMP") << QStringLiteral("Stra\u00dfe \u0416 \u6f22 \U0001F4E1");
        QTest::newRow("noncharacters") << QStringLiteral("\ufffe\uffff\ufffd");
        QTest::newRow("leading byte order mark") << QChar(0xFEFF) + QStringLiteral("a");
        QTest::newRow("byte order mark inside")
            << QStringLiteral("a") + QChar(0xFEFF) + QStringLiteral("b\nc") + QChar(0xFEFF);
        QTest::newRow("unpaired surrogate") << QString(QChar(0xD83D));
        QTest::newRow("unpaired low surrogate in text")
            << QStringLiteral("a\u00e4") + QChar(0xDCE1) + QStringLiteral("b");
        QTest::newRow("unpaired surrogate and null") << QString(QChar(0xD83D)) + QChar(0);
        QTest::newRow("1 MB") << QString(1 << 20, u'x');
        QTest::newRow("1 MB of escaped characters") << QStringLiteral("\"\\,\u00e4\n\U0001F4E1").repeated(1 << 17);
        QTest::newRow("12 MB") << QStringLiteral("3c3f786d6c20").repeated(1 << 20);
    }
    void anyTextCanBeStored()
    {
        QFETCH(QString, value);
        Document()->SetString(kKey, value, 0);
        Document()->SetString(QStringLiteral("Other"), kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(Document()->GetString(kKey, kNone, 0) == value); // not QCOMPARE: the text may be long
        Restart();
        QVERIFY(Document()->GetString(kKey, kNone, 0) == value);
        QCOMPARE(Document()->GetString(QStringLiteral("Other"), kNone, 0), kValue);
        // Again, with a file that already contains it.
        Document()->SetString(QStringLiteral("Third"), kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        Restart();
        QVERIFY(Document()->GetString(kKey, kNone, 0) == value);
    }

    void eachDocumentHasItsFile()
    {
        CfgCenter::CreateCfg(QStringLiteral("KiteResources/ConnectData"), View::Shared, {})
            ->SetString(QStringLiteral("ConnectionCount"), QStringLiteral("3"), 0);
        CfgCenter::CreateCfg(QStringLiteral("Administration"), View::Application, {})->SetInt(kKey, 1, 0);
        CfgCenter::GetAppCfg(View::User)->SetInt(kKey, 1, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(Files(), QStringList({QStringLiteral("application/Administration.json"),
                                       QStringLiteral("shared/KiteResources/ConnectData.json"),
                                       QStringLiteral("user/@application.json")}));
        QFile file(m_store->filePath(QStringLiteral("shared/KiteResources/ConnectData.json")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), DocumentText::Write({{QStringLiteral("ConnectionCount"), QStringLiteral("3")}}));
    }

    void readingCreatesNoFile()
    {
        QCOMPARE(Document()->GetString(kKey, kNone, 0), kNone);
        Child(Document(), kKey);
        Document()->Remove(kKey, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(QDir(m_store->path()).isEmpty());
    }

    void anyDocumentNameStaysInsideTheStore_data()
    {
        // Longer names do not fit into a file name.
        AddAwkwardNames(200);
        QTest::newRow("device") << QStringLiteral("CON/nul/Com1");
        QTest::newRow("folder named like a file") << QStringLiteral("a.json/b.json.lock/c");
        QTest::newRow("trailing dot and space") << QStringLiteral("a./b ");
        QTest::newRow("home") << QStringLiteral("~/a");
    }
    void anyDocumentNameStaysInsideTheStore()
    {
        QFETCH(QString, name);
        // The store is in nested folders, so that the test finds files written outside it.
        const QString deep = m_store->filePath(QStringLiteral("1/2/3/4"));
        QVERIFY(CfgCenter::Open(deep));
        Document(name)->SetString(kKey, kValue, 0);
        QVERIFY(CfgCenter::SaveDocument());
        const QStringList files = Files();
        QCOMPARE(files.size(), 1);
        QVERIFY2(files.front().startsWith(QLatin1String("1/2/3/4/application/")), qUtf8Printable(files.front()));
        const QStringList steps = files.front().split(u'/');
        for (const QString& step : steps) {
            QVERIFY2(!step.contains(u'\\') && !step.contains(u':') && !step.endsWith(u'.') && !step.endsWith(u' '),
                     qUtf8Printable(step));
            QVERIFY2(step.section(u'.', 0, 0).compare(QLatin1String("con"), Qt::CaseInsensitive) != 0 &&
                         step.section(u'.', 0, 0).compare(QLatin1String("nul"), Qt::CaseInsensitive) != 0,
                     qUtf8Printable(step));
        }
        QVERIFY(CfgCenter::Open(deep));
        QCOMPARE(Document(name)->GetString(kKey, kNone, 0), kValue);
    }

    void similarDocumentNamesStayDistinct()
    {
        const QStringList names{QStringLiteral("a"),
                                QStringLiteral("a.json"),
                                QStringLiteral("a.json/a"),
                                QStringLiteral("a/a"),
                                QStringLiteral("/a"),
                                QStringLiteral("a/"),
                                QStringLiteral("a//a"),
                                QStringLiteral("a\\a"),
                                QStringLiteral("a%2Fa"),
                                QStringLiteral("./a"),
                                QStringLiteral("../a"),
                                QStringLiteral("b/../a"),
                                QStringLiteral("."),
                                QStringLiteral(".."),
                                QString(),
                                QStringLiteral("%"),
                                QStringLiteral("a.json.lock/a"),
                                QStringLiteral("a.json.lock")};
        for (const QString& name : names)
            Document(name)->SetString(kKey, QStringLiteral("<%1>").arg(name), 0);
        QVERIFY(CfgCenter::SaveDocument());
        Restart();
        for (const QString& name : names)
            QCOMPARE(Document(name)->GetString(kKey, kNone, 0), QStringLiteral("<%1>").arg(name));
        QCOMPARE(Files().size(), names.size());
    }

private:
    void Restart() { QVERIFY(CfgCenter::Open(m_store->path())); }

    QStringList Files() const
    {
        QStringList files;
        const QDir store(m_store->path());
        QDirIterator it(store.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (it.hasNext())
            files += store.relativeFilePath(it.next());
        files.sort();
        return files;
    }

    std::optional<QTemporaryDir> m_store;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCfgCenter)
#include "tst_cfgcenter.moc"
