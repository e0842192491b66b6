#include "tests/entries/entrysamples.h"
#include "tests/entries/listreading.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connectionlist.h"

#include <QRegularExpression>
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

/// Declares ten entities, each ten times the one before: a thousand million letters at the end.
QByteArray Laughs()
{
    QByteArray declarations = "<!ENTITY l0 \"ha\">";
    for (int level = 1; level < 10; ++level) {
        const QByteArray former = "&l" + QByteArray::number(level - 1) + ";";
        declarations += "<!ENTITY l" + QByteArray::number(level) + " \"" + former.repeated(10) + "\">";
    }
    return declarations;
}

} // namespace

/// What the reader makes of documents that it did not write: lenient with what can be understood, and neither lost nor
/// stuck with what cannot.
class TestConnectionListInput : public QObject
{
    Q_OBJECT

private slots:
    void documentsThatCanBeUnderstood_data();
    void documentsThatCanBeUnderstood();
    void fields_data();
    void fields();
    void aConnectionWithoutChildrenIsADefaultEntry_data();
    void aConnectionWithoutChildrenIsADefaultEntry();
    void selectedIsTrueForExactlyTrue_data();
    void selectedIsTrueForExactlyTrue();
    void noConnectionIsNoErrorButFalse();

    void emptyInputIsMalformed();
    void malformedDocuments_data();
    void malformedDocuments();
    void cutOffInsideTheThirdEntry();
    void cutOffAnywhere();
    void noTraceWhileTracesAreOff();

    void encodings_data();
    void encodings();
    void bytesThatAreNoText_data();
    void bytesThatAreNoText();

    void documentTypesWithoutEntitiesAreRead_data();
    void documentTypesWithoutEntitiesAreRead();
    void entityDeclarationsAreRefused_data();
    void entityDeclarationsAreRefused();
    void entityDeclarationsInAFieldAreRefused_data();
    void entityDeclarationsInAFieldAreRefused();

    void deepNesting_data();
    void deepNesting();
};

void TestConnectionListInput::documentsThatCanBeUnderstood_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QStringList>("names");
    const QStringList a{QStringLiteral("a")};
    const QStringList ab{QStringLiteral("a"), QStringLiteral("b")};
    QTest::newRow("root named differently") << "<Other>" + Named("a") + Named("b") + "</Other>" << ab;
    QTest::newRow("no declaration") << "<ConnectionEntries>" + Named("a") + "</ConnectionEntries>" << a;
    QTest::newRow("connection as root") << Named("a") << a;
    QTest::newRow("connections at different depths")
        << InRoot("<x><y>" + Named("a") + "</y></x><z>" + Named("b") + "</z>") << ab;
    QTest::newRow("connections nested in each other")
        << InRoot("<Connection><ConnectionName>a</ConnectionName>" + Named("b") +
                  "<ConnectionName>c</ConnectionName></Connection>")
        << QStringList{QStringLiteral("b")};
    QTest::newRow("entry behind nested connections")
        << InRoot("<Connection><Connection><ConnectionName>a</ConnectionName></Connection></Connection>" + Named("b"))
        << ab;
    QTest::newRow("attributes") << QByteArray("<ConnectionEntries version='2'><Connection id='1'><ConnectionName "
                                              "lang='en'>a</ConnectionName></Connection></ConnectionEntries>")
                                << a;
    QTest::newRow("comments and instructions")
        << InRoot("<!-- <Connection/> -->" + Entry("<!-- x --><?x y?><ConnectionName>a<!-- x --></ConnectionName>") +
                  "<?Connection?>")
        << a;
    QTest::newRow("letter case of the element") << InRoot("<connection/><CONNECTION/>" + Named("a")) << a;
    QTest::newRow("unknown elements around") << InRoot("<Header>x</Header>" + Named("a") + "<Trailer/>") << a;
    QTest::newRow("document order") << InRoot(Named("b") + Named("a"))
                                    << QStringList{QStringLiteral("b"), QStringLiteral("a")};
    QTest::newRow("equal entries") << InRoot(Named("a") + Named("a"))
                                   << QStringList{QStringLiteral("a"), QStringLiteral("a")};
    QTest::newRow("text between") << InRoot("x" + Named("a") + "y" + Named("b") + "z") << ab;
}

void TestConnectionListInput::documentsThatCanBeUnderstood()
{
    QFETCH(QByteArray, document);
    QFETCH(QStringList, names);
    const Reading reading = ReadList(document);
    QVERIFY(reading.result);
    QVERIFY(reading.reports.isEmpty());
    QCOMPARE(Names(reading), names);
}

void TestConnectionListInput::fields_data()
{
    QTest::addColumn<QByteArray>("children");
    QTest::addColumn<QStringList>("expected");
    const auto add = [](const char* name, const QByteArray& children, auto change) {
        Connection entry;
        change(entry);
        QTest::newRow(name) << children << Fields(entry);
    };
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
        "repeated children: the last counts",
        "<ConnectionName>x</ConnectionName><Selected>true</Selected><DeviceType>1</DeviceType>"
        "<ConnectionName>y</ConnectionName><Selected>false</Selected><DeviceType>2</DeviceType>",
        [](Connection& entry) {
            entry.ConnectionName = QStringLiteral("y");
            entry.DeviceType = 2;
        });
    add("unparsable repetition gives 0", "<DeviceType>1</DeviceType><DeviceType>x</DeviceType>",
        [](Connection& entry) { entry.DeviceType = 0; });
    add("known inside unknown", "<x><y><DeviceType>7</DeviceType></y><ConnectionName>n</ConnectionName></x>",
        [](Connection& entry) {
            entry.DeviceType = 7;
            entry.ConnectionName = QStringLiteral("n");
        });
    add(
        "letter case of the names", "<connectionname>x</connectionname><DEVICETYPE>1</DEVICETYPE>", [](Connection&) {});
    add(
        "text and sections together", "<ConnectionName>a<![CDATA[<b>]]>c&amp;&#100;</ConnectionName>",
        [](Connection& entry) { entry.ConnectionName = QStringLiteral("a<b>c&d"); });
    add(
        "number in a section", "<DeviceType><![CDATA[9]]></DeviceType>",
        [](Connection& entry) { entry.DeviceType = 9; });
    add("blanks in a text stay", "<ConnectionName>  a\n </ConnectionName>",
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

void TestConnectionListInput::fields()
{
    QFETCH(QByteArray, children);
    QFETCH(QStringList, expected);
    const Reading reading = ReadList(InRoot(Entry(children)));
    QVERIFY(reading.result);
    QVERIFY(reading.reports.isEmpty());
    QCOMPARE(reading.entries.size(), std::size_t{1});
    QCOMPARE(Fields(reading.entries[0]), expected);
}

void TestConnectionListInput::aConnectionWithoutChildrenIsADefaultEntry_data()
{
    QTest::addColumn<QByteArray>("element");
    QTest::newRow("empty tag") << QByteArray("<Connection/>");
    QTest::newRow("two tags") << QByteArray("<Connection></Connection>");
    QTest::newRow("text only") << QByteArray("<Connection>text</Connection>");
}

void TestConnectionListInput::aConnectionWithoutChildrenIsADefaultEntry()
{
    QFETCH(QByteArray, element);
    const Reading reading = ReadList(InRoot(element));
    QVERIFY(reading.result);
    QCOMPARE(reading.entries.size(), std::size_t{1});
    QCOMPARE(Fields(reading.entries[0]), Fields(Connection()));
    QVERIFY(!reading.entries[0].DeviceAddress.isNull());
}

void TestConnectionListInput::selectedIsTrueForExactlyTrue_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("selected");
    QTest::newRow("true") << QByteArray("true") << true;
    QTest::newRow("true in a section") << QByteArray("<![CDATA[true]]>") << true;
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

void TestConnectionListInput::noConnectionIsNoErrorButFalse()
{
    const Reading reading = ReadList(InRoot("<connection/><x>Connection</x>"));
    QVERIFY(!reading.result);
    QVERIFY(reading.entries.empty());
    QVERIFY(reading.reports.isEmpty());
}

void TestConnectionListInput::emptyInputIsMalformed()
{
    const Reading reading = ReadList(QByteArray());
    QVERIFY(!reading.result);
    QVERIFY(reading.entries.empty());
    QVERIFY(IsXmlErrorTrace(
        reading.reports,
        QStringLiteral("XML parsing error occurred in row 1 column 0. \"Premature end of document.\"")));
}

void TestConnectionListInput::malformedDocuments_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QStringList>("names");
    const QStringList none;
    const QStringList a{QStringLiteral("a")};
    QTest::newRow("blank") << QByteArray(" ") << none;
    QTest::newRow("no XML") << QByteArray("Hello, world") << none;
    QTest::newRow("declaration only") << QByteArray("<?xml version=\"1.0\" encoding=\"utf-8\"?>") << none;
    QTest::newRow("wrong end tag") << InRoot(Named("a") + "</x>") << a;
    QTest::newRow("second root") << InRoot(Named("a")) + InRoot(Named("b")) << a;
    QTest::newRow("text behind the root") << InRoot(Named("a")) + "text" << a;
    QTest::newRow("bare ampersand") << InRoot(Named("a") + "&") << a;
    QTest::newRow("undeclared entity behind an entry") << InRoot(Named("a") + "&x;") << a;
    QTest::newRow("control character behind an entry") << InRoot(Named("a") + "\x01" + Named("b")) << a;
    QTest::newRow("reference to a control character") << InRoot(Named("a") + "&#1;" + Named("b")) << a;
    QTest::newRow("nul behind an entry") << InRoot(Named("a") + QByteArray(1, '\0') + Named("b")) << a;
    QTest::newRow("unclosed section") << InRoot(Named("a") + "<![CDATA[" + Named("b")) << a;
    QTest::newRow("unclosed comment") << InRoot(Named("a") + "<!--" + Named("b")) << a;
    QTest::newRow("error inside an entry's field")
        << InRoot(Named("a") + "<Connection><ConnectionName>b</ConnectionName><DeviceType>3</x>")
        << QStringList{QStringLiteral("a"), QStringLiteral("b")};
    QTest::newRow("error on another row") << InRoot("\n\n" + Named("a") + "\n   <x></y>") << a;
    QTest::newRow("per cent signs in the error text") << InRoot(Named("a") + "<x></%1%2%3>") << a;
}

void TestConnectionListInput::malformedDocuments()
{
    QFETCH(QByteArray, document);
    QFETCH(QStringList, names);
    const Reading reading = ReadList(document);
    QVERIFY(!reading.result);
    QCOMPARE(Names(reading), names);
    QCOMPARE(reading.reports.size(), 1);
    QCOMPARE(reading.reports.first().message, ParserMessage(document));
    QVERIFY(IsXmlErrorTrace(reading.reports, ParserMessage(document)));
}

void TestConnectionListInput::cutOffInsideTheThirdEntry()
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

void TestConnectionListInput::cutOffAnywhere()
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
    const QString declared8 = QStringLiteral("<?xml version=\"1.0\" encoding=\"utf-8\"?>");
    QTest::newRow("UTF-8 without a declaration") << content.toUtf8();
    QTest::newRow("UTF-8 with a mark") << encoded(QStringConverter::Utf8, content);
    QTest::newRow("UTF-8 with a mark, declared") << encoded(QStringConverter::Utf8, declared8 + content);
    QTest::newRow("UTF-16LE with a mark") << encoded(QStringConverter::Utf16LE, content);
    QTest::newRow("UTF-16BE with a mark") << encoded(QStringConverter::Utf16BE, content);
    QTest::newRow("UTF-16LE with a mark, declared") << encoded(QStringConverter::Utf16LE, declared16 + content);
    QTest::newRow("UTF-16BE with a mark, declared") << encoded(QStringConverter::Utf16BE, declared16 + content);
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

void TestConnectionListInput::bytesThatAreNoText_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("invalid UTF-8") << InRoot(Named("a") + Named("\xFF\xFE\x80"));
    QTest::newRow("half a character") << InRoot(Named("\xC3"));
    QTest::newRow("surrogate in UTF-8") << InRoot(Named("\xED\xA0\xBD"));
    QTest::newRow("unknown encoding") << QByteArray("<?xml version=\"1.0\" encoding=\"x-unheard-of\"?><Connection/>");
    QTest::newRow("mark only") << QByteArray("\xEF\xBB\xBF");
    QTest::newRow("UTF-16 mark only") << QByteArray("\xFF\xFE");
    QTest::newRow("zeros") << QByteArray(1000, '\0');
    QTest::newRow("an image") << QByteArray("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16);
}

void TestConnectionListInput::bytesThatAreNoText()
{
    QFETCH(QByteArray, document);
    const Reading reading = ReadList(document);
    QVERIFY(!reading.result);
    QVERIFY(IsXmlErrorTrace(reading.reports, ParserMessage(document)));
}

void TestConnectionListInput::documentTypesWithoutEntitiesAreRead_data()
{
    QTest::addColumn<QByteArray>("documentType");
    QTest::newRow("name only") << QByteArray("<!DOCTYPE ConnectionEntries>");
    QTest::newRow("external subset, never fetched")
        << QByteArray("<!DOCTYPE ConnectionEntries SYSTEM \"file:///does/not/exist.dtd\">");
    QTest::newRow("empty internal subset") << QByteArray("<!DOCTYPE ConnectionEntries []>");
    QTest::newRow("element and attribute declarations with defaults")
        << QByteArray("<!DOCTYPE ConnectionEntries [<!ELEMENT ConnectionEntries ANY>"
                      "<!ATTLIST Connection kind CDATA \"plain\" Selected CDATA #FIXED \"true\">]>");
    QTest::newRow("notation, comment, instruction")
        << QByteArray("<!DOCTYPE ConnectionEntries [<!NOTATION n SYSTEM \"n\"><!-- <!ENTITY e \"x\"> --><?p q?>]>");
}

void TestConnectionListInput::documentTypesWithoutEntitiesAreRead()
{
    QFETCH(QByteArray, documentType);
    const Reading reading =
        ReadList(documentType + "<ConnectionEntries>" + Named("&lt;&amp;&#97;&#x62;&gt;") + "</ConnectionEntries>");
    QVERIFY2(reading.result, qPrintable(reading.reports.isEmpty() ? QString() : reading.reports.first().message));
    QCOMPARE(Names(reading), QStringList{QStringLiteral("<&ab>")});
    QCOMPARE(reading.entries.at(0).Selected, false);
}

void TestConnectionListInput::entityDeclarationsAreRefused_data()
{
    QTest::addColumn<QByteArray>("declarations");
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("never used") << QByteArray("<!ENTITY e \"x\">") << QByteArray("a");
    QTest::newRow("used") << QByteArray("<!ENTITY e \"x\">") << QByteArray("&e;");
    QTest::newRow("empty value") << QByteArray("<!ENTITY e \"\">") << QByteArray("&e;");
    QTest::newRow("a thousand million laughs") << Laughs() << QByteArray("&l9;");
    QTest::newRow("laughs in an attribute's default")
        << Laughs() + "<!ATTLIST Connection a CDATA \"&l9;\">" << QByteArray("a");
    QTest::newRow("itself") << QByteArray("<!ENTITY e \"&e;\">") << QByteArray("&e;");
    QTest::newRow("each other") << QByteArray("<!ENTITY e \"&f;\"><!ENTITY f \"&e;\">") << QByteArray("&e;");
    QTest::newRow("one large entity, many times")
        << "<!ENTITY e \"" + QByteArray(100'000, 'x') + "\">" << QByteArray("&e;").repeated(100'000);
    QTest::newRow("markup") << QByteArray("<!ENTITY e \"<Connection/>\">") << QByteArray("a");
    QTest::newRow("external") << QByteArray("<!ENTITY e SYSTEM \"file:///etc/hostname\">") << QByteArray("&e;");
    QTest::newRow("external, public") << QByteArray("<!ENTITY e PUBLIC \"p\" \"file:///etc/hostname\">")
                                      << QByteArray("&e;");
    QTest::newRow("unparsed") << QByteArray("<!NOTATION n SYSTEM \"n\"><!ENTITY e SYSTEM \"e\" NDATA n>")
                              << QByteArray("a");
    QTest::newRow("parameter entity, never used") << QByteArray("<!ENTITY % p \"\">") << QByteArray("a");
    QTest::newRow("parameter entity") << QByteArray("<!ENTITY % p \"<!ENTITY e 'x'>\">%p;") << QByteArray("&e;");
    QTest::newRow("external parameter entity")
        << QByteArray("<!ENTITY % p SYSTEM \"file:///etc/hostname\">%p;") << QByteArray("a");
    QTest::newRow("parameter entities that grow")
        << QByteArray("<!ENTITY % a \"<!ENTITY e 'x'> <!ENTITY e 'x'> <!ENTITY e 'x'>\">"
                      "<!ENTITY % b \"%a;%a;%a;%a;%a;%a;%a;%a;%a;%a;\"><!ENTITY % c \"%b;%b;%b;%b;%b;%b;%b;%b;%b;\">"
                      "%c;%c;%c;%c;%c;%c;%c;%c;")
        << QByteArray("a");
    QTest::newRow("parameter entity that calls itself")
        << QByteArray("<!ENTITY % p \"&#37;p;\">%p;") << QByteArray("a");
    QTest::newRow("parameter entities that call each other")
        << QByteArray("<!ENTITY % p \"&#37;q;\"><!ENTITY % q \"&#37;p;\">%p;") << QByteArray("a");
    QTest::newRow("predefined one declared again") << QByteArray("<!ENTITY lt \"&#38;#60;\">") << QByteArray("a");
}

// Were an entity expanded, some of these would not end before the test's time is over.
void TestConnectionListInput::entityDeclarationsAreRefused()
{
    QFETCH(QByteArray, declarations);
    QFETCH(QByteArray, name);
    const QByteArray document = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<!DOCTYPE ConnectionEntries [" +
                                declarations + "]>\n<ConnectionEntries>" + Named(name) + "</ConnectionEntries>";
    const Reading reading = ReadList(document);
    QVERIFY(!reading.result);
    QVERIFY(reading.entries.empty());
    QCOMPARE(reading.reports.size(), 1);
    const QString message = reading.reports.first().message;
    QVERIFY2(QRegularExpression(QStringLiteral("^XML parsing error occurred in row 2 column \\d+\\. \"[^\"]+\"$"))
                 .match(message)
                 .hasMatch(),
             qPrintable(message));
    QVERIFY(IsXmlErrorTrace(reading.reports, message));
}

void TestConnectionListInput::entityDeclarationsInAFieldAreRefused_data()
{
    entityDeclarationsAreRefused_data();
}

// Qt's reader takes a document type wherever it stands.
void TestConnectionListInput::entityDeclarationsInAFieldAreRefused()
{
    QFETCH(QByteArray, declarations);
    QFETCH(QByteArray, name);
    const Reading reading = ReadList(InRoot(Named("before<!DOCTYPE a [" + declarations + "]>" + name)));
    QVERIFY(!reading.result);
    QCOMPARE(reading.entries.size(), std::size_t(1));
    QCOMPARE(reading.entries.front().ConnectionName, QStringLiteral("before"));
    QCOMPARE(reading.reports.size(), 1);
    QVERIFY(IsXmlErrorTrace(reading.reports, reading.reports.first().message));
}

void TestConnectionListInput::deepNesting_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<bool>("result");
    const QByteArray open = QByteArray("<x>").repeated(100'000);
    const QByteArray close = QByteArray("</x>").repeated(100'000);
    const QStringList a{QStringLiteral("a")};
    QTest::newRow("around an entry") << InRoot(open + Named("a") + close) << a << true;
    QTest::newRow("inside an entry") << InRoot(Entry(open + "<ConnectionName>a</ConnectionName>" + close)) << a << true;
    QTest::newRow("inside a field") << InRoot(Named("a" + open + close)) << a << true;
    QTest::newRow("never closed") << InRoot(Named("a") + open) << a << false;
    QTest::newRow("never closed inside a field") << InRoot(Named("a" + open)) << a << false;
    QTest::newRow("entries in entries") << QByteArray("<Connection>").repeated(100'000) +
                                               "<ConnectionName>a</ConnectionName>" +
                                               QByteArray("</Connection>").repeated(100'000)
                                        << a << true;
}

void TestConnectionListInput::deepNesting()
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
