#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/xmlguard.h"

#include <QTest>
#include <QXmlStreamReader>

/// Every hostile document here is one that takes a reader without the guard gigabytes, or a token stream without end,
/// or is one step from it. A guard that fails shows as a test that is killed by its time-out or by its memory.
class TestXmlGuard : public QObject
{
    Q_OBJECT

private slots:
    void refused_data();
    void refused();
    void harmless_data();
    void harmless();

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

void TestXmlGuard::refused_data()
{
    QTest::addColumn<QByteArray>("document");

    QTest::newRow("one entity, used") << QByteArray("<!DOCTYPE r [<!ENTITY a 'x'>]><r>&a;</r>");
    QTest::newRow("one entity, not used") << QByteArray("<!DOCTYPE r [<!ENTITY a 'x'>]><r/>");
    QTest::newRow("file from outside") << QByteArray(
        "<!DOCTYPE r [<!ENTITY a SYSTEM 'file:///etc/passwd'>]><r>&a;</r>");
    QTest::newRow("with declaration") << QByteArray(
        "<?xml version='1.0' encoding='UTF-8'?>\n<!-- c -->\n<!DOCTYPE r [<!ENTITY a 'x'>]><r>&a;</r>");

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
    QTest::newRow("one large parameter entity, often")
        << QByteArray("<!DOCTYPE r [<!ENTITY % a '" + large + "'>" + QByteArray("%a;").repeated(2'000'000) + "]><r/>");
    QTest::newRow("one large entity, often")
        << QByteArray("<!DOCTYPE r [<!ENTITY a '" + large + "'>]><r>" + QByteArray("&a;").repeated(2'000'000) + "</r>");

    QTest::newRow("entities that name one another")
        << QByteArray("<!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><r>&a;</r>");
    QTest::newRow("entity that holds elements")
        << QByteArray("<!DOCTYPE r [<!ENTITY a '<b>&c;</b>'><!ENTITY c '<d>&e;</d>'>]><r>&a;&a;</r>");
    QTest::newRow("entity that holds a document type")
        << QByteArray("<!DOCTYPE r [<!ENTITY a '<!DOCTYPE r [<!ENTITY z \"w\">]>&a;'>]><r>&a;</r>");
    QTest::newRow("entity declared by a parameter entity")
        << QByteArray("<!DOCTYPE r [<!ENTITY % p '<!ENTITY q \"x\">'> %p; ]><r>&q;</r>");
    QTest::newRow("in a second document type")
        << QByteArray("<!DOCTYPE r><!DOCTYPE r [<!ENTITY a 'x&b;&b;'><!ENTITY b 'y&a;&a;'>]><r>&a;</r>");
    QTest::newRow("in a document type within the root")
        << QByteArray("<r>text<!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]>&a;</r>");
    QTest::newRow("in a document type behind the root") << QByteArray("<r/><!DOCTYPE r [<!ENTITY a '&a;'>]>");

    const QString utf16 = QStringLiteral("\uFEFF<!DOCTYPE r [<!ENTITY a 'x'>]><r>&a;</r>");
    QTest::newRow("in UTF-16") << QByteArray(reinterpret_cast<const char*>(utf16.utf16()), utf16.size() * 2);
}

void TestXmlGuard::refused()
{
    QFETCH(const QByteArray, document);
    const Outcome outcome = Read(document);
    QVERIFY(outcome.hasError);
    QVERIFY(!outcome.errorText.isEmpty());
    // Nothing was expanded, and nothing of what follows was seen.
    QVERIFY2(outcome.text.isEmpty() || outcome.text == QLatin1String("text"), qPrintable(outcome.text.left(80)));
    QVERIFY(outcome.tokensAfterType == 0 || outcome.tokensAfterType == 1);
}

void TestXmlGuard::harmless_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("text");

    QTest::newRow("no document type") << QByteArray("<r>a</r>") << QStringLiteral("a");
    QTest::newRow("empty document type") << QByteArray("<!DOCTYPE r><r>a</r>") << QStringLiteral("a");
    QTest::newRow("elements and attributes declared")
        << QByteArray("<!DOCTYPE r [<!ELEMENT r ANY><!ATTLIST r a CDATA 'default'>]><r>a</r>") << QStringLiteral("a");
    QTest::newRow("XML's own entities and characters by number")
        << QByteArray("<r>&lt;&amp;&gt;&quot;&apos;&#65;&#x1F4E1;</r>")
        << QString(QStringLiteral("<&>\"'A") + QString::fromUcs4(U"\x1F4E1", 1));
}

void TestXmlGuard::harmless()
{
    QFETCH(const QByteArray, document);
    QFETCH(const QString, text);
    const Outcome outcome = Read(document);
    QVERIFY2(!outcome.hasError, qPrintable(outcome.errorText));
    QCOMPARE(outcome.text, text);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestXmlGuard)
#include "tst_xmlguard.moc"
