#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/xmlguard.h"

#include <QTest>
#include <QXmlStreamReader>

/// Without the guard some of these documents expand to gigabytes or to an endless stream of tokens: the test then ends
/// by its time-out or for lack of memory.
class TestXmlGuard : public QObject
{
    Q_OBJECT

private slots:
    void entityDeclarationsAreRefused_data();
    void entityDeclarationsAreRefused();
    void otherDocumentsAreRead_data();
    void otherDocumentsAreRead();

private:
    struct Outcome
    {
        QString text;
        qsizetype expanded = 0;
        int tokensAfterType = 0;
        bool hasError = false;
        QString errorText;
    };
    static Outcome Read(const QByteArray& document);
};

TestXmlGuard::Outcome TestXmlGuard::Read(const QByteArray& document)
{
    Outcome outcome;
    QXmlStreamReader reader(document);
    bool typeSeen = false;
    while (!reader.atEnd()) {
        reader.readNext();
        const bool isType = reader.isDTD();
        RefuseEntityDeclarations(reader);
        if (isType && reader.hasError() && reader.tokenType() != QXmlStreamReader::Invalid)
            outcome.tokensAfterType = -1000;
        if (reader.hasError())
            break;
        outcome.tokensAfterType += typeSeen ? 1 : 0;
        typeSeen = typeSeen || isType;
        if (reader.isCharacters())
            outcome.text += reader.text();
    }
    outcome.hasError = reader.hasError();
    outcome.errorText = reader.errorString();
    return outcome;
}

void TestXmlGuard::entityDeclarationsAreRefused_data()
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

    const QString utf16 = QStringLiteral("\uFEFF<!DOCTYPE r [<!ENTITY a 'x'>]><r>&a;</r>");
    QTest::newRow("in UTF-16") << QByteArray(reinterpret_cast<const char*>(utf16.utf16()), utf16.size() * 2);
}

void TestXmlGuard::entityDeclarationsAreRefused()
{
    QFETCH(const QByteArray, document);
    const Outcome outcome = Read(document);
    QVERIFY(outcome.hasError);
    QVERIFY(!outcome.errorText.isEmpty());
    // Nothing was expanded and no later content was read.
    QVERIFY2(outcome.text.isEmpty() || outcome.text == QLatin1String("text"), qPrintable(outcome.text.left(80)));
    QVERIFY(outcome.tokensAfterType == 0 || outcome.tokensAfterType == 1);
}

void TestXmlGuard::otherDocumentsAreRead_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("text");

    QTest::newRow("no document type") << QByteArray("<r>a</r>") << QStringLiteral("a");
    QTest::newRow("empty document type") << QByteArray("<!DOCTYPE r><r>a</r>") << QStringLiteral("a");
    QTest::newRow("elements and attributes declared")
        << QByteArray("<!DOCTYPE r [<!ELEMENT r ANY><!ATTLIST r a CDATA 'default'>]><r>a</r>") << QStringLiteral("a");
    QTest::newRow("external subset, which is never fetched")
        << QByteArray("<!DOCTYPE r SYSTEM 'file:///does/not/exist.dtd'><r>a</r>") << QStringLiteral("a");
    QTest::newRow("notation, comment and processing instruction")
        << QByteArray("<!DOCTYPE r [<!NOTATION n SYSTEM 'n'><!-- <!ENTITY e 'x'> --><?p q?>]><r>a</r>")
        << QStringLiteral("a");
    QTest::newRow("predefined entities and character references")
        << QByteArray("<r>&lt;&amp;&gt;&quot;&apos;&#65;&#x1F4E1;</r>")
        << QString(QStringLiteral("<&>\"'A") + QString::fromUcs4(U"\x1F4E1", 1));
}

void TestXmlGuard::otherDocumentsAreRead()
{
    QFETCH(const QByteArray, document);
    QFETCH(const QString, text);
    const Outcome outcome = Read(document);
    QVERIFY2(!outcome.hasError, qPrintable(outcome.errorText));
    QCOMPARE(outcome.text, text);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestXmlGuard)
#include "tst_xmlguard.moc"
