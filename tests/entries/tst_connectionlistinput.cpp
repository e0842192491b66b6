// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/entries/entrysamples.h"
#include "tests/entries/listreading.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

#include <QStringEncoder>
#include <QTest>

namespace {

QByteArray Entry(const QByteArray& children)
{
    return "<Connection>" + children + "</Connection>";
}

QByteArray Named(const QByteArray& name)
{
    return Entry("<ConnectionName>" + name + "</ConnectionName>");
}

QStringList Names(const Reading& reading)
{
    QStringList names;
    for (const Connection& entry : reading.entries)
        names += entry.ConnectionName;
    return names;
}

} // namespace

/// Documents that the writer did not write: the reader accepts everything it can understand, and stops at XML errors.
class TestConnectionListInput : public QObject
{
    Q_OBJECT

private slots:
    void tolerantOfUnknownStructure_data();
    void tolerantOfUnknownStructure();
    void fieldsAreRead_data();
    void fieldsAreRead();
    void selectedIsTrueForExactlyTrue_data();
    void selectedIsTrueForExactlyTrue();
    void documentWithoutEntriesIsFalseWithoutError();

    void emptyInputIsAnXmlError();
    void xmlErrorKeepsEarlierEntries_data();
    void xmlErrorKeepsEarlierEntries();
    void truncatedEntryIsKeptPartly();
    void truncatedAnywhere();
    void noTraceWhileTracesAreOff();

    void entriesWithoutRoomAreAnXmlError_data();
    void entriesWithoutRoomAreAnXmlError();

    void encodings_data();
    void encodings();

    void deepNestingIsRead_data();
    void deepNestingIsRead();
};

void TestConnectionListInput::tolerantOfUnknownStructure_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QStringList>("names");
    const QStringList a{QStringLiteral("a")};
    const QStringList ab{QStringLiteral("a"), QStringLiteral("b")};
    QTest::newRow("other root name") << "<Other>" + Named("a") + Named("b") + "</Other>" << ab;
    QTest::newRow("no XML declaration") << "<ConnectionEntries>" + Named("a") + "</ConnectionEntries>" << a;
    QTest::newRow("connection as root") << Named("a") << a;
    QTest::newRow("connections at different depths")
        << InRoot("<x><y>" + Named("a") + "</y></x><z>" + Named("b") + "</z>") << ab;
    QTest::newRow("nested connections") << InRoot("<Connection><ConnectionName>a</ConnectionName>" + Named("b") +
                                                  "<ConnectionName>c</ConnectionName></Connection>")
                                        << QStringList{QStringLiteral("b")};
    QTest::newRow("entry after nested connections")
        << InRoot("<Connection><Connection><ConnectionName>a</ConnectionName></Connection></Connection>" + Named("b"))
        << ab;
    QTest::newRow("attributes") << QByteArray("<ConnectionEntries version='2'><Connection id='1'><ConnectionName "
                                              "lang='en'>a</ConnectionName></Connection></ConnectionEntries>")
                                << a;
    QTest::newRow("comments and processing instructions")
        << InRoot("<!-- <Connection/> -->" + Entry("<!-- x --><?x y?><ConnectionName>a<!-- x --></ConnectionName>") +
                  "<?Connection?>")
        << a;
    QTest::newRow("case of the element name") << InRoot("<connection/><CONNECTION/>" + Named("a")) << a;
    QTest::newRow("unknown elements around") << InRoot("<Header>x</Header>" + Named("a") + "<Trailer/>") << a;
    QTest::newRow("document type") << "<!DOCTYPE ConnectionEntries SYSTEM 'list.dtd'><ConnectionEntries>" + Named("a") +
                                          "</ConnectionEntries>"
                                   << a;
    QTest::newRow("document order") << InRoot(Named("b") + Named("a"))
                                    << QStringList{QStringLiteral("b"), QStringLiteral("a")};
}

void TestConnectionListInput::tolerantOfUnknownStructure()
{
    QFETCH(QByteArray, document);
    QFETCH(QStringList, names);
    const Reading reading = ReadList(document);
    QVERIFY(reading.result);
    QVERIFY(reading.reports.isEmpty());
    QCOMPARE(Names(reading), names);
}

void TestConnectionListInput::fieldsAreRead_data()
{
    QTest::addColumn<QByteArray>("children");
    QTest::addColumn<QStringList>("expected");
    const auto add = [](const char* name, const QByteArray& children, auto change) {
        Connection entry;
        change(entry);
        QTest::newRow(name) << children << Fields(entry);
    };
    add("no children", "", [](Connection&) {});
    add("text instead of children", "text", [](Connection&) {});
    add("all",
        "<ConnectionName>n</ConnectionName><DeviceType>1</DeviceType><ConnectionType>2</ConnectionType>"
        "<DeviceAddress>d</DeviceAddress><DriverAddress>r</DriverAddress><LinkSpeed>3</LinkSpeed>"
        "<TimeoutSeconds>5</TimeoutSeconds><ConnectionStatus>1</ConnectionStatus><Selected>true</Selected>"
        "<Subsystem>s</Subsystem>",
        [](Connection& entry) {
            entry.ConnectionName = QStringLiteral("n");
            entry.DeviceType = 1;
            entry.ConnectionType = 2;
            entry.DeviceAddress = QStringLiteral("d");
            entry.DriverAddress = QStringLiteral("r");
            entry.LinkSpeed = 3;
            entry.TimeoutSeconds = 5;
            entry.ConnectionStatus = 1;
            entry.Selected = true;
            entry.Subsystem = QStringLiteral("s");
        });
    add("other order, some missing",
        "<Subsystem>s</Subsystem><LinkSpeed>3</LinkSpeed><ConnectionName>n</ConnectionName>", [](Connection& entry) {
            entry.ConnectionName = QStringLiteral("n");
            entry.LinkSpeed = 3;
            entry.Subsystem = QStringLiteral("s");
        });
    add(
        "repeated children, the last counts",
        "<ConnectionName>x</ConnectionName><Selected>true</Selected><DeviceType>1</DeviceType>"
        "<ConnectionName>y</ConnectionName><Selected>false</Selected><DeviceType>2</DeviceType>",
        [](Connection& entry) {
            entry.ConnectionName = QStringLiteral("y");
            entry.DeviceType = 2;
        });
    add("repeated child that is no number", "<DeviceType>1</DeviceType><DeviceType>x</DeviceType>",
        [](Connection& entry) { entry.DeviceType = 0; });
    add("known element inside an unknown one",
        "<x><y><DeviceType>7</DeviceType></y><ConnectionName>n</ConnectionName></x>", [](Connection& entry) {
            entry.DeviceType = 7;
            entry.ConnectionName = QStringLiteral("n");
        });
    add(
        "case of the names", "<connectionname>x</connectionname><DEVICETYPE>1</DEVICETYPE>", [](Connection&) {});
    add(
        "text and CDATA sections", "<ConnectionName>a<![CDATA[<b>]]>c&amp;&#100;</ConnectionName>",
        [](Connection& entry) { entry.ConnectionName = QStringLiteral("a<b>c&d"); });
    add(
        "number in a CDATA section", "<DeviceType><![CDATA[9]]></DeviceType>",
        [](Connection& entry) { entry.DeviceType = 9; });
    add("white space is kept", "<ConnectionName>  a\n </ConnectionName>",
        [](Connection& entry) { entry.ConnectionName = QStringLiteral("  a\n "); });
    add("empty elements", "<ConnectionName/><DeviceType/>", [](Connection& entry) {
        entry.ConnectionName = QStringLiteral("");
        entry.DeviceType = 0;
    });
    add("unknown element inside a text", "<ConnectionName>a<b>x</b>c</ConnectionName><DeviceType>1</DeviceType>",
        [](Connection& entry) {
            entry.ConnectionName = QStringLiteral("ac");
            entry.DeviceType = 1;
        });
    add("values outside the enumerations",
        "<DeviceType>99</DeviceType><ConnectionType>-4</ConnectionType><LinkSpeed>2147483647</LinkSpeed>"
        "<ConnectionStatus>-2147483648</ConnectionStatus>",
        [](Connection& entry) {
            entry.DeviceType = 99;
            entry.ConnectionType = -4;
            entry.LinkSpeed = 2147483647;
            entry.ConnectionStatus = -2147483647 - 1;
        });
    for (const char* const text : {"x", "", "1x", "x1", "1.5", "1,000", "0x10", "1e3", "- 1", "1 2", "2147483648",
                                   "-2147483649", "99999999999999999999", "\xD9\xA3", "true"}) {
        const QByteArray number(text);
        add(qPrintable(QStringLiteral("no number: <%1>").arg(QString::fromUtf8(number))),
            "<DeviceType>" + number + "</DeviceType><ConnectionType>" + number + "</ConnectionType><LinkSpeed>" +
                number + "</LinkSpeed><TimeoutSeconds>" + number + "</TimeoutSeconds><ConnectionStatus>" + number +
                "</ConnectionStatus>",
            [](Connection& entry) { entry.DeviceType = 0; });
    }
}

void TestConnectionListInput::fieldsAreRead()
{
    QFETCH(QByteArray, children);
    QFETCH(QStringList, expected);
    const Reading reading = ReadList(InRoot(Entry(children)));
    QVERIFY(reading.result);
    QVERIFY(reading.reports.isEmpty());
    QCOMPARE(reading.entries.size(), std::size_t{1});
    QCOMPARE(Fields(reading.entries[0]), expected);
}

void TestConnectionListInput::selectedIsTrueForExactlyTrue_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("selected");
    QTest::newRow("true") << QByteArray("true") << true;
    QTest::newRow("true in a CDATA section") << QByteArray("<![CDATA[true]]>") << true;
    QTest::newRow("true in pieces") << QByteArray("tr<![CDATA[u]]>&#101;") << true;
    for (const char* const text : {"TRUE", "True", "1", "yes", "false", "", " true", "true ", "truetrue"})
        QTest::addRow("<%s>", text) << QByteArray(text) << false;
    QTest::newRow("line feeds around") << QByteArray("\ntrue\n") << false;
}

void TestConnectionListInput::selectedIsTrueForExactlyTrue()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, selected);
    const Reading reading = ReadList(InRoot(Entry("<Selected>" + text + "</Selected>")));
    QVERIFY(reading.result);
    QCOMPARE(reading.entries.at(0).Selected, selected);
}

void TestConnectionListInput::documentWithoutEntriesIsFalseWithoutError()
{
    const Reading reading = ReadList(InRoot("<connection/><x>Connection</x>"));
    QVERIFY(!reading.result);
    QVERIFY(reading.entries.empty());
    QVERIFY(reading.reports.isEmpty());
}

void TestConnectionListInput::emptyInputIsAnXmlError()
{
    const Reading reading = ReadList(QByteArray());
    QVERIFY(!reading.result);
    QVERIFY(reading.entries.empty());
    QVERIFY(IsXmlErrorTrace(
        reading.reports,
        QStringLiteral("XML parsing error occurred in row 1 column 0. \"Premature end of document.\"")));
}

void TestConnectionListInput::xmlErrorKeepsEarlierEntries_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QStringList>("names");
    const QStringList none;
    const QStringList a{QStringLiteral("a")};
    QTest::newRow("plain text") << QByteArray("Hello, world") << none;
    QTest::newRow("wrong end tag") << InRoot(Named("a") + "</x>") << a;
    QTest::newRow("second root") << InRoot(Named("a")) + InRoot(Named("b")) << a;
    QTest::newRow("text after the root") << InRoot(Named("a")) + "text" << a;
    QTest::newRow("undeclared entity") << InRoot(Named("a") + "&x;") << a;
    QTest::newRow("control character") << InRoot(Named("a") + "\x01" + Named("b")) << a;
    QTest::newRow("NUL character") << InRoot(Named("a") + QByteArray(1, '\0') + Named("b")) << a;
    QTest::newRow("unclosed section") << InRoot(Named("a") + "<![CDATA[" + Named("b")) << a;
    QTest::newRow("error inside a field")
        << InRoot(Named("a") + "<Connection><ConnectionName>b</ConnectionName><DeviceType>3</x>")
        << QStringList{QStringLiteral("a"), QStringLiteral("b")};
    QTest::newRow("error on a later row") << InRoot("\n\n" + Named("a") + "\n   <x></y>") << a;
    QTest::newRow("percent signs in the error text") << InRoot(Named("a") + "<x></%1%2%3>") << a;
    QTest::newRow("invalid UTF-8") << InRoot(Named("a") + Named("\xFF\xFE\x80")) << none;
    QTest::newRow("incomplete UTF-8 character") << InRoot(Named("\xC3")) << none;
    QTest::newRow("surrogate in UTF-8") << InRoot(Named("\xED\xA0\xBD")) << none;
    QTest::newRow("unknown encoding") << QByteArray("<?xml version=\"1.0\" encoding=\"x-unheard-of\"?><Connection/>")
                                      << none;
    QTest::newRow("byte order mark only") << QByteArray("\xEF\xBB\xBF") << none;
    QTest::newRow("UTF-16 byte order mark only") << QByteArray("\xFF\xFE") << none;
    QTest::newRow("zeros") << QByteArray(1000, '\0') << none;
    QTest::newRow("an image") << QByteArray("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16) << none;
    QTest::newRow("entity declaration") << "<!DOCTYPE a [<!ENTITY e \"x\">]><ConnectionEntries>" + Named("&e;") +
                                               "</ConnectionEntries>"
                                        << none;
    QTest::newRow("entity declaration inside a field")
        << InRoot(Named("before<!DOCTYPE a [<!ENTITY e \"x\">]>&e;")) << none;
}

void TestConnectionListInput::xmlErrorKeepsEarlierEntries()
{
    QFETCH(QByteArray, document);
    QFETCH(QStringList, names);
    const Reading reading = ReadList(document);
    QVERIFY(!reading.result);
    QCOMPARE(Names(reading), names);
    QVERIFY(IsXmlErrorTrace(reading.reports, ParserMessage(document)));
}

void TestConnectionListInput::truncatedEntryIsKeptPartly()
{
    QByteArray document = WriteList({SampleEntry(1), SampleEntry(2), SampleEntry(3)});
    document.truncate(document.lastIndexOf("<DeviceAddress>"));
    const Reading reading = ReadList(document);
    QVERIFY(!reading.result);
    QCOMPARE(reading.entries.size(), std::size_t{3});
    QCOMPARE(Fields(reading.entries[0]), Fields(SampleEntry(1)));
    QCOMPARE(Fields(reading.entries[1]), Fields(SampleEntry(2)));
    Connection partly;
    partly.ConnectionName = SampleEntry(3).ConnectionName;
    partly.DeviceType = SampleEntry(3).DeviceType;
    partly.ConnectionType = SampleEntry(3).ConnectionType;
    QCOMPARE(Fields(reading.entries[2]), Fields(partly));
    QVERIFY(IsXmlErrorTrace(reading.reports, ParserMessage(document)));
}

void TestConnectionListInput::truncatedAnywhere()
{
    const QByteArray document = WriteList({SampleEntry(1), SampleEntry(2), SampleEntry(3)});
    const qsizetype wholeRoot = document.lastIndexOf('>') + 1;
    for (qsizetype length = 0; length < document.size(); ++length) {
        const QByteArray part = document.left(length);
        const Reading reading = ReadList(part);
        const auto begun = static_cast<std::size_t>(part.count("<Connection>"));
        const auto completed = static_cast<std::size_t>(part.count("</Connection>"));
        QVERIFY2(reading.entries.size() == begun, qPrintable(QStringLiteral("cut at %1").arg(length)));
        for (std::size_t i = 0; i < completed; ++i)
            QCOMPARE(Fields(reading.entries[i]), Fields(SampleEntry(static_cast<int>(i) + 1)));
        QCOMPARE(reading.result, length >= wholeRoot);
        QCOMPARE(reading.reports.size(), length >= wholeRoot ? 0 : 1);
    }
}

void TestConnectionListInput::noTraceWhileTracesAreOff()
{
    const TraceRecorder recorder(~static_cast<unsigned>(ErrorHandler::Trace));
    QVERIFY(!ConnectionList::Read(QByteArray("<x>"), [](const Connection&) {}));
    QVERIFY(recorder.Reports().isEmpty());
}

void TestConnectionListInput::entriesWithoutRoomAreAnXmlError_data()
{
    QTest::addColumn<ConnectionList::Room>("room");
    QTest::addColumn<std::size_t>("read");
    QTest::addColumn<QString>("error");
    constexpr qint64 kAny = 1'000'000;
    const qint64 size = WriteList({SampleEntry(1), SampleEntry(2), SampleEntry(3)}).size();
    const auto tooMany = QStringLiteral(" column 14. \"The list would have too many entries.\"");
    const auto tooLarge = QStringLiteral(" column 15. \"The list would be too large.\"");
    QTest::newRow("as many entries") << ConnectionList::Room{3, kAny} << std::size_t{3} << QString();
    QTest::newRow("one entry too many") << ConnectionList::Room{2, kAny} << std::size_t{2} << tooMany;
    QTest::newRow("full") << ConnectionList::Room{0, kAny} << std::size_t{0} << tooMany;
    QTest::newRow("more than full") << ConnectionList::Room{-5, kAny} << std::size_t{0} << tooMany;
    QTest::newRow("as many bytes") << ConnectionList::Room{kAny, size} << std::size_t{3} << QString();
    QTest::newRow("one byte too many") << ConnectionList::Room{kAny, size - 1} << std::size_t{2} << tooLarge;
    QTest::newRow("no bytes") << ConnectionList::Room{kAny, 0} << std::size_t{0} << tooLarge;
    QTest::newRow("own list") << ConnectionList::kRoomForOwnList << std::size_t{3} << QString();
}

void TestConnectionListInput::entriesWithoutRoomAreAnXmlError()
{
    QFETCH(const ConnectionList::Room, room);
    QFETCH(const std::size_t, read);
    QFETCH(const QString, error);
    const QByteArray written = WriteList({SampleEntry(1), SampleEntry(2), SampleEntry(3)});
    // One with a comment takes another path.
    for (const QByteArray& document : {written, QByteArray(written).replace("<ConnectionE", "<!-- --><ConnectionE")}) {
        const Reading reading = ReadList(document, room);
        QCOMPARE(reading.result, error.isEmpty());
        QCOMPARE(reading.entries.size(), read);
        for (std::size_t i = 0; i < read; ++i)
            QCOMPARE(Fields(reading.entries[i]), Fields(SampleEntry(static_cast<int>(i) + 1)));
        QCOMPARE(reading.reports.size(), error.isEmpty() ? 0 : 1);
        if (error.isEmpty())
            continue;
        // Of an entry that is too large the error is at its end, of one too many at its start.
        const int row = 3 + 12 * static_cast<int>(read) + (error.contains(QLatin1String("too large")) ? 11 : 0);
        QVERIFY2(
            IsXmlErrorTrace(reading.reports, QStringLiteral("XML parsing error occurred in row %1").arg(row) + error),
            qPrintable(reading.reports.first().message));
    }
}

void TestConnectionListInput::encodings_data()
{
    QTest::addColumn<QByteArray>("document");
    const QString content = QStringLiteral(u"<ConnectionEntries><Connection><ConnectionName>K\u00FCste</ConnectionName>"
                                           "</Connection></ConnectionEntries>");
    const auto encoded = [](QStringConverter::Encoding encoding, const QString& text) {
        QStringEncoder encoder(encoding, QStringConverter::Flag::WriteBom);
        return QByteArray(encoder(text));
    };
    const QString declared16 = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-16\"?>");
    QTest::newRow("UTF-8 with byte order mark") << encoded(QStringConverter::Utf8, content);
    QTest::newRow("UTF-16LE with byte order mark") << encoded(QStringConverter::Utf16LE, content);
    QTest::newRow("UTF-16BE with byte order mark, declared")
        << encoded(QStringConverter::Utf16BE, declared16 + content);
    QTest::newRow("Latin-1, declared")
        << (QStringLiteral("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>") + content).toLatin1();
}

void TestConnectionListInput::encodings()
{
    QFETCH(QByteArray, document);
    const Reading reading = ReadList(document);
    QVERIFY2(reading.result, qPrintable(reading.reports.isEmpty() ? QString() : reading.reports.first().message));
    QCOMPARE(Names(reading), QStringList{QStringLiteral(u"K\u00FCste")});
}

void TestConnectionListInput::deepNestingIsRead_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<bool>("result");
    const QByteArray open = QByteArray("<x>").repeated(900);
    const QByteArray close = QByteArray("</x>").repeated(900);
    const QStringList a{QStringLiteral("a")};
    QTest::newRow("around an entry") << InRoot(open + Named("a") + close) << a << true;
    QTest::newRow("inside an entry") << InRoot(Entry(open + "<ConnectionName>a</ConnectionName>" + close)) << a << true;
    QTest::newRow("inside a field") << InRoot(Named("a" + open + close)) << a << true;
    QTest::newRow("never closed") << InRoot(Named("a") + open) << a << false;
    QTest::newRow("never closed inside a field") << InRoot(Named("a" + open)) << a << false;
    QTest::newRow("entries in entries") << QByteArray("<Connection>").repeated(900) +
                                               "<ConnectionName>a</ConnectionName>" +
                                               QByteArray("</Connection>").repeated(900)
                                        << a << true;
}

void TestConnectionListInput::deepNestingIsRead()
{
    QFETCH(QByteArray, document);
    QFETCH(QStringList, names);
    QFETCH(bool, result);
    const Reading reading = ReadList(document);
    QCOMPARE(reading.result, result);
    QCOMPARE(reading.reports.size(), result ? 0 : 1);
    QCOMPARE(Names(reading), names);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestConnectionListInput)

#include "tst_connectionlistinput.moc"
