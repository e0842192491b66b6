// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/formats/boundedxmlreader.h"

#include <QStringDecoder>
#include <QStringEncoder>
#include <QTest>

namespace {

/// Bounds of a handful, to reach each with a short document.
const XmlLimits kFew{3, 2, 6, 4};

QByteArray InUtf16(const QByteArray& document)
{
    QStringEncoder encoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    return encoder(QString::fromLatin1(document));
}

} // namespace

/// With Qt's reader alone, some of these documents expand to gigabytes or to an endless stream of tokens, or take
/// hours: the test then ends by its time-out or for lack of memory.
class TestBoundedXmlReader : public QObject
{
    Q_OBJECT

private slots:
    void internalSubsetsAreRefused_data();
    void internalSubsetsAreRefused();
    void limitsAreKept_data();
    void limitsAreKept();
    void hostileDocumentsAreRefused_data();
    void hostileDocumentsAreRefused();
    void otherDocumentsAreRead_data();
    void otherDocumentsAreRead();
    void encodingsAreKnown_data();
    void encodingsAreKnown();
    void plainUtf8IsReadAsItsText_data();
    void plainUtf8IsReadAsItsText();
    void refusalNamesTheLine();
    void namesAreLocalNames();

private:
    /// The text of a document; `error` is empty if it was read to its end.
    struct Outcome
    {
        QString text;
        QString error;
        int tokens = 0;
    };
    static Outcome Read(const QByteArray& document, const XmlLimits& limits = {});
};

TestBoundedXmlReader::Outcome TestBoundedXmlReader::Read(const QByteArray& document, const XmlLimits& limits)
{
    Outcome outcome;
    BoundedXmlReader reader(document, limits);
    while (!reader.atEnd()) {
        ++outcome.tokens;
        if (reader.readNext() == QXmlStreamReader::Characters)
            outcome.text += reader.text();
    }
    outcome.error = reader.errorString();
    return outcome;
}

void TestBoundedXmlReader::internalSubsetsAreRefused_data()
{
    QTest::addColumn<QByteArray>("document");

    QTest::newRow("entity") << QByteArray("<!DOCTYPE r [<!ENTITY a 'x'>]><r>&a;</r>");
    QTest::newRow("unused entity") << QByteArray("<!DOCTYPE r [<!ENTITY a 'x'>]><r/>");
    QTest::newRow("external entity") << QByteArray("<!DOCTYPE r [<!ENTITY a SYSTEM 'file:///etc/passwd'>]><r>&a;</r>");
    QTest::newRow("after an XML declaration and a comment")
        << QByteArray("<?xml version='1.0' encoding='UTF-8'?>\n<!-- c -->\n<!DOCTYPE r [<!ENTITY a 'x'>]><r>&a;</r>");

    QTest::newRow("empty entity") << QByteArray("<!DOCTYPE r [<!ENTITY a ''>]><r>&a;</r>");
    QTest::newRow("public external entity")
        << QByteArray("<!DOCTYPE r [<!ENTITY a PUBLIC 'p' 'file:///etc/passwd'>]><r>&a;</r>");
    QTest::newRow("unparsed entity") << QByteArray(
        "<!DOCTYPE r [<!NOTATION n SYSTEM 'n'><!ENTITY a SYSTEM 'a' NDATA n>]><r/>");
    QTest::newRow("predefined entity") << QByteArray("<!DOCTYPE r [<!ENTITY lt '&#38;#60;'>]><r/>");
    QTest::newRow("unused parameter entity") << QByteArray("<!DOCTYPE r [<!ENTITY % p ''>]><r/>");
    QTest::newRow("external parameter entity")
        << QByteArray("<!DOCTYPE r [<!ENTITY % p SYSTEM 'file:///etc/passwd'>%p;]><r/>");
    QTest::newRow("recursive parameter entity") << QByteArray("<!DOCTYPE r [<!ENTITY % p '&#37;p;'>%p;]><r/>");
    QTest::newRow("mutually recursive parameter entities")
        << QByteArray("<!DOCTYPE r [<!ENTITY % p '&#37;q;'><!ENTITY % q '&#37;p;'>%p;]><r/>");

    const auto nested = [](const QByteArray& kind, const QByteArray& reference) {
        QByteArray entities = "<!ENTITY " + kind + "l0 'lol'>";
        for (int level = 1; level < 40; ++level) {
            const QByteArray lower = reference + "l" + QByteArray::number(level - 1) + ";";
            entities += "<!ENTITY " + kind + "l" + QByteArray::number(level) + " '" + lower.repeated(10) + "'>";
        }
        return entities;
    };
    const QByteArray nestedEntities = nested("", "&");
    QTest::newRow("forty levels of ten in the text") << QByteArray("<!DOCTYPE r [" + nestedEntities + "]><r>&l39;</r>");
    QTest::newRow("forty levels of ten in an attribute")
        << QByteArray("<!DOCTYPE r [" + nestedEntities + "]><r a='&l39;'/>");
    QTest::newRow("forty levels of ten in an attribute's default")
        << QByteArray("<!DOCTYPE r [" + nestedEntities + "<!ATTLIST r a CDATA '&l39;'>]><r/>");
    QTest::newRow("forty levels of ten parameter entities")
        << QByteArray("<!DOCTYPE r [" + nested("% ", "%") + " %l39; ]><r/>");

    const QByteArray large(4000, ' ');
    QTest::newRow("large parameter entity, two million times")
        << QByteArray("<!DOCTYPE r [<!ENTITY % a '" + large + "'>" + QByteArray("%a;").repeated(2'000'000) + "]><r/>");
    QTest::newRow("large entity, two million times")
        << QByteArray("<!DOCTYPE r [<!ENTITY a '" + large + "'>]><r>" + QByteArray("&a;").repeated(2'000'000) + "</r>");

    QTest::newRow("mutually recursive entities")
        << QByteArray("<!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><r>&a;</r>");
    QTest::newRow("entity with elements")
        << QByteArray("<!DOCTYPE r [<!ENTITY a '<b>&c;</b>'><!ENTITY c '<d>&e;</d>'>]><r>&a;&a;</r>");
    QTest::newRow("entity with a document type")
        << QByteArray("<!DOCTYPE r [<!ENTITY a '<!DOCTYPE r [<!ENTITY z \"w\">]>&a;'>]><r>&a;</r>");
    QTest::newRow("entity declared by a parameter entity")
        << QByteArray("<!DOCTYPE r [<!ENTITY % p '<!ENTITY q \"x\">'> %p; ]><r>&q;</r>");
    QTest::newRow("in a second document type")
        << QByteArray("<!DOCTYPE r><!DOCTYPE r [<!ENTITY a 'x&b;&b;'><!ENTITY b 'y&a;&a;'>]><r>&a;</r>");
    QTest::newRow("in a document type inside the root")
        << QByteArray("<r>text<!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]>&a;</r>");
    QTest::newRow("in a document type after the root") << QByteArray("<r/><!DOCTYPE r [<!ENTITY a '&a;'>]>");

    QTest::newRow("in UTF-16") << InUtf16("<!DOCTYPE r [<!ENTITY a 'x'>]><r>&a;</r>");
    QTest::newRow("elements and attributes declared")
        << QByteArray("<!DOCTYPE r [<!ELEMENT r ANY><!ATTLIST r a CDATA 'default'>]><r>a</r>");
    QTest::newRow("nothing declared") << QByteArray("<!DOCTYPE r [ ]><r>a</r>");
    QTest::newRow("beside an external subset") << QByteArray("<!DOCTYPE r SYSTEM \"a>b\" [ ]><r>a</r>");
}

void TestBoundedXmlReader::internalSubsetsAreRefused()
{
    QFETCH(const QByteArray, document);
    const Outcome outcome = Read(document);
    QVERIFY2(outcome.error.contains(QLatin1String("internal subset")), qPrintable(outcome.error));
    QCOMPARE(outcome.tokens, 0);
}

void TestBoundedXmlReader::limitsAreKept_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("refusal");
    const auto add = [](const char* name, const QByteArray& document, const char* refusal = "") {
        QTest::newRow(name) << document << QString::fromLatin1(refusal);
    };

    add("depth at the limit", "<a><a><a></a></a><a><a></a></a></a>");
    add("empty elements at the limit", "<a><a><a/><a/><a/></a></a>");
    add("depth above the limit", "<a><a><a><a/></a></a></a>", "more than 3 elements are inside one another");
    add("attributes at the limit", "<a b='' c=''/>");
    add("attributes above the limit", "<a b='' c='' d=''/>", "an element has more than 2 attributes");
    add("namespaces above the limit", "<a xmlns='' xmlns:c='u' xmlns:d='u'/>", "more than 2 attributes");
    add("attributes on lines of their own", "<a\nb\n=\n''\nc=\"\"\nd=''/>", "more than 2 attributes");
    add("signs in values", "<a b='=====&lt;' c=\"='>'=/\">=====</a>");
    add("elements at the limit", "<a><b></b><b/><b/><b/><b/></a>");
    add("elements above the limit", "<a><b/><b/><b/><b/><b/><b/></a>", "more than 6 elements, attributes, comments");
    add("elements and attributes above the limit", "<a b='' c=''><b a='' c=''/><b/></a>", "more than 6 elements");
    add("comments above the limit", "<a><!----><!-- <b/> --><!----><!----><!----><!----></a>", "more than 6 elements");
    add("instructions above the limit", "<a><?b?><?b?><?b?><?b?><?b?><?b?></a>", "more than 6 elements");
    add("document types above the limit", QByteArray("<!DOCTYPE a>").repeated(7) + "<a/>", "more than 6 elements");
    add("markup inside a comment", "<a><!-- <b><b><b><b c='' d='' e=''/> &&&&& <!DOCTYPE a [ ' \" --></a>");
    add("markup inside an instruction", "<a><?p <b><b><b><b c='' d='' e=''/> &&&&& <!DOCTYPE a [ ' \" ?></a>");
    add("markup inside a section", "<a><![CDATA[<b><b><b><b c='' d='' e=''/> &&&&& <!DOCTYPE a [ ' \" ]]></a>");
    add("markup after a comment", "<a><!-- ' --><b><b><b/></b></b></a>", "more than 3 elements");
    add("markup after an instruction", "<a><?p \"?><b><b><b/></b></b></a>", "more than 3 elements");
    add("markup after a section", "<a><![CDATA[<]]]]><b><b><b/></b></b></a>", "more than 3 elements");
    add("markup after a document type", "<!DOCTYPE a SYSTEM '<[\"'><a><b><b><b/></b></b></a>", "more than 3 elements");
    add("references at the limit", "<a b='&lt;&#9;'>&gt;&#x41;<![CDATA[&]]></a>");
    add("references above the limit", "<a b='&lt;&#9;'>&gt;&#x41;<b/>&amp;</a>", "more than 4 references");
    add("references in a value", "<a b='&lt;&#9;&lt;&lt;&lt;'/>", "more than 4 references");
}

void TestBoundedXmlReader::limitsAreKept()
{
    QFETCH(const QByteArray, document);
    QFETCH(const QString, refusal);
    for (const QByteArray& encoded : {document, InUtf16(document)}) {
        const Outcome outcome = Read(encoded, kFew);
        QVERIFY2(refusal.isEmpty() ? outcome.error.isEmpty() : outcome.error.contains(refusal),
                 qPrintable(outcome.error));
        QCOMPARE(outcome.tokens == 0, !refusal.isEmpty());
    }
}

void TestBoundedXmlReader::hostileDocumentsAreRefused_data()
{
    QTest::addColumn<QByteArray>("document");
    const auto numbered = [](const char* before, const char* after) {
        QByteArray parts;
        for (int i = 0; i < 1'000'000; ++i)
            parts += before + QByteArray::number(i) + after;
        return parts;
    };
    QTest::newRow("attributes") << QByteArray("<a" + numbered(" a", "=''") + "/>");
    QTest::newRow("namespaces") << QByteArray("<a" + numbered(" xmlns:a", "=''") + "/>");
    QTest::newRow("nested namespaces") << QByteArray("<a xmlns:b='c'>").repeated(1'000'000);
    QTest::newRow("default attributes") << QByteArray("<!DOCTYPE a [<!ATTLIST a" + numbered(" a", " CDATA ''") +
                                                      ">]><a/>");
    QTest::newRow("depth") << QByteArray("<a>").repeated(10'000'000);
    QTest::newRow("references") << QByteArray("<a>" + QByteArray("&lt;").repeated(10'000'000) + "</a>");
}

void TestBoundedXmlReader::hostileDocumentsAreRefused()
{
    QFETCH(const QByteArray, document);
    const Outcome outcome = Read(document);
    QVERIFY2(outcome.error.startsWith(QLatin1String("The document is refused in line 1: ")), qPrintable(outcome.error));
    QCOMPARE(outcome.tokens, 0);
}

void TestBoundedXmlReader::otherDocumentsAreRead_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("text");

    QTest::newRow("no document type") << QByteArray("<r>a</r>") << QStringLiteral("a");
    QTest::newRow("empty document type") << QByteArray("<!DOCTYPE r><r>a</r>") << QStringLiteral("a");
    QTest::newRow("external subset, which is never fetched")
        << QByteArray("<!DOCTYPE r SYSTEM 'file:///does/not/exist.dtd'><r>a</r>") << QStringLiteral("a");
    QTest::newRow("brackets outside a document type")
        << QByteArray("<!DOCTYPE r SYSTEM \"[']\"><r>[a]</r>") << QStringLiteral("[a]");
    QTest::newRow("deep nesting") << QByteArray(QByteArray("<a>").repeated(1000) + "a" +
                                                QByteArray("</a>").repeated(1000))
                                  << QStringLiteral("a");
    QTest::newRow("predefined entities and character references")
        << QByteArray("<r>&lt;&amp;&gt;&quot;&apos;&#65;&#x1F4E1;</r>")
        << QString(QStringLiteral("<&>\"'A") + QString::fromUcs4(U"\x1F4E1", 1));
}

void TestBoundedXmlReader::otherDocumentsAreRead()
{
    QFETCH(const QByteArray, document);
    QFETCH(const QString, text);
    const Outcome outcome = Read(document);
    QCOMPARE(outcome.error, QString());
    QCOMPARE(outcome.text, text);
}

void TestBoundedXmlReader::encodingsAreKnown_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("error");
    const QByteArray latin1 = "<r>K\xFC"
                              "ste</r>";
    const QByteArray utf8 = "<r>K\xC3\xBC"
                            "ste</r>";
    QTest::newRow("none declared") << utf8 << QString();
    QTest::newRow("UTF-8, declared") << QByteArray("<?xml version='1.0' encoding='UTF-8'?>" + utf8) << QString();
    QTest::newRow("Latin-1, declared") << QByteArray("<?xml version=\"1.0\"\n encoding = \"iso-8859-1\" ?>" + latin1)
                                       << QString();
    QTest::newRow("byte order mark against declaration")
        << QByteArray("\xEF\xBB\xBF<?xml version='1.0' encoding='ISO-8859-1'?>" + utf8) << QString();
    QTest::newRow("UTF-16") << InUtf16(latin1) << QString();
    QTest::newRow("UTF-16, other declaration")
        << InUtf16("<?xml version='1.0' encoding='UTF-8'?>" + latin1) << QString();
    QTest::newRow("declared later") << QByteArray(utf8 + "<?xml encoding='ISO-8859-1'?>")
                                    << QStringLiteral("XML declaration not at start of document.");
    QTest::newRow("unknown") << QByteArray("<?xml version='1.0' encoding='unheard-of'?>" + utf8)
                             << QStringLiteral("The encoding that the document declares is not supported.");
    QTest::newRow("Latin-1, not declared")
        << latin1 << QStringLiteral("The document has bytes that its encoding does not allow.");
}

void TestBoundedXmlReader::encodingsAreKnown()
{
    QFETCH(const QByteArray, document);
    QFETCH(const QString, error);
    const Outcome outcome = Read(document);
    QCOMPARE(outcome.error, error);
    if (error.isEmpty())
        QCOMPARE(outcome.text, QStringLiteral(u"K\u00FCste"));
}

void TestBoundedXmlReader::plainUtf8IsReadAsItsText_data()
{
    QTest::addColumn<QByteArray>("document");
    const QByteArray entry =
        "  <Connection a='1' b=\"&lt;\">\r\n\t<Name><![CDATA[\xC3\xA4 \xE2\x82\xAC ]] > \xF0\x9F\x93\xA1]]>"
        "text &amp; &#x41;\r</Name><!-- -> --><?do it?><x:y/>\n  </Connection>\n";
    const QByteArray document =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<List>\n" + entry.repeated(40) + "</List>\n";
    QTest::newRow("complete") << document;
    // Qt's reader decodes a power of two of bytes at a time: all cuts and faults near a boundary of these parts.
    for (const int boundary : {1024, 2048, 4096}) {
        for (int at = boundary - 20; at < boundary + 5; ++at) {
            QTest::addRow("cut off at %d", at) << document.first(at);
            QTest::addRow("control character at %d", at) << QByteArray(document).insert(at, '\x01');
            QTest::addRow("markup at %d", at) << QByteArray(document).insert(at, "]]><");
        }
    }
    for (int count = 1; count <= 200; ++count) // more than an entry is long: each part of one meets a boundary
        QTest::addRow("shifted by %d", count) << QByteArray(document).insert(60, QByteArray(count, ' '));
}

/// Documents that declare UTF-8 are decoded in parts. That must not show in any token, error or place.
void TestBoundedXmlReader::plainUtf8IsReadAsItsText()
{
    QFETCH(const QByteArray, document);
    BoundedXmlReader parts(document);
    QStringDecoder decoder(QStringConverter::Utf8);
    const QString text = decoder(document);
    if (decoder.hasError()) {
        QVERIFY(parts.hasError());
        return;
    }
    QXmlStreamReader whole(text);
    whole.setNamespaceProcessing(false);
    while (!whole.atEnd()) {
        QCOMPARE(parts.readNext(), whole.readNext());
        QCOMPARE(parts.qualifiedName(), whole.qualifiedName());
        QCOMPARE(parts.text(), whole.text());
        QCOMPARE(parts.attributes(), whole.attributes());
        QCOMPARE(parts.lineNumber(), whole.lineNumber());
        QCOMPARE(parts.columnNumber(), whole.columnNumber());
    }
    QVERIFY(parts.atEnd());
    QCOMPARE(parts.error(), whole.error());
    QCOMPARE(parts.errorString(), whole.errorString());
}

void TestBoundedXmlReader::refusalNamesTheLine()
{
    QCOMPARE(Read("<a>\n<!--\n-->\n<a b=''\n c='' d=''/></a>", kFew).error,
             QStringLiteral("The document is refused in line 5: an element has more than 2 attributes."));
}

void TestBoundedXmlReader::namesAreLocalNames()
{
    for (const char* document : {"<b/>", "<a:b/>", "<a:b xmlns:a='u'/>", "<b xmlns='u'/>"}) {
        BoundedXmlReader reader{QByteArray(document)};
        QVERIFY(reader.readNextStartElement());
        QCOMPARE(reader.name(), QStringLiteral("b"));
    }
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestBoundedXmlReader)
#include "tst_boundedxmlreader.moc"
