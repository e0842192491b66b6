#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "tests/entries/entrysamples.h"
#include "tests/entries/listreading.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <memory>

namespace {

const QString kName = QStringLiteral("ConnectionsModel");
const QString kNone = QStringLiteral("(none)");

std::unique_ptr<ICfg> Node(const QString& name, View view = View::Application)
{
    return std::unique_ptr<ICfg>(CfgCenter::GetAppCfg(view)->OpenChild(name, 0));
}

/// The text stored for the model `name`, or `kNone`.
QString StoredText(const QString& name = kName, View view = View::Application)
{
    return Node(name, view)->GetString(QStringLiteral("ModelMimeData"), kNone, 0);
}

void StoreText(const QString& text, const QString& name = kName)
{
    Node(name)->SetString(QStringLiteral("ModelMimeData"), text, 0);
}

void StoreDocument(const QByteArray& document, const QString& name = kName)
{
    StoreText(QString::fromLatin1(document.toHex()), name);
}

QList<QStringList> AllFields(const ConnectionsModel& model)
{
    QList<QStringList> fields;
    for (int row = 0; row < model.rowCount(); ++row)
        fields += Fields(model.GetConnection(row));
    return fields;
}

bool IsTrace(const QList<TraceRecorder::Report>& reports, const QString& message, quint16 line)
{
    return reports.size() == 1 && reports.first().kind == ErrorHandler::Trace && reports.first().message == message &&
           reports.first().sourceFile == QLatin1String("userinterface/vexelconnectdlg/connectionsmodel") &&
           reports.first().line == line;
}

const QString kCouldNotRead =
    QStringLiteral("ConnectionsModel::GetConfiguration(): Could not read config because of empty object name.");
const QString kCouldNotWrite =
    QStringLiteral("ConnectionsModel::SetConfiguration(): Could not write config because of empty object name.");

} // namespace

/// The set of entries in the product configuration: in memory, and on disk from one run to the next.
class TestStoredSet : public QObject
{
    Q_OBJECT

private slots:
    void init() { CfgCenter::Close(); }
    void cleanup() { CfgCenter::Close(); }

    void firstStartIsEmpty();
    void constructorLoadsTheSet();
    void destructorStoresTheSet();
    void valueIsThePlainHexOfTheDocument();
    void emptyModelStoresDeclarationAndEmptyRoot();
    void onlyTheModelsNodeIsWritten();
    void modelsOfDifferentNamesKeepApart();

    void selectedAndInUseComesBackSelectedAndFree();
    void documentKeepsStatusAndSelectionAsStored();
    void loadReplacesWhatTheModelHeld();
    void loadFollowsTheObjectName();
    void charactersThatAreNoHexDigitsAreSkipped_data();
    void charactersThatAreNoHexDigitsAreSkipped();
    void malformedValues_data();
    void malformedValues();

    void withoutAnObjectNameNothingIsReadOrWritten();
    void withoutAnObjectNameAndTracesOffNothingIsSaid();

    void setSurvivesTheRun();
    void storingDoesNotSaveTheDocument();
    void hostileTextsSurviveTheRun();
};

void TestStoredSet::firstStartIsEmpty()
{
    const TraceRecorder recorder;
    const ConnectionsModel model(nullptr, kName);
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.objectName(), kName);
    // An empty value is an empty document, and that is a malformed one.
    QVERIFY(IsXmlErrorTrace(recorder.Reports(), ParserMessage(QByteArray())));
}

void TestStoredSet::constructorLoadsTheSet()
{
    StoreDocument(WriteList({SampleEntry(3), SampleEntry(1), SampleEntry(2)}));
    const ConnectionsModel model(nullptr, kName);
    QCOMPARE(AllFields(model),
             (QList<QStringList>{FreeFields(SampleEntry(3)), FreeFields(SampleEntry(1)), FreeFields(SampleEntry(2))}));
}

void TestStoredSet::destructorStoresTheSet()
{
    {
        ConnectionsModel model(nullptr, kName);
        model.AddConnection(SampleEntry(1));
        QCOMPARE(StoredText(), kNone);
    }
    QCOMPARE(StoredText().toLatin1(), WriteList({SampleEntry(1)}).toHex());
}

void TestStoredSet::valueIsThePlainHexOfTheDocument()
{
    ConnectionsModel model(nullptr, kName);
    model.AddConnection(NamedEntry(QStringLiteral(u"K\u00FCste JKLMNO")));
    model.AddConnection(SampleEntry(1));
    QVERIFY(model.SetConfiguration());

    const QByteArray document = WriteList({NamedEntry(QStringLiteral(u"K\u00FCste JKLMNO")), SampleEntry(1)});
    QString digits;
    for (const char byte : document) {
        const auto value = static_cast<unsigned char>(byte);
        digits += QStringLiteral("0123456789abcdef").at(value / 16);
        digits += QStringLiteral("0123456789abcdef").at(value % 16);
    }
    QCOMPARE(StoredText(), digits);
    QVERIFY(digits.startsWith(QStringLiteral("3c3f786d6c2076657273696f6e3d22312e3022")));
}

void TestStoredSet::emptyModelStoresDeclarationAndEmptyRoot()
{
    {
        const ConnectionsModel model(nullptr, kName);
    }
    QCOMPARE(QByteArray::fromHex(StoredText().toLatin1()),
             QByteArray("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<ConnectionEntries/>\n"));
}

void TestStoredSet::onlyTheModelsNodeIsWritten()
{
    {
        ConnectionsModel model(nullptr, kName);
        model.AddConnection(SampleEntry(1));
    }
    QCOMPARE(StoredText(kName, View::User), kNone);
    QCOMPARE(StoredText(kName, View::Shared), kNone);
    QCOMPARE(CfgCenter::GetAppCfg(View::Application)->GetString(QStringLiteral("ModelMimeData"), kNone, 0), kNone);
}

void TestStoredSet::modelsOfDifferentNamesKeepApart()
{
    const QString other = QStringLiteral("another/name");
    {
        ConnectionsModel model(nullptr, kName);
        model.AddConnection(SampleEntry(1));
        ConnectionsModel otherModel(nullptr, other);
        otherModel.AddConnection(SampleEntry(2));
    }
    const ConnectionsModel model(nullptr, kName);
    const ConnectionsModel otherModel(nullptr, other);
    QCOMPARE(AllFields(model), QList<QStringList>{FreeFields(SampleEntry(1))});
    QCOMPARE(AllFields(otherModel), QList<QStringList>{FreeFields(SampleEntry(2))});
}

void TestStoredSet::selectedAndInUseComesBackSelectedAndFree()
{
    {
        ConnectionsModel model(nullptr, kName);
        Connection entry;
        entry.Selected = true;
        entry.ConnectionStatus = 1;
        model.AddConnection(entry);
    }
    const ConnectionsModel model(nullptr, kName);
    QCOMPARE(model.rowCount(), 1);
    QCOMPARE(model.GetConnection(0).Selected, true);
    QCOMPARE(model.GetConnection(0).ConnectionStatus, 0);
    QCOMPARE(model.CountSelectedFree(), 1);
    QCOMPARE(model.CountInUse(), 0);
}

void TestStoredSet::documentKeepsStatusAndSelectionAsStored()
{
    ConnectionsModel model(nullptr, kName);
    model.AddConnection(SampleEntry(1));
    QVERIFY(model.SetConfiguration());
    const Reading reading = ReadList(QByteArray::fromHex(StoredText().toLatin1()));
    QCOMPARE(reading.entries.size(), std::size_t{1});
    QCOMPARE(Fields(reading.entries[0]), Fields(SampleEntry(1)));
}

void TestStoredSet::loadReplacesWhatTheModelHeld()
{
    ConnectionsModel model(nullptr, kName);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.AddConnection(SampleEntry(1));
    model.AddConnection(SampleEntry(2));
    StoreDocument(WriteList({SampleEntry(3)}));
    const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    const QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QVERIFY(model.GetConfiguration());
    QCOMPARE(removed.size(), 1);
    QCOMPARE(inserted.size(), 1);
    QCOMPARE(AllFields(model), QList<QStringList>{FreeFields(SampleEntry(3))});
    QVERIFY(model.GetConfiguration());
    QCOMPARE(AllFields(model), QList<QStringList>{FreeFields(SampleEntry(3))});
}

void TestStoredSet::loadFollowsTheObjectName()
{
    const QString other = QStringLiteral("other");
    StoreDocument(WriteList({SampleEntry(1)}));
    StoreDocument(WriteList({SampleEntry(2)}), other);
    ConnectionsModel model(nullptr, kName);
    model.setObjectName(other);
    QVERIFY(model.GetConfiguration());
    QCOMPARE(AllFields(model), QList<QStringList>{FreeFields(SampleEntry(2))});
}

void TestStoredSet::charactersThatAreNoHexDigitsAreSkipped_data()
{
    QTest::addColumn<QString>("between");
    QTest::newRow("nothing") << QString();
    QTest::newRow("blank") << QStringLiteral(" ");
    QTest::newRow("line ends") << QStringLiteral("\r\n");
    QTest::newRow("punctuation") << QStringLiteral(":-,;/%\"");
    QTest::newRow("letters behind f") << QStringLiteral("gGxXzZ");
    QTest::newRow("Latin-1") << QStringLiteral(u"\u00E4\u00FF");
    QTest::newRow("beyond Latin-1") << QStringLiteral(u"\u0141\uFF11\u0661\U0001F4E1");
}

void TestStoredSet::charactersThatAreNoHexDigitsAreSkipped()
{
    QFETCH(QString, between);
    const QString hex = QString::fromLatin1(WriteList({SampleEntry(1)}).toHex());
    for (const QString& digits : {hex, hex.toUpper()}) {
        QString text = between;
        for (const QChar digit : digits)
            text += digit + between;
        StoreText(text);
        const TraceRecorder recorder;
        const ConnectionsModel model(nullptr, kName);
        QVERIFY(recorder.Reports().isEmpty());
        QCOMPARE(AllFields(model), QList<QStringList>{FreeFields(SampleEntry(1))});
    }
}

void TestStoredSet::malformedValues_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("rows");
    const QByteArray document = WriteList({SampleEntry(1), SampleEntry(2), SampleEntry(3)});
    const auto hexOf = [](const QByteArray& bytes) {
        return QString::fromLatin1(bytes.toHex());
    };
    QTest::newRow("empty") << QStringLiteral("") << 0;
    QTest::newRow("no digits") << QStringLiteral("Lorry! Hoyt!") << 0;
    QTest::newRow("the document itself, not its hex") << QString::fromLatin1(document) << 0;
    QTest::newRow("hex of no document") << hexOf("Hello") << 0;
    QTest::newRow("cut off") << hexOf(document.left(document.lastIndexOf("<LinkSpeed>"))) << 3;
    QTest::newRow("cut off behind two entries") << hexOf(document.left(document.lastIndexOf("<Connection>"))) << 2;
    QTest::newRow("half a digit pair lost")
        << hexOf(document).remove(hexOf("<ConnectionEntries>").size() + hexOf("<?xml").size(), 1) << 0;
}

void TestStoredSet::malformedValues()
{
    QFETCH(QString, text);
    QFETCH(int, rows);
    StoreText(text);
    ConnectionsModel model(nullptr, QStringLiteral("another"));
    model.AddConnection(SampleEntry(9));
    model.setObjectName(kName);
    const TraceRecorder recorder;
    QVERIFY(model.GetConfiguration());
    QCOMPARE(recorder.Reports().size(), 1);
    QCOMPARE(recorder.Reports().first().line, quint16{612});
    QCOMPARE(model.rowCount(), rows);
    for (int row = 0; row < std::min(rows, 2); ++row)
        QCOMPARE(Fields(model.GetConnection(row)), FreeFields(SampleEntry(row + 1)));
}

void TestStoredSet::withoutAnObjectNameNothingIsReadOrWritten()
{
    StoreDocument(WriteList({SampleEntry(1)}), QString());
    StoreDocument(WriteList({SampleEntry(1)}));
    const QString text = StoredText();
    {
        TraceRecorder recorder;
        auto model = std::make_unique<ConnectionsModel>(nullptr, QString());
        QVERIFY2(IsTrace(recorder.Reports(), kCouldNotRead, 673), recorder.Text().constData());
        QCOMPARE(model->rowCount(), 0);
        model->AddConnection(SampleEntry(2));

        recorder.Clear();
        QVERIFY(!model->GetConfiguration());
        QVERIFY2(IsTrace(recorder.Reports(), kCouldNotRead, 673), recorder.Text().constData());
        QCOMPARE(AllFields(*model), QList<QStringList>{Fields(SampleEntry(2))});

        recorder.Clear();
        QVERIFY(!model->SetConfiguration());
        QVERIFY2(IsTrace(recorder.Reports(), kCouldNotWrite, 694), recorder.Text().constData());

        recorder.Clear();
        model.reset();
        QVERIFY2(IsTrace(recorder.Reports(), kCouldNotWrite, 694), recorder.Text().constData());
    }
    QCOMPARE(StoredText(QString()), text);
    QCOMPARE(StoredText(), text);
    QCOMPARE(CfgCenter::GetAppCfg(View::Application)->GetString(QStringLiteral("ModelMimeData"), kNone, 0), kNone);
}

void TestStoredSet::withoutAnObjectNameAndTracesOffNothingIsSaid()
{
    const TraceRecorder recorder(~static_cast<unsigned>(ErrorHandler::Trace));
    {
        ConnectionsModel model(nullptr, QString());
        QVERIFY(!model.GetConfiguration());
        QVERIFY(!model.SetConfiguration());
        ConnectionsModel empty(nullptr, kName);
    }
    QVERIFY(recorder.Reports().isEmpty());
}

void TestStoredSet::setSurvivesTheRun()
{
    const QTemporaryDir store;
    QVERIFY(CfgCenter::Open(store.path()));
    {
        ConnectionsModel model(nullptr, kName);
        model.AddConnection(SampleEntry(1));
        model.AddConnection(SampleEntry(2));
        QVERIFY(model.SetConfiguration());
        QVERIFY(CfgCenter::SaveDocument());
    }
    CfgCenter::Close();
    QCOMPARE(StoredText(), kNone);

    QVERIFY(CfgCenter::Open(store.path()));
    QCOMPARE(StoredText().toLatin1(), WriteList({SampleEntry(1), SampleEntry(2)}).toHex());
    const ConnectionsModel model(nullptr, kName);
    QCOMPARE(AllFields(model), (QList<QStringList>{FreeFields(SampleEntry(1)), FreeFields(SampleEntry(2))}));
}

void TestStoredSet::storingDoesNotSaveTheDocument()
{
    const QTemporaryDir store;
    QVERIFY(CfgCenter::Open(store.path()));
    {
        ConnectionsModel model(nullptr, kName);
        model.AddConnection(SampleEntry(1));
        QVERIFY(model.SetConfiguration());
    }
    QVERIFY(CfgCenter::Open(store.path()));
    QCOMPARE(StoredText(), kNone);
}

void TestStoredSet::hostileTextsSurviveTheRun()
{
    const QString controls = QStringLiteral("a\x01") + QChar(0) + QStringLiteral("b\x1F") + QChar(0xFFFE) +
                             QChar(0xD83D) + QStringLiteral("c\r\n\t");
    const QString megabyte = QStringLiteral(u"<&>\"';%#=[]\\ \U0001F4E1\n").repeated(60'000);
    QVERIFY(megabyte.toUtf8().size() > 1024 * 1024);
    const QStringList names{QStringLiteral("<Connection>&amp;</Connection>"), QStringLiteral("a]]>b]]]>"), controls,
                            QStringLiteral(u"\U0001F4E1\u05D0"), megabyte};
    const QStringList readBack{names.at(0), names.at(1), QStringLiteral("abc\r\n\t"), names.at(3), megabyte};

    const QTemporaryDir store;
    QVERIFY(CfgCenter::Open(store.path()));
    {
        ConnectionsModel model(nullptr, kName);
        for (int number = 0; number < names.size(); ++number) {
            Connection entry = SampleEntry(number);
            entry.ConnectionName = names.at(number);
            model.AddConnection(entry);
            model.AddConnection(SampleEntry(number));
        }
    }
    QVERIFY(CfgCenter::SaveDocument());
    CfgCenter::Close();
    QVERIFY(CfgCenter::Open(store.path()));

    const TraceRecorder recorder;
    const ConnectionsModel model(nullptr, kName);
    QVERIFY2(recorder.Reports().isEmpty(), recorder.Text().constData());
    QCOMPARE(model.rowCount(), 2 * static_cast<int>(names.size()));
    for (int number = 0; number < names.size(); ++number) {
        Connection expected = SampleEntry(number);
        expected.ConnectionName = readBack.at(number);
        QVERIFY(Fields(model.GetConnection(2 * number)) == FreeFields(expected));
        QCOMPARE(Fields(model.GetConnection(2 * number + 1)), FreeFields(SampleEntry(number)));
    }
}

VEXEL_TEST(QTEST_MAIN, TestStoredSet)

#include "tst_storedset.moc"
