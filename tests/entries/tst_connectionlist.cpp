// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/config/documentfile.h"
#include "tests/entries/entrysamples.h"
#include "tests/entries/listreading.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/formats/boundedxmlreader.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

#include <QRandomGenerator>
#include <QTest>

#include <limits>

namespace {

/// `text` without the characters that XML does not allow.
QString Writable(const QString& text)
{
    QString writable;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text.at(i).unicode();
        const char16_t next = i + 1 < text.size() ? text.at(i + 1).unicode() : u'\0';
        if (unit >= 0xD800 && unit <= 0xDBFF && next >= 0xDC00 && next <= 0xDFFF) {
            writable += text.mid(i++, 2);
            continue;
        }
        const bool allowed = unit == 0x9 || unit == 0xA || unit == 0xD || (unit >= 0x20 && unit <= 0xD7FF) ||
                             (unit >= 0xE000 && unit <= 0xFFFD);
        if (allowed)
            writable += text.at(i);
    }
    return writable;
}

QString Units(std::initializer_list<char16_t> units)
{
    return QString::fromUtf16(units.begin(), static_cast<qsizetype>(units.size()));
}

/// An entry with `text` in each of its four texts.
Connection TextEntry(const QString& text)
{
    Connection entry(SampleEntry(7));
    entry.ConnectionName = text;
    entry.DeviceAddress = text;
    entry.DriverAddress = text;
    entry.Subsystem = text;
    return entry;
}

} // namespace

/// The document that is written, and the entries that are read back from it.
class TestConnectionList : public QObject
{
    Q_OBJECT

private slots:
    void emptyListHasDeclarationAndEmptyRoot();
    void documentOfOneEntry();
    void documentOfDefaultEntry();
    void textIsUtf8();
    void markupInNameIsWrittenUnchanged();

    void longListIsOneDocument();
    void writtenSizeIsExact_data();
    void writtenSizeIsExact();
    void everyListThatCanBeStoredCanBeRead();

    void entriesReadBackInOrderWithStatusAndSelection();
    void numbersReadBack_data();
    void numbersReadBack();
    void textsReadBackWithoutInvalidCharacters_data();
    void textsReadBackWithoutInvalidCharacters();
    void randomTextsReadBack();
};

void TestConnectionList::emptyListHasDeclarationAndEmptyRoot()
{
    QCOMPARE(ConnectionList::Write({}),
             QByteArray("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<ConnectionEntries/>\n"));
}

void TestConnectionList::documentOfOneEntry()
{
    const Connection entry = MastEntry();
    QCOMPARE(ConnectionList::Write({&entry}), QByteArray("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                                                         "<ConnectionEntries>\n"
                                                         "  <Connection>\n"
                                                         "    <ConnectionName><![CDATA[Mast 1]]></ConnectionName>\n"
                                                         "    <DeviceType>12</DeviceType>\n"
                                                         "    <ConnectionType>1</ConnectionType>\n"
                                                         "    <DeviceAddress><![CDATA[10.0.0.5]]></DeviceAddress>\n"
                                                         "    <DriverAddress><![CDATA[pc7]]></DriverAddress>\n"
                                                         "    <LinkSpeed>6</LinkSpeed>\n"
                                                         "    <TimeoutSeconds>30</TimeoutSeconds>\n"
                                                         "    <ConnectionStatus>1</ConnectionStatus>\n"
                                                         "    <Selected>true</Selected>\n"
                                                         "    <Subsystem><![CDATA[Corvus 2]]></Subsystem>\n"
                                                         "  </Connection>\n"
                                                         "</ConnectionEntries>\n"));
}

void TestConnectionList::documentOfDefaultEntry()
{
    const Connection entry;
    QCOMPARE(ConnectionList::Write({&entry}),
             QByteArray("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                        "<ConnectionEntries>\n"
                        "  <Connection>\n"
                        "    <ConnectionName><![CDATA[enter connection name here]]></ConnectionName>\n"
                        "    <DeviceType>4</DeviceType>\n"
                        "    <ConnectionType>0</ConnectionType>\n"
                        "    <DeviceAddress><![CDATA[]]></DeviceAddress>\n"
                        "    <DriverAddress><![CDATA[]]></DriverAddress>\n"
                        "    <LinkSpeed>0</LinkSpeed>\n"
                        "    <TimeoutSeconds>0</TimeoutSeconds>\n"
                        "    <ConnectionStatus>0</ConnectionStatus>\n"
                        "    <Selected>false</Selected>\n"
                        "    <Subsystem><![CDATA[]]></Subsystem>\n"
                        "  </Connection>\n"
                        "</ConnectionEntries>\n"));
}

void TestConnectionList::textIsUtf8()
{
    const QByteArray document = WriteList({NamedEntry(QStringLiteral(u"K\u00FCste \U0001F4E1"))});
    QVERIFY(document.contains("<![CDATA[K\xC3\xBCste \xF0\x9F\x93\xA1]]>"));
}

void TestConnectionList::markupInNameIsWrittenUnchanged()
{
    const QString name = QStringLiteral("A&B <b>\"x\"</b> 'y' &amp; <!-- z -->");
    const QByteArray document = WriteList({NamedEntry(name)});
    QVERIFY(document.contains("<ConnectionName><![CDATA[A&B <b>\"x\"</b> 'y' &amp; <!-- z -->]]></ConnectionName>"));
    QCOMPARE(ReadList(document).entries.at(0).ConnectionName, name);
}

void TestConnectionList::longListIsOneDocument()
{
    // More entries than are written at once.
    std::deque<Connection> entries;
    QByteArray expected = WriteList({NamedEntry(QStringLiteral("%"))});
    const qsizetype begin = expected.indexOf("  <Connection>");
    const QByteArray entry = expected.sliced(begin, expected.indexOf("</ConnectionEntries>") - begin);
    QByteArray content;
    for (int i = 0; i < 3001; ++i) {
        entries.push_back(NamedEntry(QString::number(i)));
        content += QByteArray(entry).replace("%", QByteArray::number(i));
    }
    QCOMPARE(WriteList(entries), expected.replace(entry, content));
}

void TestConnectionList::writtenSizeIsExact_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("letters") << QStringLiteral("abc");
    QTest::newRow("two, three and four bytes") << QStringLiteral(u"\u0080\u07FF\u0800\uFFFD\U0001F4E1");
    QTest::newRow("markup") << QStringLiteral("<a&b>\"'");
    QTest::newRow("ends of sections") << QStringLiteral("]]>]]]>]]>>");
    QTest::newRow("line breaks") << QStringLiteral("\r\n\r\r]]\r>\t");
    QTest::newRow("invalid characters") << Units({0, u'a', 1, 0xFFFE, 0xD83D, 0xDCE1, 0xDCE1, 0xD83D});
}

void TestConnectionList::writtenSizeIsExact()
{
    QFETCH(const QString, text);
    Connection entry = TextEntry(text);
    const qsizetype frame = 2 * WriteList({entry}).size() - WriteList({entry, entry}).size();
    QCOMPARE(ConnectionList::WrittenSize(entry), WriteList({entry}).size() - frame);
    entry.Selected = false;
    entry.DeviceType = 0;
    entry.LinkSpeed = std::numeric_limits<int>::min();
    entry.TimeoutSeconds = -10;
    QCOMPARE(ConnectionList::WrittenSize(entry), WriteList({entry}).size() - frame);
}

void TestConnectionList::everyListThatCanBeStoredCanBeRead()
{
    Connection shortest;
    shortest.ConnectionName.clear();
    shortest.Selected = true;
    const qint64 largestList = kLargestDocument / 2;
    QVERIFY(largestList / ConnectionList::WrittenSize(shortest) < ConnectionList::kRoomForOwnList.entries);
    // Each entry has eleven elements. A carriage return takes the least bytes per reference.
    QVERIFY(11 * ConnectionList::kRoomForOwnList.entries + 1 < XmlLimits().nodes);
    const qint64 before = ConnectionList::WrittenSize(shortest);
    shortest.Subsystem = QStringLiteral("\r");
    QVERIFY(largestList / (ConnectionList::WrittenSize(shortest) - before) < XmlLimits().references);
}

void TestConnectionList::entriesReadBackInOrderWithStatusAndSelection()
{
    std::deque<Connection> entries;
    for (int number = 0; number < 20; ++number) {
        entries.push_back(SampleEntry(number));
        entries.back().Selected = number % 3 == 0;
        entries.back().ConnectionStatus = number % 2;
    }
    const Reading reading = ReadList(WriteList(entries));
    QVERIFY(reading.result);
    QVERIFY(reading.reports.isEmpty());
    QCOMPARE(reading.entries.size(), entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        QVERIFY(reading.entries[i] == entries[i]);
        QCOMPARE(Fields(reading.entries[i]), Fields(entries[i]));
    }
}

void TestConnectionList::numbersReadBack_data()
{
    QTest::addColumn<int>("number");
    for (const int number :
         {0, 1, -1, 15, 4711, 1000000, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()})
        QTest::addRow("%d", number) << number;
}

void TestConnectionList::numbersReadBack()
{
    QFETCH(int, number);
    Connection entry;
    entry.DeviceType = number;
    entry.ConnectionType = number;
    entry.LinkSpeed = number;
    entry.TimeoutSeconds = number;
    entry.ConnectionStatus = number;
    const Reading reading = ReadList(WriteList({entry}));
    QVERIFY(reading.result);
    QCOMPARE(reading.entries.size(), std::size_t{1});
    QCOMPARE(Fields(reading.entries[0]), Fields(entry));
}

void TestConnectionList::textsReadBackWithoutInvalidCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("readBack");
    const auto add = [](const char* name, const QString& text) {
        QTest::newRow(name) << text << text;
    };
    add("empty", QStringLiteral(""));
    add("blanks around", QStringLiteral("  a  b  "));
    add("lines", QStringLiteral("a\n\n b\n"));
    add("tab", QStringLiteral("\ta\t"));
    add("carriage return, line feed", QStringLiteral("a\r\nb\n\rc\r\r\n"));
    add("end marker", QStringLiteral("]]>"));
    add("more brackets", QStringLiteral("]]]]>>"));
    add("end marker and carriage return", QStringLiteral("]]\r>]\r]>\r]]>"));
    add("a CDATA section", QStringLiteral("<![CDATA[x]]>"));
    add("markup", QStringLiteral("</ConnectionName><Connection>&lt;&#65;&undeclared;<?pi?><!--"));
    add("other line separators", QStringLiteral(u"a\u0085b\u2028c\u2029d"));
    add("delete and C1 controls", QStringLiteral(u"\u007F\u0080\u009F"));
    add("byte order mark", QStringLiteral(u"\uFEFFa\uFEFF"));
    add("outside the BMP", QStringLiteral(u"\U0001F4E1\U0001F4E1 \U00010000 \U0010FFFD"));
    add("non-characters outside the BMP", QStringLiteral(u"\U0001FFFE\U0010FFFF"));

    // No XML document can contain these characters.
    for (char16_t control = 0; control < 0x20; ++control)
        if (control != u'\t' && control != u'\n' && control != u'\r')
            QTest::addRow("U+%04X", unsigned{control}) << Units({u'a', control, u'b'}) << QStringLiteral("ab");
    QTest::newRow("U+FFFE") << Units({u'a', 0xFFFE, u'b'}) << QStringLiteral("ab");
    QTest::newRow("U+FFFF") << Units({u'a', 0xFFFF, u'b'}) << QStringLiteral("ab");
    QTest::newRow("single high surrogate") << Units({u'a', 0xD83D, u'b'}) << QStringLiteral("ab");
    QTest::newRow("single low surrogate") << Units({u'a', 0xDCE1, u'b'}) << QStringLiteral("ab");
    QTest::newRow("high surrogate at the end") << Units({u'a', 0xD83D}) << QStringLiteral("a");
    QTest::newRow("low surrogate before high") << Units({0xDCE1, 0xD83D}) << QStringLiteral("");
    QTest::newRow("high surrogate before a pair") << Units({0xD83D, 0xD83D, 0xDCE1}) << Units({0xD83D, 0xDCE1});
    QTest::newRow("low surrogate after a pair") << Units({0xD83D, 0xDCE1, 0xDCE1}) << Units({0xD83D, 0xDCE1});
    QTest::newRow("control inside an end marker") << Units({u']', 1, u']', 2, u'>'}) << QStringLiteral("]]>");
    QTest::newRow("control inside a surrogate pair") << Units({0xD83D, 1, 0xDCE1}) << QStringLiteral("");
    QTest::newRow("only invalid characters") << Units({0, 1, 0x1F, 0xFFFF}) << QStringLiteral("");
}

void TestConnectionList::textsReadBackWithoutInvalidCharacters()
{
    QFETCH(QString, text);
    QFETCH(QString, readBack);
    const Reading reading = ReadList(WriteList({SampleEntry(1), TextEntry(text), SampleEntry(2)}));
    QVERIFY(reading.result);
    QVERIFY(reading.reports.isEmpty());
    QCOMPARE(reading.entries.size(), std::size_t{3});
    QCOMPARE(Fields(reading.entries[0]), Fields(SampleEntry(1)));
    QCOMPARE(Fields(reading.entries[1]), Fields(TextEntry(readBack)));
    QCOMPARE(Fields(reading.entries[2]), Fields(SampleEntry(2)));
}

void TestConnectionList::randomTextsReadBack()
{
    QRandomGenerator random(20240611);
    const QString spice = QStringLiteral("]]>\r\n\t <&\"'[!CDATA") + Units({0, 1, 0xD83D, 0xDCE1, 0xFFFE, 0xFFFF});
    for (int round = 0; round < 500; ++round) {
        QString text;
        const int length = random.bounded(40);
        for (int i = 0; i < length; ++i)
            if (random.bounded(3) == 0)
                text += QChar(static_cast<char16_t>(random.bounded(0x10000)));
            else
                text += spice.at(random.bounded(static_cast<int>(spice.size())));
        const Reading reading = ReadList(WriteList({TextEntry(text), SampleEntry(1)}));
        QVERIFY2(reading.result, text.toUtf8().toHex().constData());
        QCOMPARE(reading.entries.size(), std::size_t{2});
        QCOMPARE(Fields(reading.entries[0]), Fields(TextEntry(Writable(text))));
        QCOMPARE(Fields(reading.entries[1]), Fields(SampleEntry(1)));
    }
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestConnectionList)

#include "tst_connectionlist.moc"
