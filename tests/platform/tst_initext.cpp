#include "platform/initext.h"

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

bool CanBeAskedFor(const QString& key)
{
    return !key.isEmpty() && !key.startsWith(u'/') && !key.endsWith(u'/') && !key.contains(QLatin1String("//")) &&
           !key.contains(u'%') && !key.contains(u'\\');
}

/// Nothing for other types than text, and lists of it.
std::optional<QString> TextOf(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::QByteArray:
        return QString::fromUtf8(value.toByteArray());
    case QMetaType::QStringList:
        return value.toStringList().join(QStringLiteral(", "));
    case QMetaType::QVariantList: {
        QStringList texts;
        for (const QVariant& item : value.toList())
            texts += TextOf(item).value_or(QString());
        return texts.join(QStringLiteral(", "));
    }
    default:
        return std::nullopt;
    }
}

/// The keys that have the same spelling as path, with their values; nothing for a damaged text.
std::optional<QMap<QString, QString>> OwnValues(const QByteArray& text)
{
    const IniText own(text);
    if (own.IsDamaged())
        return std::nullopt;
    QMap<QString, QString> values = own.Values();
    values.removeIf([](const auto& entry) { return !CanBeAskedFor(entry.key()); });
    return values;
}

} // namespace

/// The text of a document beside what the toolkit's own settings make of it.
class tst_IniText : public QObject
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
            const auto theirs = TheirValues(text);
            QVERIFY2(OwnValues(text) == theirs, text.toPercentEncoding(" []=;,\"\\@").constData());
            if (!theirs)
                continue;

            // With something else changed both read the same again.
            ++whole;
            IniText changed(text);
            changed.Set(kPath, kValue);
            auto expected = *theirs;
            expected.insert(kPath, kValue);
            QVERIFY2(OwnValues(changed.Text()) == expected, text.toPercentEncoding(" []=;,\"\\@").constData());
            QVERIFY2(TheirValues(changed.Text()) == expected, text.toPercentEncoding(" []=;,\"\\@").constData());
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
            QVERIFY2(OwnValues(written) == expected, written.constData());
            // The section that is called like the one of the root's keys has a spelling of its own.
            QVERIFY2(TheirValues(written) == plainlySpelled, written.constData());
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
        QCOMPARE(OwnValues(written), std::optional(expected));

        // What is no text stays, byte for byte.
        IniText text(written);
        text.Set(QStringLiteral("Number"), QStringLiteral("6"));
        expected.insert(QStringLiteral("Number"), QStringLiteral("6"));
        QVERIFY(text.Text().contains("Size=@Size(3 4)"));
        QCOMPARE(TheirValues(text.Text()), std::optional(expected));
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
        QCOMPARE(OwnValues(text.Text()), std::optional(expected));
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

    void byteOrderMarksAreCharacters()
    {
        const QString mark(QChar::ByteOrderMark);
        for (const QString& value : {mark, mark + mark, QStringLiteral("a\"") + mark + u'z', u'\n' + mark + u'1'}) {
            IniText text{QByteArray()};
            text.Set(kPath, value);
            QCOMPARE(OwnValues(text.Text()).value().value(kPath), value);
            QCOMPARE(TheirValues(text.Text()).value().value(kPath), value);
        }
        // As other programs write them.
        QCOMPARE(IniText("k=a\\tb\xef\xbb\xbf"
                         "c\n")
                     .Values()
                     .value(QStringLiteral("k")),
                 QStringLiteral("a\tb") + mark + u'c');
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
        QCOMPARE(OwnValues(same), std::optional(expected));
        QCOMPARE(TheirValues(same), std::optional(expected));

        IniText changed(text);
        changed.Set(kPath, kValue);
        auto more = expected;
        more.insert(kPath, kValue);
        QCOMPARE(OwnValues(changed.Text()), std::optional(more));
        QCOMPARE(TheirValues(changed.Text()), std::optional(more));
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

private:
    /// As `OwnValues`.
    std::optional<QMap<QString, QString>> TheirValues(const QByteArray& text)
    {
        // Never the same name twice: what is read of a file is remembered.
        const QString path = m_folder.filePath(QStringLiteral("%1.ini").arg(++m_files));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            return std::nullopt;
        file.close();
        QMap<QString, QString> values;
        {
            const QSettings settings(path, QSettings::IniFormat);
            const QStringList keys = settings.allKeys();
            if (settings.status() != QSettings::NoError)
                return std::nullopt;
            for (const QString& key : keys) {
                const auto value = CanBeAskedFor(key) ? TextOf(settings.value(key)) : std::nullopt;
                if (value)
                    values.insert(key, *value);
            }
        }
        QFile::remove(path);
        return values;
    }

    const QTemporaryDir m_folder;
    int m_files = 0;
};

QTEST_GUILESS_MAIN(tst_IniText)
#include "tst_initext.moc"
