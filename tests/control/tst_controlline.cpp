// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "control/controlline.h"

#include "tests/support/testmain.h"

#include <QTest>

class TestControlLine : public QObject
{
    Q_OBJECT

private slots:
    void lineIsReadBackUnchanged();
    void whatIsNoObjectIsRefused_data();
    void whatIsNoObjectIsRefused();
    void partsOfATextStayWithinALine();
    void partsOfBytesStayWithinALine();
};

void TestControlLine::lineIsReadBackUnchanged()
{
    const QJsonObject object{{QStringLiteral("name"), QStringLiteral("\"a\"\n\t\\--\u00e4\u6f22") + QChar(0)}};
    const QByteArray line = ControlLine::Write(object);
    QCOMPARE(line.count('\n'), 1);
    QVERIFY(line.endsWith('\n'));
    QCOMPARE(ControlLine::Read(line), object);
}

void TestControlLine::whatIsNoObjectIsRefused_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("empty") << QByteArray("\n");
    QTest::newRow("text") << QByteArray("GET / HTTP/1.1\r\n");
    QTest::newRow("array") << QByteArray("[1]\n");
    QTest::newRow("half an object") << QByteArray("{\"protocol\":1\n");
    QTest::newRow("not UTF-8") << QByteArray("{\"protocol\":\"\xff\"}\n");
    QTest::newRow("deep nesting") << QByteArray(100'000, '[') + '\n';
}

void TestControlLine::whatIsNoObjectIsRefused()
{
    QFETCH(const QByteArray, line);
    QVERIFY(!ControlLine::Read(line));
}

void TestControlLine::partsOfATextStayWithinALine()
{
    // The longest in JSON, and a character of two units at every other place.
    const QString text = QString(300'000, QChar(1)) + u'x' + QStringLiteral("\U0001F4E1").repeated(200'000);
    QString joined;
    for (const QByteArray& line : ControlLine::WriteParts(text, {}).split('\n')) {
        QVERIFY(line.size() < ControlLine::kMaximumSize);
        joined += ControlLine::Read(line).value_or(QJsonObject()).value(QLatin1String("text")).toString();
    }
    QVERIFY(joined == text);
}

void TestControlLine::partsOfBytesStayWithinALine()
{
    QByteArray bytes(2'000'000, '\xff');
    bytes += "end";
    QByteArray joined;
    for (const QByteArray& line : ControlLine::WriteParts(bytes, {}).split('\n')) {
        QVERIFY(line.size() < ControlLine::kMaximumSize);
        const QString part = ControlLine::Read(line).value_or(QJsonObject()).value(QLatin1String("base64")).toString();
        joined += QByteArray::fromBase64(part.toLatin1());
    }
    QVERIFY(joined == bytes);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestControlLine)
#include "tst_controlline.moc"
