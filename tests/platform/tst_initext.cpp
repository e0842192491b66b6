#include "platform/config/initext.h"
#include "tests/platform/inireadings.h"
#include "tests/support/testmain.h"

#include <QDateTime>
#include <QFile>
#include <QMap>
#include <QRandomGenerator>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <optional>

namespace {

const QString kPath = QStringLiteral("Added/Key");
const QString kValue = QStringLiteral("a value");

// Pieces that mean something to the form, and some that do not.
constexpr std::array kPieces = {"[",
                                "]",
                                "=",
                                "\n",
                                "\r\n",
                                "\r",
                                ";",
                                "\"",
                                "\\",
                                "\\x",
                                "\\x4",
                                "41",
                                "7",
                                "\\0",
                                "\\n",
                                "\\\"",
                                ",",
                                ", ",
                                "@",
                                "@@",
                                "@",
                                "@String(q)",
                                ")",
                                " ",
                                "\t",
                                "a",
                                "b",
                                "Key",
                                "General",
                                "%General",
                                "%",
                                "/",
                                "\u00df",
                                "\u20ac",
                                "\n[a]\n",
                                "x\\",
                                "\\\n",
                                "\n[b/c]\nk=",
                                "\nKey=",
                                "\nk2=",
                                "?",
                                "'",
                                "\\?",
                                "\\'",
                                "\\a",
                                "\\9",
                                "\\12",
                                "#",
                                "{",
                                "\x01",
                                "%2C",
                                "%U20AC",
                                "\\\r\n",
                                "\\\r",
                                "\r;",
                                "\\t ",
                                " \n",
                                "@ByteArray(b)",
                                "\xf0\x9f\x98\x80"};

} // namespace

/// The text of a document beside what the toolkit's own settings make of it.
class TestIniText : public QObject
{
    Q_OBJECT

private slots:
    void readsAndKeepsWhatQSettingsReads()
    {
        QRandomGenerator random(4711);
        int whole = 0;
        for (int i = 0; i < 4000; ++i) {
            QByteArray text = random.bounded(2) == 0 ? "Key=" : "";
            for (int k = random.bounded(20); k >= 0; --k)
                text += kPieces.at(static_cast<std::size_t>(random.bounded(static_cast<int>(kPieces.size()))));
            if (text == ";" || text == "; ") // the first line, cut off
                continue;
            const auto theirs = IniReadings::Theirs(text);
            QVERIFY2(IniReadings::Own(text) == theirs, text.toPercentEncoding(" []=;,\"\\@").constData());
            if (!theirs)
                continue;

            // With something else changed both read the same again.
            ++whole;
            IniText changed(text);
            changed.Set(kPath, kValue);
            auto expected = *theirs;
            expected.insert(kPath, kValue);
            QVERIFY2(IniReadings::Own(changed.Text()) == expected, text.toPercentEncoding(" []=;,\"\\@").constData());
            QVERIFY2(IniReadings::Theirs(changed.Text()) == expected,
                     text.toPercentEncoding(" []=;,\"\\@").constData());
        }
        QVERIFY(whole > 500); // else it proves little
    }

    void writesWhatQSettingsReads()
    {
        const QString special = QStringLiteral(";,=\"\\@ ()%/");
        QRandomGenerator random(815);
        for (int i = 0; i < 4000; ++i) {
            QString value;
            for (int k = random.bounded(12); k > 0; --k) {
                switch (random.bounded(4)) {
                case 0:
                    value += QChar(random.bounded(0x20));
                    break;
                case 1:
                    value += QChar(random.bounded(0x10000));
                    break;
                case 2:
                    value += special.at(random.bounded(static_cast<int>(special.size())));
                    break;
                default:
                    value += QChar('0' + random.bounded(60));
                }
            }
            IniText text{QByteArray()};
            text.Set(QStringLiteral("Node/Key"), value);
            text.Set(QStringLiteral("General/Key"), value);
            text.Set(QStringLiteral("Root"), value);
            const QMap<QString, QString> expected{{QStringLiteral("Node/Key"), value},
                                                  {QStringLiteral("General/Key"), value},
                                                  {QStringLiteral("Root"), value}};
            auto plainlySpelled = expected;
            plainlySpelled.remove(QStringLiteral("General/Key"));
            const QByteArray written = text.Text();
            QVERIFY2(IniReadings::Own(written) == expected, written.constData());
            // The section that is called like the one of the root's keys has a spelling of its own.
            QVERIFY2(IniReadings::Theirs(written) == plainlySpelled, written.constData());
        }
    }

    void readsWhatQSettingsWrites()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("settings.ini"));
        QMap<QString, QString> expected;
        {
            QSettings settings(path, QSettings::IniFormat);
            const auto set = [&](const QString& key, const QVariant& value, const QString& text) {
                settings.setValue(key, value);
                expected.insert(key, text);
            };
            set(QStringLiteral("Number"), 5, QStringLiteral("5"));
            set(QStringLiteral("Yes"), true, QStringLiteral("true"));
            set(QStringLiteral("List"), QStringList{QStringLiteral("a,b"), QStringLiteral("@c"), QString()},
                QStringLiteral("a,b, @c, "));
            set(QStringLiteral("Bytes"), QByteArray("x\xc3\x9fy"), QStringLiteral("x\u00dfy"));
            set(QStringLiteral("At/Key"), QStringLiteral("@Size(1 2)"), QStringLiteral("@Size(1 2)"));
            set(QStringLiteral("A/B/C"), QStringLiteral(" a;b=c\t\n\"d\" "), QStringLiteral(" a;b=c\t\n\"d\" "));
            set(QStringLiteral("Zero"), QString(QChar(0)) + QStringLiteral("7"),
                QString(QChar(0)) + QStringLiteral("7"));
            settings.setValue(QStringLiteral("Size"), QSize(3, 4));
            settings.setValue(QStringLiteral("Map"), QVariantMap{{QStringLiteral("text"), QStringLiteral("t")}});
            settings.setValue(QStringLiteral("Time"), QDateTime::fromSecsSinceEpoch(0));
            settings.setValue(QStringLiteral("None"), QVariant());
        }
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray written = file.readAll();
        QCOMPARE(IniReadings::Own(written), std::optional(expected));

        // What is no text stays, byte for byte.
        IniText text(written);
        text.Set(QStringLiteral("Number"), QStringLiteral("6"));
        expected.insert(QStringLiteral("Number"), QStringLiteral("6"));
        QVERIFY(text.Text().contains("Size=@Size(3 4)"));
        QCOMPARE(IniReadings::Theirs(text.Text()), std::optional(expected));
    }

    void unchangedTextStaysAsItIs()
    {
        const QByteArray typed = "; typed by hand\n[General]\nKey = a , b ; why\n\n\n[Other]\nx=1\n";
        const IniText text(typed);
        QVERIFY(text.Text().contains(typed));
        QCOMPARE(IniText(text.Text()).Text(), text.Text());
    }

    void removedKeysGoWithWhatIsBelow()
    {
        IniText text("Key=1\nA=2\n[A]\nB=3\nB\\C=4\n[AB]\nD=5\n");
        text.Remove(QStringLiteral("A"));
        const QMap<QString, QString> expected{{QStringLiteral("Key"), QStringLiteral("1")},
                                              {QStringLiteral("AB/D"), QStringLiteral("5")}};
        QCOMPARE(IniReadings::Own(text.Text()), std::optional(expected));
        QVERIFY(!text.Text().contains("[A]"));
    }

    void removedKeysGoHoweverTheyAreSpelled()
    {
        // A program for a system that tells upper case from lower case has made the first two, a person the others.
        IniText text("[Node]\nk=1\n[node]\nk=2\n[General]\nA=3\n%41=4\n%250042=5\n[%250042]\nx=6\n[C]\nx=7\n");
        text.Remove(QStringLiteral("node"));
        text.Remove(QStringLiteral("A"));
        text.Remove(QStringLiteral("B"));
        const QMap<QString, QString> expected{{QStringLiteral("Node/k"), QStringLiteral("1")},
                                              {QStringLiteral("C/x"), QStringLiteral("7")}};
        QCOMPARE(IniText(text.Text()).Values(), expected);
    }

    void digitsAloneSpellACharacter()
    {
        // What a reader of numbers would take as well: a sign, blanks, ends of lines.
        const IniText text("%25+041=1\n%25 041=2\n\"%\n\r41\"=3\n%250042=4\n");
        QCOMPARE(text.Values().size(), 4);
        QVERIFY(!text.Values().contains(QStringLiteral("A")));
        QVERIFY(!text.Values().contains(QStringLiteral("\"A\"")));
        QCOMPARE(text.Values().value(QStringLiteral("B")), QStringLiteral("4"));
    }

    void byteOrderMarksAreCharacters()
    {
        const QString mark(QChar::ByteOrderMark);
        for (const QString& value : {mark, mark + mark, QStringLiteral("a\"") + mark + u'z', u'\n' + mark + u'1'}) {
            IniText text{QByteArray()};
            text.Set(kPath, value);
            QCOMPARE(IniReadings::Own(text.Text()).value().value(kPath), value);
            QCOMPARE(IniReadings::Theirs(text.Text()).value().value(kPath), value);
        }
        // As other programs write them.
        QCOMPARE(IniText(QByteArray("k=a\\t") + mark.toUtf8() + "c\n").Values().value(QStringLiteral("k")),
                 QStringLiteral("a\t") + mark + u'c');
    }

    void aBrokenOffValueTakesNothingAlong_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("value");
        QTest::newRow("quotation marks") << QByteArray("[B]\nf=\"open") << QStringLiteral("open");
        QTest::newRow("with a line's end") << QByteArray("[B]\nf=\"open\n") << QStringLiteral("open\n");
        QTest::newRow("backslash") << QByteArray("[B]\nf=open\\") << QStringLiteral("open");
        QTest::newRow("both") << QByteArray("[B]\nf=\"open\\") << QStringLiteral("open");
        QTest::newRow("escaped line's end") << QByteArray("[B]\nf=open\\\r\r\n") << QStringLiteral("open");
    }
    void aBrokenOffValueTakesNothingAlong()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, value);
        const QMap<QString, QString> expected{{QStringLiteral("B/f"), value}};
        const QByteArray same = IniText(text).Text();
        QCOMPARE(IniReadings::Own(same), std::optional(expected));
        QCOMPARE(IniReadings::Theirs(same), std::optional(expected));

        IniText changed(text);
        changed.Set(kPath, kValue);
        auto more = expected;
        more.insert(kPath, kValue);
        QCOMPARE(IniReadings::Own(changed.Text()), std::optional(more));
        QCOMPARE(IniReadings::Theirs(changed.Text()), std::optional(more));
        QCOMPARE(IniText(changed.Text()).Text(), changed.Text());
    }

    // Nobody makes such texts by mistake, but a program that falls over one could not be started again.
    void hostileTextsAreKept_data()
    {
        QTest::addColumn<QByteArray>("line");
        QByteArray steps;
        for (int i = 0; i < 100'000; ++i)
            steps += "\\a";
        QTest::newRow("many steps") << "a" + steps + "=1";
        // A list in a list in a list, as a stream of this toolkit's has it.
        QByteArray nested = "k=@Variant(";
        for (int i = 0; i < 200'000; ++i)
            nested += "\\0\\0\\0\\t\\0\\0\\0\\x1";
        QTest::newRow("nested lists") << nested + ")";
    }
    void hostileTextsAreKept()
    {
        QFETCH(QByteArray, line);
        IniText text("[General]\n" + line + "\nz=2\n");
        QVERIFY(!text.IsDamaged());
        QCOMPARE(text.Values().value(QStringLiteral("z")), QStringLiteral("2"));
        const qsizetype count = text.Values().size();
        text.Set(kPath, kValue);
        const QByteArray after = text.Text();
        QVERIFY(after.size() > line.size());
        QCOMPARE(IniText(after).Values().size(), count + 1);
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestIniText)
#include "tst_initext.moc"
