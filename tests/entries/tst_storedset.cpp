// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/entries/entrysamples.h"
#include "tests/entries/listreading.h"
#include "tests/support/confignodes.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <memory>

#include <functional>
#include <vector>

namespace {

const QString kName = QStringLiteral("ConnectionsModel");
const QString kNone = QStringLiteral("(none)");

/// The stored text of the model `name`, or `kNone`.
QString StoredText(const QString& name = kName, View view = View::Application)
{
    return ConfigNodes::StoredSet(kNone, name, view);
}

void StoreText(const QString& text)
{
    ConfigNodes::Child(kName)->SetString(QStringLiteral("ModelMimeData"), text, 0);
}

QList<QStringList> AllFields(const ConnectionsModel& model)
{
    QList<QStringList> fields;
    for (int row = 0; row < model.rowCount(); ++row)
        fields += Fields(model.GetConnection(row));
    return fields;
}

const QString kCouldNotRead =
    QStringLiteral("ConnectionsModel::GetConfiguration(): Could not read config because of empty object name.");
const QString kCouldNotWrite =
    QStringLiteral("ConnectionsModel::SetConfiguration(): Could not write config because of empty object name.");

} // namespace

/// The set of entries that is stored in the product configuration.
class TestStoredSet : public QObject
{
    Q_OBJECT

private slots:
    void init() { CfgCenter::Close(); }
    void cleanup() { CfgCenter::Close(); }

    void firstStartIsEmpty();
    void constructorLoadsSetWithStatusFree();
    void longSetIsNotCutOff();
    void destructorStoresSet();
    void storedValueIsHexOfDocument();
    void emptyModelStoresEmptyDocument();
    void onlyNodeOfModelIsWritten();
    void modelsWithDifferentNamesAreSeparate();

    void loadReplacesEntries();
    void loadUsesCurrentObjectName();
    void otherCharactersThanHexDigitsAreSkipped_data();
    void otherCharactersThanHexDigitsAreSkipped();
    void malformedValueLoadsEntriesBeforeError_data();
    void malformedValueLoadsEntriesBeforeError();

    void modelWithoutNameIsNotStored();
    void noTraceWhileTracesAreOff();

    void storingDoesNotSaveDocument();
    void changesAfterStoringAreStored();
    void whatSomethingElseStoredIsReplaced();
    void unusualTextsAreStoredOnDisk();
};

void TestStoredSet::firstStartIsEmpty()
{
    const TraceRecorder recorder;
    const ConnectionsModel model(nullptr, kName);
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.objectName(), kName);
    // An empty document is an XML error.
    QVERIFY(IsXmlErrorTrace(recorder.Reports(), ParserMessage(QByteArray())));
}

void TestStoredSet::constructorLoadsSetWithStatusFree()
{
    ConfigNodes::StoreSet(WriteList({SampleEntry(3), SampleEntry(1), SampleEntry(2)}));
    const ConnectionsModel model(nullptr, kName);
    QCOMPARE(AllFields(model),
             (QList<QStringList>{FreeFields(SampleEntry(3)), FreeFields(SampleEntry(1)), FreeFields(SampleEntry(2))}));
    QCOMPARE(model.property("entriesLoaded"), 3);
    QCOMPARE(model.property("isStoredListMalformed"), false);
}

void TestStoredSet::longSetIsNotCutOff()
{
    ConfigNodes::StoreSet(DefaultEntries(ConnectionList::kMaximumEntries + 1));
    const TraceRecorder recorder;
    const ConnectionsModel model(nullptr, kName);
    QCOMPARE(model.rowCount(), ConnectionList::kMaximumEntries + 1);
    QVERIFY(recorder.Reports().isEmpty());
}

void TestStoredSet::destructorStoresSet()
{
    {
        ConnectionsModel model(nullptr, kName);
        model.AddConnection(SampleEntry(1));
        QCOMPARE(StoredText(), kNone);
    }
    QCOMPARE(StoredText().toLatin1(), WriteList({SampleEntry(1)}).toHex());
}

void TestStoredSet::storedValueIsHexOfDocument()
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

void TestStoredSet::emptyModelStoresEmptyDocument()
{
    {
        const ConnectionsModel model(nullptr, kName);
    }
    QCOMPARE(QByteArray::fromHex(StoredText().toLatin1()),
             QByteArray("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<ConnectionEntries/>\n"));
}

void TestStoredSet::onlyNodeOfModelIsWritten()
{
    {
        ConnectionsModel model(nullptr, kName);
        model.AddConnection(SampleEntry(1));
    }
    QCOMPARE(StoredText(kName, View::User), kNone);
    QCOMPARE(StoredText(kName, View::Shared), kNone);
    QCOMPARE(CfgCenter::GetAppCfg(View::Application)->GetString(QStringLiteral("ModelMimeData"), kNone, 0), kNone);
}

void TestStoredSet::modelsWithDifferentNamesAreSeparate()
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

void TestStoredSet::loadReplacesEntries()
{
    ConnectionsModel model(nullptr, kName);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.AddConnection(SampleEntry(1));
    model.AddConnection(SampleEntry(2));
    ConfigNodes::StoreSet(WriteList({SampleEntry(3)}));
    const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    const QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QVERIFY(model.GetConfiguration());
    QCOMPARE(removed.size(), 1);
    QCOMPARE(inserted.size(), 1);
    QCOMPARE(AllFields(model), QList<QStringList>{FreeFields(SampleEntry(3))});
    QVERIFY(model.GetConfiguration());
    QCOMPARE(AllFields(model), QList<QStringList>{FreeFields(SampleEntry(3))});
}

void TestStoredSet::loadUsesCurrentObjectName()
{
    const QString other = QStringLiteral("other");
    ConfigNodes::StoreSet(WriteList({SampleEntry(1)}));
    ConfigNodes::StoreSet(WriteList({SampleEntry(2)}), other);
    ConnectionsModel model(nullptr, kName);
    model.setObjectName(other);
    QVERIFY(model.GetConfiguration());
    QCOMPARE(AllFields(model), QList<QStringList>{FreeFields(SampleEntry(2))});
}

void TestStoredSet::otherCharactersThanHexDigitsAreSkipped_data()
{
    QTest::addColumn<QString>("between");
    QTest::newRow("punctuation") << QStringLiteral(":-,;/%\"");
    QTest::newRow("letters after f") << QStringLiteral("gGxXzZ");
    QTest::newRow("small letters after f") << QStringLiteral("gxyz");
    QTest::newRow("beyond Latin-1") << QStringLiteral(u"\u0141\uFF11\u0661\U0001F4E1");
}

void TestStoredSet::otherCharactersThanHexDigitsAreSkipped()
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

void TestStoredSet::malformedValueLoadsEntriesBeforeError_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("rows");
    const QByteArray document = WriteList({SampleEntry(1), SampleEntry(2), SampleEntry(3)});
    const auto hexOf = [](const QByteArray& bytes) {
        return QString::fromLatin1(bytes.toHex());
    };
    QTest::newRow("empty") << QStringLiteral("") << 0;
    QTest::newRow("no hex digits") << QStringLiteral("Lorry! Hoyt!") << 0;
    QTest::newRow("the document itself, not its hex") << QString::fromLatin1(document) << 0;
    QTest::newRow("hex of other text") << hexOf("Hello") << 0;
    QTest::newRow("truncated in the third entry") << hexOf(document.left(document.lastIndexOf("<LinkSpeed>"))) << 3;
    QTest::newRow("truncated after two entries") << hexOf(document.left(document.lastIndexOf("<Connection>"))) << 2;
    QTest::newRow("one hex digit lost") << hexOf(document).remove(
                                               hexOf("<ConnectionEntries>").size() + hexOf("<?xml").size(), 1)
                                        << 0;
    // An odd number of digits: the first one stands alone.
    for (int more : {1, 3, 5})
        QTest::addRow("%d hex digits too many", more) << hexOf(document) + QString(more, QLatin1Char('2')) << 0;
}

void TestStoredSet::malformedValueLoadsEntriesBeforeError()
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
    QCOMPARE(model.property("entriesLoaded"), rows);
    QCOMPARE(model.property("isStoredListMalformed"), !text.isEmpty());
    for (int row = 0; row < std::min(rows, 2); ++row)
        QCOMPARE(Fields(model.GetConnection(row)), FreeFields(SampleEntry(row + 1)));
}

void TestStoredSet::modelWithoutNameIsNotStored()
{
    ConfigNodes::StoreSet(WriteList({SampleEntry(1)}), QString());
    ConfigNodes::StoreSet(WriteList({SampleEntry(1)}));
    const QString text = StoredText();
    {
        TraceRecorder recorder;
        auto model = std::make_unique<ConnectionsModel>(nullptr, QString());
        QVERIFY2(IsModelTrace(recorder.Reports(), kCouldNotRead, 673), recorder.Text().constData());
        QCOMPARE(model->rowCount(), 0);
        model->AddConnection(SampleEntry(2));

        recorder.Clear();
        QVERIFY(!model->GetConfiguration());
        QVERIFY2(IsModelTrace(recorder.Reports(), kCouldNotRead, 673), recorder.Text().constData());
        QCOMPARE(AllFields(*model), QList<QStringList>{Fields(SampleEntry(2))});

        recorder.Clear();
        QVERIFY(!model->SetConfiguration());
        QVERIFY2(IsModelTrace(recorder.Reports(), kCouldNotWrite, 694), recorder.Text().constData());

        recorder.Clear();
        model.reset();
        QVERIFY2(IsModelTrace(recorder.Reports(), kCouldNotWrite, 694), recorder.Text().constData());
    }
    QCOMPARE(StoredText(QString()), text);
    QCOMPARE(StoredText(), text);
    QCOMPARE(CfgCenter::GetAppCfg(View::Application)->GetString(QStringLiteral("ModelMimeData"), kNone, 0), kNone);
}

void TestStoredSet::noTraceWhileTracesAreOff()
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

void TestStoredSet::storingDoesNotSaveDocument()
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

// A list that is stored already is not serialised again.
void TestStoredSet::changesAfterStoringAreStored()
{
    ConnectionsModel model(nullptr, kName);
    for (int i = 0; i < 3; ++i)
        model.AddConnection(SampleEntry(i));
    QVERIFY(model.SetConfiguration());
    const auto text = [&model] {
        return QString::fromLatin1(model.ToByteArray().toHex());
    };
    QCOMPARE(StoredText(), text());
    const std::vector<std::function<void()>> changes{
        [&] { model.setData(model.index(1, ConnectionsModel::ColumnSubsystem), QStringLiteral("changed")); },
        [&] { model.SetConnectionStatus(model.GetConnection(1), Connection::InUse); },
        [&] { model.ResetConnectionStatus(); },
        [&] { model.AddConnection(SampleEntry(4)); },
        [&] {
            model.RemoveEntries({0, 2});
        },
        [&] { model.removeRows(0, 1); },
        [&] { model.FromByteArray(WriteList({SampleEntry(5)})); },
        [&] { model.RestoreByteArray(WriteList({SampleEntry(6)})); },
    };
    for (const auto& change : changes) {
        const QString before = StoredText();
        change();
        QVERIFY(model.SetConfiguration());
        QVERIFY(StoredText() != before);
        QCOMPARE(StoredText(), text());
    }
}

void TestStoredSet::whatSomethingElseStoredIsReplaced()
{
    ConnectionsModel model(nullptr, kName);
    model.AddConnection(SampleEntry(1));
    QVERIFY(model.SetConfiguration());
    const QString text = StoredText();
    ConfigNodes::StoreSet(WriteList({SampleEntry(2)}));
    QVERIFY(model.SetConfiguration());
    QCOMPARE(StoredText(), text);
    // Under another name there is nothing yet.
    model.setObjectName(QStringLiteral("Other"));
    QVERIFY(model.SetConfiguration());
    QCOMPARE(ConfigNodes::StoredSet(QString(), QStringLiteral("Other")), text);
}

void TestStoredSet::unusualTextsAreStoredOnDisk()
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
