#include "tests/entries/entrysamples.h"
#include "tests/entries/listreading.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connectionlist.h"

#include <QRandomGenerator>
#include <QTest>

#include <limits>

namespace {

/// What of `text` an XML document can hold, found code point by code point.
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

/// The document as it is written, and what becomes of it when it is read back.
class TestConnectionList : public QObject
{
    Q_OBJECT

private slots:
    void mimeType();

    void emptySequenceGivesDeclarationAndEmptyRoot();
    void documentOfOneEntry();
    void documentOfADefaultEntry();
    void entriesStandInTheGivenOrder();
    void oneEntryGivenTwiceIsWrittenTwice();
    void negativeNumbersHaveAMinusSign();
    void textIsUtf8();
    void markupInANameStaysUnchangedInItsSection();
    void displayTextsAreNotWritten();

    void readBackGivesEqualEntriesWithStatusAndSelection();
    void numbersReadBack_data();
    void numbersReadBack();
    void textsReadBack_data();
    void textsReadBack();
    void unwritableCharactersAreLeftOut_data();
    void unwritableCharactersAreLeftOut();
    void aMegabyteOfTextReadsBack();
    void randomTextsReadBack();
};

void TestConnectionList::mimeType()
{
    QCOMPARE(ConnectionList::MimeType(), QStringLiteral("text/plain"));
}

void TestConnectionList::emptySequenceGivesDeclarationAndEmptyRoot()
{
    QCOMPARE(ConnectionList::Write({}),
             QByteArray("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<ConnectionEntries/>\n"));
}

void TestConnectionList::documentOfOneEntry()
{
    Connection entry;
    entry.ConnectionName = QStringLiteral("Mast 1");
    entry.DeviceType = 12;
    entry.ConnectionType = 1;
    entry.DeviceAddress = QStringLiteral("10.0.0.5");
    entry.DriverAddress = QStringLiteral("pc7");
    entry.LinkSpeed = 6;
    entry.TimeoutSeconds = 30;
    entry.ConnectionStatus = 1;
    entry.Selected = true;
    entry.Subsystem = QStringLiteral("Corvus 2");
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

void TestConnectionList::documentOfADefaultEntry()
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

void TestConnectionList::entriesStandInTheGivenOrder()
{
    const QByteArray document =
        WriteList({NamedEntry(QStringLiteral("c")), NamedEntry(QStringLiteral("a")), NamedEntry(QStringLiteral("b"))});
    const qsizetype a = document.indexOf("<![CDATA[a]]>");
    const qsizetype b = document.indexOf("<![CDATA[b]]>");
    const qsizetype c = document.indexOf("<![CDATA[c]]>");
    QVERIFY(c > 0);
    QVERIFY(a > c);
    QVERIFY(b > a);
    QCOMPARE(document.count("<Connection>"), 3);
}

void TestConnectionList::oneEntryGivenTwiceIsWrittenTwice()
{
    const Connection entry(SampleEntry(1));
    QCOMPARE(ConnectionList::Write({&entry, &entry}).count("<Connection>"), 2);
}

void TestConnectionList::negativeNumbersHaveAMinusSign()
{
    Connection entry;
    entry.DeviceType = -1;
    entry.TimeoutSeconds = std::numeric_limits<qint32>::min();
    const QByteArray document = WriteList({entry});
    QVERIFY(document.contains("<DeviceType>-1</DeviceType>"));
    QVERIFY(document.contains("<TimeoutSeconds>-2147483648</TimeoutSeconds>"));
}

void TestConnectionList::textIsUtf8()
{
    const QByteArray document = WriteList({NamedEntry(QStringLiteral(u"K\u00FCste \U0001F4E1"))});
    QVERIFY(document.contains("<![CDATA[K\xC3\xBCste \xF0\x9F\x93\xA1]]>"));
}

void TestConnectionList::markupInANameStaysUnchangedInItsSection()
{
    const QString name = QStringLiteral("A&B <b>\"x\"</b> 'y' &amp; <!-- z -->");
    const QByteArray document = WriteList({NamedEntry(name)});
    QVERIFY(document.contains("<ConnectionName><![CDATA[A&B <b>\"x\"</b> 'y' &amp; <!-- z -->]]></ConnectionName>"));
    QCOMPARE(ReadList(document).entries.at(0).ConnectionName, name);
}

void TestConnectionList::displayTextsAreNotWritten()
{
    Connection entry;
    entry.DeviceType = Connection::Heron;
    const QByteArray document = WriteList({entry});
    for (const char* const text : {"Heron", "Direct Connection", "LAN", "Free", "No Timeout"})
        QVERIFY2(!document.contains(text), text);
}

void TestConnectionList::readBackGivesEqualEntriesWithStatusAndSelection()
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

void TestConnectionList::textsReadBack_data()
{
    QTest::addColumn<QString>("text");
    const auto add = [](const char* name, const QString& text) {
        QTest::newRow(name) << text;
    };
    add("empty", QStringLiteral(""));
    add("blank", QStringLiteral(" "));
    add("blanks around", QStringLiteral("  a  b  "));
    add("line feed", QStringLiteral("\n"));
    add("lines", QStringLiteral("a\n\n b\n"));
    add("tab", QStringLiteral("\ta\t"));
    add("carriage return", QStringLiteral("\r"));
    add("carriage return within", QStringLiteral("a\rb"));
    add("carriage return, line feed", QStringLiteral("a\r\nb\n\rc\r\r\n"));
    add("end marker", QStringLiteral("]]>"));
    add("end marker within", QStringLiteral("a]]>b"));
    add("end markers in a row", QStringLiteral("]]>]]>"));
    add("more brackets", QStringLiteral("]]]]>>"));
    add("half an end marker", QStringLiteral("]]"));
    add("one bracket", QStringLiteral("]"));
    add("bracket and angle", QStringLiteral("]>"));
    add("end marker and carriage return", QStringLiteral("]]\r>]\r]>\r]]>"));
    add("a whole section", QStringLiteral("<![CDATA[x]]>"));
    add("markup", QStringLiteral("</ConnectionName><Connection>&lt;&#65;&undeclared;<?pi?><!--"));
    add("per cent signs", QStringLiteral("%1 %2 %%"));
    add("umlauts", QStringLiteral(u"\u00E4\u00F6\u00FC\u00DF"));
    add("other line ends", QStringLiteral(u"a\u0085b\u2028c\u2029d"));
    add("delete and C1 controls", QStringLiteral(u"\u007F\u0080\u009F"));
    add("byte order mark", QStringLiteral(u"\uFEFFa\uFEFF"));
    add("right to left", QStringLiteral(u"\u05E9\u05DC\u202Eabc\u202C"));
    add("private use and replacement", QStringLiteral(u"\uE000\uF8FF\uFFFD"));
    add("astral", QStringLiteral(u"\U0001F4E1\U0001F4E1 \U00010000 \U0010FFFD"));
    add("astral non-characters", QStringLiteral(u"\U0001FFFE\U0010FFFF"));
    add("composed", QStringLiteral(u"e\u0301 \u00E9"));
}

void TestConnectionList::textsReadBack()
{
    QFETCH(QString, text);
    const Reading reading = ReadList(WriteList({SampleEntry(1), TextEntry(text), SampleEntry(2)}));
    QVERIFY(reading.result);
    QVERIFY(reading.reports.isEmpty());
    QCOMPARE(reading.entries.size(), std::size_t{3});
    QCOMPARE(Fields(reading.entries[0]), Fields(SampleEntry(1)));
    QCOMPARE(Fields(reading.entries[1]), Fields(TextEntry(text)));
    QCOMPARE(Fields(reading.entries[2]), Fields(SampleEntry(2)));
}

void TestConnectionList::unwritableCharactersAreLeftOut_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("readBack");
    for (char16_t control = 0; control < 0x20; ++control)
        if (control != u'\t' && control != u'\n' && control != u'\r')
            QTest::addRow("U+%04X", unsigned{control}) << Units({u'a', control, u'b'}) << QStringLiteral("ab");
    QTest::newRow("U+FFFE") << Units({u'a', 0xFFFE, u'b'}) << QStringLiteral("ab");
    QTest::newRow("U+FFFF") << Units({u'a', 0xFFFF, u'b'}) << QStringLiteral("ab");
    QTest::newRow("high surrogate alone") << Units({u'a', 0xD83D, u'b'}) << QStringLiteral("ab");
    QTest::newRow("low surrogate alone") << Units({u'a', 0xDCE1, u'b'}) << QStringLiteral("ab");
    QTest::newRow("high surrogate at the end") << Units({u'a', 0xD83D}) << QStringLiteral("a");
    QTest::newRow("low before high") << Units({0xDCE1, 0xD83D}) << QStringLiteral("");
    QTest::newRow("high before a pair") << Units({0xD83D, 0xD83D, 0xDCE1}) << Units({0xD83D, 0xDCE1});
    QTest::newRow("low behind a pair") << Units({0xD83D, 0xDCE1, 0xDCE1}) << Units({0xD83D, 0xDCE1});
    QTest::newRow("end marker around a control") << Units({u']', 1, u']', 2, u'>'}) << QStringLiteral("]]>");
    QTest::newRow("surrogates around a control") << Units({0xD83D, 1, 0xDCE1}) << QStringLiteral("");
    QTest::newRow("nothing else") << Units({0, 1, 0x1F, 0xFFFF}) << QStringLiteral("");
}

void TestConnectionList::unwritableCharactersAreLeftOut()
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

void TestConnectionList::aMegabyteOfTextReadsBack()
{
    const QString text = QStringLiteral(u"<&]]>\r\n \U0001F4E1 ").repeated(100'000);
    QVERIFY(text.toUtf8().size() > 1024 * 1024);
    const Reading reading = ReadList(WriteList({SampleEntry(1), NamedEntry(text), SampleEntry(2)}));
    QVERIFY(reading.result);
    QCOMPARE(reading.entries.size(), std::size_t{3});
    QCOMPARE(Fields(reading.entries[0]), Fields(SampleEntry(1)));
    QVERIFY(reading.entries[1].ConnectionName == text);
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
