// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/entries/entrysamples.h"
#include "tests/entries/listreading.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/formats/writtenlist.h"

#include <QRandomGenerator>
#include <QTest>

#include <limits>
#include <optional>

namespace {

using Entries = std::deque<Connection>;

/// The entries of a document as it is written; none if it is left to the XML reader, which then has had no entry.
std::optional<Entries> ReadWritten(const QByteArray& document, const ConnectionList::Room& room = {})
{
    Entries entries;
    if (ReadWrittenList(
            document, [&entries](const Connection& entry) { entries.push_back(entry); }, room))
        return entries;
    if (!entries.empty())
        qFatal("entries of a document that is left to the XML reader");
    return std::nullopt;
}

/// The same by the XML reader: for it a blank at the end makes no difference.
std::optional<Entries> ReadAsXml(const QByteArray& document)
{
    const Reading reading = ReadList(document + ' ');
    return reading.result ? std::optional(reading.entries) : std::nullopt;
}

bool IsSame(const Entries& one, const Entries& other)
{
    return std::equal(
        one.begin(), one.end(), other.begin(), other.end(),
        [](const Connection& a, const Connection& b) {
            return a == b && a.ConnectionStatus == b.ConnectionStatus && a.Selected == b.Selected;
        });
}

Connection WithTexts(const QString& name)
{
    Connection entry(SampleEntry(5));
    entry.ConnectionName = name;
    entry.Subsystem = name;
    return entry;
}

QByteArray Sample()
{
    return WriteList({SampleEntry(1), WithTexts(QStringLiteral(u"a ]] <&> \u00E4\U0001F4E1\t\n")), SampleEntry(2),
                      WithTexts(QStringLiteral(""))});
}

} // namespace

/// The reader for documents that are exactly as they are written, against the XML reader.
class TestWrittenList : public QObject
{
    Q_OBJECT

private slots:
    void writtenListsAreRead_data();
    void writtenListsAreRead();
    void othersAreLeftToTheXmlReader_data();
    void othersAreLeftToTheXmlReader();
    void everyCutIsLeftToTheXmlReader();
    void room();
    void changedDocumentsAreReadAsByTheXmlReader();
};

void TestWrittenList::writtenListsAreRead_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("samples") << Sample();
    QTest::newRow("default entry") << WriteList({Connection()});
    Connection extreme;
    extreme.DeviceType = std::numeric_limits<qint32>::min();
    extreme.TimeoutSeconds = std::numeric_limits<qint32>::max();
    extreme.ConnectionStatus = -1;
    QTest::newRow("extreme numbers") << WriteList({extreme});
    for (const char16_t unit : {u'\x7F', u'\x80', u'\u2028', u'\uFEFF', u'\uFFFD'})
        QTest::addRow("U+%04X", unit) << WriteList({WithTexts(QStringLiteral("a") + QChar(unit))});
}

void TestWrittenList::writtenListsAreRead()
{
    QFETCH(const QByteArray, document);
    const std::optional<Entries> entries = ReadWritten(document);
    QVERIFY(entries);
    const std::optional<Entries> expected = ReadAsXml(document);
    QVERIFY(expected);
    QVERIFY(IsSame(*entries, *expected));
    QVERIFY(WriteList(*entries) == document);
}

void TestWrittenList::othersAreLeftToTheXmlReader_data()
{
    QTest::addColumn<QByteArray>("document");
    const auto with = [](const QByteArray& before, const QByteArray& after) {
        return QByteArray(WriteList({SampleEntry(1)})).replace(before, after);
    };
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no entry") << WriteList({});
    QTest::newRow("split section") << WriteList({WithTexts(QStringLiteral("]]>"))});
    QTest::newRow("carriage return") << WriteList({WithTexts(QStringLiteral("a\rb"))});
    QTest::newRow("raw carriage return") << with("<![CDATA[", "<![CDATA[\r");
    QTest::newRow("control character") << with("<![CDATA[", "<![CDATA[\x01");
    QTest::newRow("null") << with("<![CDATA[", QByteArray("<![CDATA[\0", 10));
    QTest::newRow("U+FEFF at the beginning") << with("<![CDATA[", "<![CDATA[\xEF\xBB\xBF");
    QTest::newRow("U+FFFE") << with("<![CDATA[", "<![CDATA[\xEF\xBF\xBE");
    QTest::newRow("U+FFFF") << with("<![CDATA[", "<![CDATA[\xEF\xBF\xBF");
    QTest::newRow("not UTF-8") << with("<![CDATA[", "<![CDATA[\xC3");
    QTest::newRow("another encoding") << with("utf-8", "iso-8859-1");
    QTest::newRow("number too large") << with("<DeviceType>", "<DeviceType>99999999999");
    QTest::newRow("no number") << with("<DeviceType>", "<DeviceType>x");
    QTest::newRow("blank before number") << with("<DeviceType>", "<DeviceType> ");
    QTest::newRow("no flag") << with("</Selected>", " </Selected>");
    QTest::newRow("another element") << with("  <Connection>\n", "  <Connection>\n    <Other/>\n");
    QTest::newRow("another indentation") << with("  <Connection>\n", "\t<Connection>\n");
    QTest::newRow("comment at the end") << WriteList({SampleEntry(1)}) + "<!-- -->";
    QTest::newRow("garbage at the end") << WriteList({SampleEntry(1)}) + "x";
}

void TestWrittenList::othersAreLeftToTheXmlReader()
{
    QFETCH(const QByteArray, document);
    QVERIFY(!ReadWritten(document));
}

void TestWrittenList::everyCutIsLeftToTheXmlReader()
{
    const QByteArray sample = Sample();
    for (qsizetype size = 0; size < sample.size(); ++size)
        QVERIFY2(!ReadWritten(sample.first(size)), sample.first(size).constData());
}

void TestWrittenList::room()
{
    const QByteArray sample = Sample();
    const qint64 entries = 4;
    const qint64 bytes = sample.size();
    QVERIFY(ReadWritten(sample, {entries, bytes}));
    QVERIFY(!ReadWritten(sample, {entries - 1, bytes}));
    QVERIFY(!ReadWritten(sample, {entries, bytes - 1}));
    QVERIFY(ReadWritten(sample, ConnectionList::kRoomForOwnList));
}

/// What is read must be what the XML reader reads. The changes are the same in every run.
void TestWrittenList::changedDocumentsAreReadAsByTheXmlReader()
{
    QRandomGenerator random(1);
    const QByteArray sample = Sample();
    const QByteArray likely("<>[]!C/\n\t -0129tfe&\r\x01\xC3\xA4\xEF\xBF\xBE");
    int read = 0;
    for (int i = 0; i < 20'000; ++i) {
        QByteArray document = sample;
        const qsizetype at = random.bounded(document.size());
        switch (random.bounded(4)) {
        case 0:
            document[at] = likely.at(random.bounded(likely.size()));
            break;
        case 1:
            document.insert(at, likely.at(random.bounded(likely.size())));
            break;
        case 2:
            document.remove(at, random.bounded(1, 4));
            break;
        default:
            document.insert(at, document.mid(random.bounded(document.size()), random.bounded(200)));
            break;
        }
        if (const std::optional<Entries> entries = ReadWritten(document)) {
            const std::optional<Entries> expected = ReadAsXml(document);
            QVERIFY2(expected && IsSame(*entries, *expected), document.constData());
            ++read;
        }
    }
    QVERIFY(read > 100); // most changes make another document, but not all
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestWrittenList)
#include "tst_writtenlist.moc"
