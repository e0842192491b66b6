// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/entries/entrysamples.h"
#include "tests/entries/listreading.h"
#include "tests/entries/watchedmodel.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

#include <memory>

/// Entries as documents: drag and drop, and the whole set.
class TestConnectionsModelDocuments : public QObject
{
    Q_OBJECT

private slots:
    void mimeTypeIsPlainText();
    void mimeDataHasEachRowOnce();
    void mimeDataOfNoIndexIsEmptyRoot();
    void mimeDataSkipsInvalidIndexes();
    void mimeDataBelongsToCaller();
    void dropAppendsEntriesUnchanged();
    void dropIgnoresPositionAndAction_data();
    void dropIgnoresPositionAndAction();
    void dropWithoutEntriesIsRefused_data();
    void dropWithoutEntriesIsRefused();
    void dropKeepsEntriesBeforeXmlError();
    void dropOfOwnRowsAppendsCopies();
    void dropCountsTheRowsOfTheList();
    void dropCountsTheSizeOfTheList();
    void longestListIsExportedAndReadAgain();
    void longerListIsRefusedButRestored();
    void toByteArrayHasAllRowsInOrder();
    void fromByteArrayReplacesAndResetsStatus();
    void fromByteArrayKeepsEntriesBeforeXmlError();
};

void TestConnectionsModelDocuments::mimeTypeIsPlainText()
{
    const WatchedModel model;
    QCOMPARE(model.mimeTypes(), Texts({"text/plain"}));
}

void TestConnectionsModelDocuments::mimeDataHasEachRowOnce()
{
    WatchedModel model;
    for (const int number : {0, 1, 2})
        model.AddConnection(SampleEntry(number));
    const std::unique_ptr<QMimeData> data(model.mimeData({model.index(2, 3), model.index(0, 1), model.index(2, 5)}));
    QCOMPARE(data->data(QStringLiteral("text/plain")), WriteList({SampleEntry(2), SampleEntry(0)}));
}

void TestConnectionsModelDocuments::mimeDataOfNoIndexIsEmptyRoot()
{
    WatchedModel model;
    model.AddNamed({"a"});
    const std::unique_ptr<QMimeData> data(model.mimeData({}));
    QCOMPARE(data->data(QStringLiteral("text/plain")),
             QByteArray("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<ConnectionEntries/>\n"));
}

void TestConnectionsModelDocuments::mimeDataSkipsInvalidIndexes()
{
    WatchedModel model;
    model.AddConnection(SampleEntry(1));
    WatchedModel other;
    other.AddConnection(SampleEntry(2));
    const std::unique_ptr<QMimeData> data(
        model.mimeData({QModelIndex(), model.createIndex(7, 0), other.index(0, 0), model.index(0, 0)}));
    QCOMPARE(data->data(QStringLiteral("text/plain")), WriteList({SampleEntry(1)}));
}

void TestConnectionsModelDocuments::mimeDataBelongsToCaller()
{
    WatchedModel model;
    model.AddNamed({"a"});
    const std::unique_ptr<QMimeData> one(model.mimeData({model.index(0, 0)}));
    const std::unique_ptr<QMimeData> other(model.mimeData({model.index(0, 0)}));
    QVERIFY(one != other);
    QCOMPARE(one->metaObject(), &QMimeData::staticMetaObject);
    QCOMPARE(one->parent(), nullptr);
    QCOMPARE(one->formats(), Texts({"text/plain"}));
}

void TestConnectionsModelDocuments::dropAppendsEntriesUnchanged()
{
    WatchedModel model;
    model.AddNamed({"a"});
    const QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QVERIFY(Drop(model, PlainText(WriteList({SampleEntry(5), SampleEntry(3)})).get()));
    QCOMPARE(inserted.size(), 2);
    QCOMPARE(inserted.at(0).at(1).toInt(), 1);
    QCOMPARE(inserted.at(1).at(1).toInt(), 2);
    QCOMPARE(model.rowCount(), 3);
    QCOMPARE(Fields(model.GetConnection(1)), Fields(SampleEntry(5)));
    QCOMPARE(Fields(model.GetConnection(2)), Fields(SampleEntry(3)));
}

void TestConnectionsModelDocuments::dropIgnoresPositionAndAction_data()
{
    QTest::addColumn<int>("action");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("column");
    QTest::addColumn<bool>("onFirstRow");
    QTest::newRow("move") << int{Qt::MoveAction} << -1 << -1 << false;
    QTest::newRow("between rows") << int{Qt::CopyAction} << 0 << 0 << false;
    QTest::newRow("on a row") << int{Qt::CopyAction} << -1 << -1 << true;
}

void TestConnectionsModelDocuments::dropIgnoresPositionAndAction()
{
    QFETCH(int, action);
    QFETCH(int, row);
    QFETCH(int, column);
    QFETCH(bool, onFirstRow);
    WatchedModel model;
    model.AddNamed({"a", "b"});
    const auto data = PlainText(WriteList({NamedEntry(QStringLiteral("c"))}));
    QVERIFY(model.dropMimeData(data.get(), static_cast<Qt::DropAction>(action), row, column,
                               onFirstRow ? model.index(0, 1) : QModelIndex()));
    QCOMPARE(model.Names(), Texts({"a", "b", "c"}));
}

void TestConnectionsModelDocuments::dropWithoutEntriesIsRefused_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("traces");
    const QByteArray document = WriteList({SampleEntry(1)});
    QTest::newRow("no format") << QString() << QByteArray() << 1;
    QTest::newRow("another format") << QStringLiteral("application/xml") << document << 1;
    QTest::newRow("a list of files") << QStringLiteral("text/uri-list") << QByteArray("file:///a.xml") << 1;
    QTest::newRow("empty text") << QStringLiteral("text/plain") << QByteArray() << 1;
    QTest::newRow("other text") << QStringLiteral("text/plain") << QByteArray("Hello") << 1;
    QTest::newRow("no entries") << QStringLiteral("text/plain") << WriteList({}) << 0;
}

void TestConnectionsModelDocuments::dropWithoutEntriesIsRefused()
{
    QFETCH(QString, format);
    QFETCH(QByteArray, bytes);
    QFETCH(int, traces);
    WatchedModel model;
    model.AddNamed({"a"});
    QMimeData data;
    if (!format.isEmpty())
        data.setData(format, bytes);
    const TraceRecorder recorder;
    const QSignalSpy about(&model, &QAbstractItemModel::rowsAboutToBeInserted);
    QVERIFY(!Drop(model, &data));
    QCOMPARE(about.size(), 0);
    QCOMPARE(recorder.Reports().size(), traces);
    QVERIFY(!Drop(model, nullptr));
    QCOMPARE(model.Names(), Texts({"a"}));
}

void TestConnectionsModelDocuments::dropKeepsEntriesBeforeXmlError()
{
    WatchedModel model;
    model.AddNamed({"a"});
    QByteArray document = WriteList({SampleEntry(1), SampleEntry(2)});
    document.replace("</ConnectionEntries>", "</Other>");
    const TraceRecorder recorder;
    QVERIFY(!Drop(model, PlainText(document).get()));
    QVERIFY(IsXmlErrorTrace(recorder.Reports(), ParserMessage(document)));
    QCOMPARE(model.rowCount(), 3);
    QCOMPARE(Fields(model.GetConnection(1)), Fields(SampleEntry(1)));
    QCOMPARE(Fields(model.GetConnection(2)), Fields(SampleEntry(2)));
}

void TestConnectionsModelDocuments::dropOfOwnRowsAppendsCopies()
{
    WatchedModel model;
    model.AddConnection(SampleEntry(0));
    model.AddConnection(SampleEntry(1));
    const std::unique_ptr<QMimeData> dragged(model.mimeData({model.index(0, 0), model.index(1, 0)}));
    QVERIFY(model.canDropMimeData(dragged.get(), Qt::CopyAction, -1, -1, QModelIndex()));
    QVERIFY(Drop(model, dragged.get()));
    QCOMPARE(model.rowCount(), 4);
    QCOMPARE(Fields(model.GetConnection(2)), Fields(SampleEntry(0)));
    QCOMPARE(Fields(model.GetConnection(3)), Fields(SampleEntry(1)));
}

void TestConnectionsModelDocuments::dropCountsTheRowsOfTheList()
{
    // Without a model tester, which takes long for so many rows.
    ConnectionsModel model(nullptr, QString());
    QVERIFY(model.FromByteArray(DefaultEntries(ConnectionList::kMaximumEntries - 2)));
    QVERIFY(!model.IsFull());
    const TraceRecorder recorder;
    QVERIFY(Drop(model, PlainText(DefaultEntries(1)).get()));
    QVERIFY(recorder.Reports().isEmpty());
    QVERIFY(!Drop(model, PlainText(DefaultEntries(2)).get()));
    QVERIFY(IsXmlErrorTrace(recorder.Reports(), QStringLiteral("XML parsing error occurred in row 1 column 45. "
                                                               "\"The list would have too many entries.\"")));
    // As at any XML error, what comes before it is kept.
    QCOMPARE(model.rowCount(), ConnectionList::kMaximumEntries);
    QVERIFY(model.IsFull());
    QVERIFY(!Drop(model, PlainText(DefaultEntries(1)).get()));
    QCOMPARE(model.rowCount(), ConnectionList::kMaximumEntries);
}

void TestConnectionsModelDocuments::dropCountsTheSizeOfTheList()
{
    ConnectionsModel model(nullptr, QString());
    Connection large;
    large.ConnectionName = QString(ConnectionList::kMaximumSize - 2000, u'a');
    model.AddConnection(large);
    const TraceRecorder recorder;
    QVERIFY(Drop(model, PlainText(DefaultEntries(1)).get()));
    QVERIFY(!Drop(model, PlainText(DefaultEntries(10)).get()));
    QCOMPARE(recorder.Reports().size(), 1);
    QVERIFY(recorder.Reports().first().message.endsWith(QLatin1String("\"The list would be too large.\"")));
    QVERIFY(model.ToByteArray().size() <= ConnectionList::kMaximumSize);
    QVERIFY(model.ToByteArray().size() > ConnectionList::kMaximumSize - 1000);
}

void TestConnectionsModelDocuments::longestListIsExportedAndReadAgain()
{
    ConnectionsModel model(nullptr, QString());
    QVERIFY(model.FromByteArray(DefaultEntries(ConnectionList::kMaximumEntries)));
    const QByteArray exported = model.ToByteArray();
    QVERIFY(exported.size() <= ConnectionList::kMaximumSize);
    QVERIFY(model.FromByteArray(exported));
    QCOMPARE(model.rowCount(), ConnectionList::kMaximumEntries);
}

void TestConnectionsModelDocuments::longerListIsRefusedButRestored()
{
    ConnectionsModel model(nullptr, QString());
    const QByteArray document = DefaultEntries(ConnectionList::kMaximumEntries + 1);
    const TraceRecorder recorder;
    QVERIFY(!model.FromByteArray(document));
    QCOMPARE(recorder.Reports().size(), 1);
    QCOMPARE(model.rowCount(), ConnectionList::kMaximumEntries);
    QVERIFY(model.RestoreByteArray(document));
    QCOMPARE(recorder.Reports().size(), 1);
    QCOMPARE(model.rowCount(), ConnectionList::kMaximumEntries + 1);
    QVERIFY(model.IsFull());
}

void TestConnectionsModelDocuments::toByteArrayHasAllRowsInOrder()
{
    WatchedModel model;
    QCOMPARE(model.ToByteArray(), WriteList({}));
    for (const int number : {2, 0, 1, 0})
        model.AddConnection(SampleEntry(number));
    QCOMPARE(model.ToByteArray(), WriteList({SampleEntry(2), SampleEntry(0), SampleEntry(1), SampleEntry(0)}));
}

void TestConnectionsModelDocuments::fromByteArrayReplacesAndResetsStatus()
{
    WatchedModel model;
    model.AddNamed({"a", "b"});
    const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    const QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QVERIFY(model.FromByteArray(WriteList({SampleEntry(0), SampleEntry(1), SampleEntry(2)})));
    QCOMPARE(removed.size(), 1);
    QCOMPARE(removed.at(0).at(1).toInt(), 0);
    QCOMPARE(removed.at(0).at(2).toInt(), 1);
    QCOMPARE(inserted.size(), 3);
    QCOMPARE(ChangedCells(changed), (QList<std::pair<int, int>>{{0, 2}, {1, 2}, {2, 2}}));
    QCOMPARE(model.rowCount(), 3);
    for (const int number : {0, 1, 2})
        QCOMPARE(Fields(model.GetConnection(number)), FreeFields(SampleEntry(number)));
    QVERIFY(!model.FromByteArray(WriteList({})));
    QCOMPARE(model.rowCount(), 0);
}

void TestConnectionsModelDocuments::fromByteArrayKeepsEntriesBeforeXmlError()
{
    WatchedModel model;
    model.AddNamed({"a", "b"});
    QByteArray document = WriteList({SampleEntry(0), SampleEntry(1), SampleEntry(2)});
    document.truncate(document.lastIndexOf("<DeviceType>"));
    const TraceRecorder recorder;
    QVERIFY(!model.FromByteArray(document));
    QVERIFY(IsXmlErrorTrace(recorder.Reports(), ParserMessage(document)));
    QCOMPARE(model.rowCount(), 3);
    QCOMPARE(Fields(model.GetConnection(0)), FreeFields(SampleEntry(0)));
    QCOMPARE(Fields(model.GetConnection(1)), FreeFields(SampleEntry(1)));
    QCOMPARE(Fields(model.GetConnection(2)), Fields(NamedEntry(SampleEntry(2).ConnectionName)));
}

VEXEL_TEST(QTEST_MAIN, TestConnectionsModelDocuments)

#include "tst_connectionsmodeldocuments.moc"
