#include "platform/initext.h"

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
                                "@Size(1 2)",
                                "@",
                                "@String(q)",
                                "@Invalid()",
                                "@Variant(",
                                "@Rect(",
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
                                "\\t ",
                                " \n",
                                "@ByteArray(b)",
                                "\xf0\x9f\x98\x80"};

bool CanBeAskedFor(const QString& key)
{
    return !key.isEmpty() && !key.startsWith(u'/') && !key.endsWith(u'/') && !key.contains(QLatin1String("//")) &&
           !key.contains(u'%') && !key.contains(u'\\');
}

std::optional<QString> TextOf(const QVariant& value)
{
    if (value.typeId() == QMetaType::QStringList || value.typeId() == QMetaType::QVariantList)
        return value.toStringList().join(QStringLiteral(", "));
    if (value.typeId() == QMetaType::QVariantMap)
        return value.toMap().contains(QStringLiteral("text"))
                   ? std::optional(value.toMap().value(QStringLiteral("text")).toString())
                   : std::nullopt;
    return value.canConvert<QString>() ? std::optional(value.toString()) : std::nullopt;
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
        QCOMPARE(TheirValues(text.Text(), QStringLiteral("Size")), std::optional(expected));
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

private:
    /// As `OwnValues`; without `except`, which is there.
    std::optional<QMap<QString, QString>> TheirValues(const QByteArray& text, const QString& except = {})
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
                const auto value = CanBeAskedFor(key) && key != except ? TextOf(settings.value(key)) : std::nullopt;
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
