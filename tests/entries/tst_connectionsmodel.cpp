// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/entries/entrysamples.h"
#include "tests/entries/watchedmodel.h"
#include "tests/support/markingtranslator.h"
#include "tests/support/metaobject.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QAbstractItemModelTester>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QStandardItemModel>
#include <QTest>

#include <limits>

namespace {

constexpr int kColumns = 10;

/// All roles that Qt defines for models, and one application-defined role.
const QList<int> kRoles{Qt::DisplayRole,    Qt::DecorationRole,       Qt::EditRole,
                        Qt::ToolTipRole,    Qt::StatusTipRole,        Qt::WhatsThisRole,
                        Qt::FontRole,       Qt::TextAlignmentRole,    Qt::BackgroundRole,
                        Qt::ForegroundRole, Qt::CheckStateRole,       Qt::AccessibleTextRole,
                        Qt::SizeHintRole,   Qt::InitialSortOrderRole, Qt::AccessibleDescriptionRole,
                        Qt::UserRole};

const QStringList kHeaders{QStringLiteral(""),
                           QStringLiteral("Name"),
                           QStringLiteral("Status"),
                           QStringLiteral("Device Type"),
                           QStringLiteral("Connection Type"),
                           QStringLiteral("Device Address"),
                           QStringLiteral("Driver Address"),
                           QStringLiteral("Link Speed"),
                           QStringLiteral("Timeout Time"),
                           QStringLiteral("Subsystem")};

const QStringList kHelp{
    QStringLiteral(
        "Select the connections you want to establish via clicking onto the square.\n\nSelected entries show a green "
        "check indicator.\n\nConnections that have yet been established show a gray check indicator."),
    QStringLiteral("The connection name is for operator information only.\nEnter what ever you want in this field."),
    QStringLiteral("The status of the connection tells if the connection has yet been established or not."),
    QStringLiteral("A major setting of a conneciton entry is the type of hardware to which we want to connect "
                   "to.\n\nEnter the appropriate type here."),
    QStringLiteral("The connection type can be one of the following:\n\n- \"Direct Connection\" --> userinterface does "
                   "directly connect to the resource\n\n- \"Remote Connection\" --> userinterface does connect to a "
                   "driver application; driver application is connected to resource\n\n- \"MultiChannel Server\" --> "
                   "KiteControl-specific connection type (see respective manual)\n"),
    QStringLiteral("If the userinterface directly connects to the hardware resource\n(does not use a remote connection "
                   "via a driver application)\nenter the IP-address of the hardware resource here."),
    QStringLiteral("If the userinterface does not directly connect to the hardware resource\nbut connects to a driver "
                   "application (which is connected to the resource)\nenter the IP-address of the driver's host here."),
    QStringLiteral("Select the entry that describes the data link between this computer and the computer hosting the "
                   "KiteServer best.\nThe strength of the data compression between userinterface and server will be "
                   "applied according to this setting."),
    QStringLiteral("If the timeout time is set to a value greater than 0 seconds KiteControl will request user input "
                   "(mouse clicks or keyboard strokes) within the specified time.\nIf this does not happen the program "
                   "will terminate and release the directionfinder."),
    QStringLiteral("The Corvus subsystem is only used in connection with the Tally toolbar.\nEnter the subsystem to "
                   "which the Tally belongs to here.\n\nIf you have no idea about what is meant with Corvus or Tally "
                   "just leave this field empty.")};

QImage ImageOf(const QVariant& decoration)
{
    return decoration.value<QIcon>().pixmap(QSize(12, 12)).toImage();
}

QImage ResourceImage(const char* path)
{
    return QIcon(QString::fromLatin1(path)).pixmap(QSize(12, 12)).toImage();
}

} // namespace

/// Cell data, headers and flags.
class TestConnectionsModel : public QObject
{
    Q_OBJECT

private slots:
    void declaresNoSignalsSlotsOrProperties();
    void tableHasTenColumnsAndNoChildren();
    void baseClassBehaviourIsKept();

    void displayAndEditData_data();
    void displayAndEditData();
    void timeoutOfZeroOrLessShowsNoTimeout_data();
    void timeoutOfZeroOrLessShowsNoTimeout();
    void tickShowsBlankTextAndIconWhenSelected();
    void otherRolesAreEmpty();
    void invalidIndexesHaveNoData();

    void headerTexts();
    void headerIcons();
    void headerHelp();
    void verticalHeaderCountsFromZero();
    void otherHeaderRolesAreEmpty();
    void cellsShowColumnHelp();
    void textsAreTranslated();

    void flagsFollowTypeAndStatus_data();
    void flagsFollowTypeAndStatus();
    void invalidIndexesAreDisabled();
};

void TestConnectionsModel::declaresNoSignalsSlotsOrProperties()
{
    QCOMPARE(Declaration(ConnectionsModel::staticMetaObject),
             QStringList{QStringLiteral("ConnectionsModel : QAbstractTableModel")});
}

void TestConnectionsModel::tableHasTenColumnsAndNoChildren()
{
    QObject parent;
    auto* const model = new ConnectionsModel(&parent, QString());
    const QAbstractItemModelTester tester(model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(model->parent(), &parent);
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(model->columnCount(), kColumns);
    model->AddConnection(Connection());
    model->AddConnection(Connection());
    QCOMPARE(model->rowCount(), 2);
    QCOMPARE(model->rowCount(model->index(0, 0)), 0);
    QCOMPARE(model->rowCount(model->index(1, 9)), 0);
    QCOMPARE(model->columnCount(model->index(0, 0)), kColumns);
    QCOMPARE(model->columnCount(model->index(1, 9)), kColumns);
}

void TestConnectionsModel::baseClassBehaviourIsKept()
{
    WatchedModel model;
    model.AddNamed({"b", "a"});
    QVERIFY(!model.insertRows(0, 1));
    QVERIFY(!model.insertColumns(0, 1));
    QCOMPARE(model.rowCount(), 2);
    QCOMPARE(model.supportedDropActions(), Qt::CopyAction);
    QCOMPARE(model.index(1, 3).row(), 1);
    QCOMPARE(model.index(1, 3).column(), 3);
    QVERIFY(!model.index(2, 0).isValid());
    QVERIFY(!model.index(0, 10).isValid());
    QVERIFY(!model.index(1, 3).parent().isValid());
    model.sort(1);
    QCOMPARE(model.GetConnection(0).ConnectionName, QStringLiteral("b"));
}

void TestConnectionsModel::displayAndEditData_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QVariant>("display");
    QTest::addColumn<QVariant>("edit");
    QTest::newRow("Selected") << 0 << QVariant(QStringLiteral(" ")) << QVariant(true);
    QTest::newRow("ConnectionName") << 1 << QVariant(QStringLiteral("Mast 1")) << QVariant(QStringLiteral("Mast 1"));
    QTest::newRow("ConnectionStatus") << 2 << QVariant(QStringLiteral("In Use")) << QVariant(1);
    QTest::newRow("DeviceType") << 3 << QVariant(QStringLiteral("Kite Alpha + Finch")) << QVariant(12);
    QTest::newRow("ConnectionType") << 4 << QVariant(QStringLiteral("Remote Connection")) << QVariant(1);
    QTest::newRow("DeviceAddress") << 5 << QVariant(QStringLiteral("10.0.0.5")) << QVariant(QStringLiteral("10.0.0.5"));
    QTest::newRow("DriverAddress") << 6 << QVariant(QStringLiteral("pc7")) << QVariant(QStringLiteral("pc7"));
    QTest::newRow("LinkSpeed") << 7 << QVariant(QStringLiteral("Radio Link")) << QVariant(6);
    QTest::newRow("TimeoutSeconds") << 8 << QVariant(30) << QVariant(30);
    QTest::newRow("Subsystem") << 9 << QVariant(QStringLiteral("Corvus 2")) << QVariant(QStringLiteral("Corvus 2"));
}

void TestConnectionsModel::displayAndEditData()
{
    QFETCH(int, column);
    QFETCH(QVariant, display);
    QFETCH(QVariant, edit);
    WatchedModel model;
    model.AddConnection(Connection());
    model.AddConnection(MastEntry());
    const QModelIndex index = model.index(1, column);
    QCOMPARE(model.data(index, Qt::DisplayRole), display);
    QCOMPARE(model.data(index), display);
    QCOMPARE(model.data(index, Qt::DisplayRole).typeId(), display.typeId());
    QCOMPARE(model.data(index, Qt::EditRole), edit);
    QCOMPARE(model.data(index, Qt::EditRole).typeId(), edit.typeId());
}

void TestConnectionsModel::timeoutOfZeroOrLessShowsNoTimeout_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QVariant>("display");
    QTest::newRow("0") << 0 << QVariant(QStringLiteral("No Timeout"));
    QTest::newRow("lowest") << std::numeric_limits<int>::min() << QVariant(QStringLiteral("No Timeout"));
    QTest::newRow("1") << 1 << QVariant(1);
    QTest::newRow("highest") << std::numeric_limits<int>::max() << QVariant(std::numeric_limits<int>::max());
}

void TestConnectionsModel::timeoutOfZeroOrLessShowsNoTimeout()
{
    QFETCH(int, seconds);
    QFETCH(QVariant, display);
    Connection entry;
    entry.TimeoutSeconds = seconds;
    WatchedModel model;
    model.AddConnection(entry);
    QCOMPARE(model.index(0, 8).data(), display);
    QCOMPARE(model.index(0, 8).data(Qt::EditRole), QVariant(seconds));
}

void TestConnectionsModel::tickShowsBlankTextAndIconWhenSelected()
{
    Connection entry;
    WatchedModel model;
    model.AddConnection(entry);
    entry.Selected = true;
    model.AddConnection(entry);

    QCOMPARE(model.index(0, 0).data(), QVariant(QStringLiteral("")));
    QCOMPARE(model.index(0, 0).data(Qt::EditRole), QVariant(false));

    const QVariant unselected = model.index(0, 0).data(Qt::DecorationRole);
    QCOMPARE(unselected.typeId(), int{QMetaType::QPixmap});
    const QImage box = unselected.value<QPixmap>().toImage();
    QCOMPARE(box.size(), QSize(12, 12));
    for (int y = 0; y < 12; ++y) {
        for (int x = 0; x < 12; ++x) {
            const bool outermost = x == 0 || y == 0 || x == 11 || y == 11;
            QCOMPARE(box.pixelColor(x, y), QColor(outermost ? Qt::black : Qt::white));
        }
    }

    const QVariant selected = model.index(1, 0).data(Qt::DecorationRole);
    QCOMPARE(selected.typeId(), int{QMetaType::QIcon});
    QVERIFY(!selected.value<QIcon>().isNull());
    QVERIFY(!ResourceImage(":/ok.png").isNull());
    QCOMPARE(ImageOf(selected), ResourceImage(":/ok.png"));
}

void TestConnectionsModel::otherRolesAreEmpty()
{
    const QList<int> used{Qt::DisplayRole, Qt::EditRole, Qt::ToolTipRole, Qt::StatusTipRole};
    WatchedModel model;
    model.AddConnection(SampleEntry(1));
    for (int column = 0; column < kColumns; ++column) {
        for (const int role : kRoles) {
            const bool shown = used.contains(role) || (role == Qt::DecorationRole && column == 0);
            QVERIFY2(model.index(0, column).data(role).isValid() == shown,
                     qPrintable(QStringLiteral("column %1 role %2").arg(column).arg(role)));
        }
    }
}

void TestConnectionsModel::invalidIndexesHaveNoData()
{
    WatchedModel model;
    model.AddConnection(SampleEntry(1));
    WatchedModel other;
    other.AddConnection(SampleEntry(2));
    const QStandardItemModel foreign(1, kColumns);
    const QList<QModelIndex> bad{QModelIndex(),
                                 model.createIndex(1, 0),
                                 model.createIndex(5, 3),
                                 model.createIndex(0, 10),
                                 model.createIndex(std::numeric_limits<int>::max(), std::numeric_limits<int>::max()),
                                 other.index(0, 1),
                                 foreign.index(0, 1)};
    for (const QModelIndex& index : bad)
        for (const int role : kRoles)
            QVERIFY(!model.data(index, role).isValid());
}

void TestConnectionsModel::headerTexts()
{
    const WatchedModel model;
    for (int section = 0; section < kColumns; ++section)
        QCOMPARE(model.headerData(section, Qt::Horizontal), QVariant(kHeaders.at(section)));
    for (const int section : {-1, 10, 11, 1000})
        QVERIFY(!model.headerData(section, Qt::Horizontal).isValid());
}

void TestConnectionsModel::headerIcons()
{
    const WatchedModel model;
    QVERIFY(!ResourceImage(":/ok.png").isNull());
    QVERIFY(!ResourceImage(":/time.png").isNull());
    QVERIFY(ResourceImage(":/ok.png") != ResourceImage(":/time.png"));
    QCOMPARE(ImageOf(model.headerData(0, Qt::Horizontal, Qt::DecorationRole)), ResourceImage(":/ok.png"));
    QCOMPARE(ImageOf(model.headerData(8, Qt::Horizontal, Qt::DecorationRole)), ResourceImage(":/time.png"));
    QCOMPARE(model.headerData(0, Qt::Horizontal, Qt::DecorationRole).typeId(), int{QMetaType::QIcon});
    QCOMPARE(model.headerData(8, Qt::Horizontal, Qt::DecorationRole).typeId(), int{QMetaType::QIcon});
    for (const int section : {-1, 1, 2, 3, 4, 5, 6, 7, 9, 10})
        QVERIFY(!model.headerData(section, Qt::Horizontal, Qt::DecorationRole).isValid());
    for (const int section : {-1, 0, 8})
        QVERIFY(!model.headerData(section, Qt::Vertical, Qt::DecorationRole).isValid());
}

void TestConnectionsModel::headerHelp()
{
    const WatchedModel model;
    for (const int role : {Qt::ToolTipRole, Qt::StatusTipRole}) {
        for (int section = 0; section < kColumns; ++section) {
            QCOMPARE(model.headerData(section, Qt::Horizontal, role), QVariant(kHelp.at(section)));
            QVERIFY(!model.headerData(section, Qt::Vertical, role).isValid());
        }
        QVERIFY(!model.headerData(-1, Qt::Horizontal, role).isValid());
        QVERIFY(!model.headerData(10, Qt::Horizontal, role).isValid());
    }
}

void TestConnectionsModel::verticalHeaderCountsFromZero()
{
    WatchedModel model;
    model.AddConnection(Connection());
    model.AddConnection(Connection());
    QCOMPARE(model.headerData(0, Qt::Vertical), QVariant(0));
    QCOMPARE(model.headerData(1, Qt::Vertical), QVariant(1));
    QCOMPARE(model.headerData(1, Qt::Vertical).typeId(), int{QMetaType::Int});
}

void TestConnectionsModel::otherHeaderRolesAreEmpty()
{
    const QList<int> used{Qt::DisplayRole, Qt::DecorationRole, Qt::ToolTipRole, Qt::StatusTipRole};
    const WatchedModel model;
    for (int section = -1; section <= kColumns; ++section) {
        for (const int role : kRoles) {
            if (!used.contains(role))
                QVERIFY(!model.headerData(section, Qt::Horizontal, role).isValid());
            if (role != Qt::DisplayRole)
                QVERIFY(!model.headerData(section, Qt::Vertical, role).isValid());
        }
    }
}

void TestConnectionsModel::cellsShowColumnHelp()
{
    WatchedModel model;
    model.AddConnection(Connection());
    model.AddConnection(SampleEntry(1));
    for (int row = 0; row < 2; ++row) {
        for (int column = 0; column < kColumns; ++column) {
            QCOMPARE(model.index(row, column).data(Qt::ToolTipRole), QVariant(kHelp.at(column)));
            QCOMPARE(model.index(row, column).data(Qt::StatusTipRole), QVariant(kHelp.at(column)));
        }
    }
}

void TestConnectionsModel::textsAreTranslated()
{
    WatchedModel model;
    model.AddConnection(Connection());
    {
        const MarkingTranslator translator(QStringLiteral("ConnectionsModel"));
        QCOMPARE(model.headerData(0, Qt::Horizontal), QVariant(QStringLiteral("")));
        for (int section = 1; section < kColumns; ++section)
            QCOMPARE(model.headerData(section, Qt::Horizontal).toString(), u'[' + kHeaders.at(section) + u']');
        for (const int section : {0, 1, 2, 3, 5, 6, 7, 8, 9})
            QCOMPARE(model.headerData(section, Qt::Horizontal, Qt::ToolTipRole).toString(),
                     u'[' + kHelp.at(section) + u']');
        QCOMPARE(
            model.headerData(4, Qt::Horizontal, Qt::ToolTipRole).toString(),
            QStringLiteral(
                "[The connection type can be one of the following:\n]"
                "\n- \"Direct Connection\" --> [userinterface does directly connect to the resource]\n"
                "\n- \"Remote Connection\" --> [userinterface does connect to a driver application; driver "
                "application is connected to resource]\n"
                "\n- \"MultiChannel Server\" --> [KiteControl-specific connection type (see respective manual)]\n"));
        QCOMPARE(model.index(0, 8).data().toString(), QStringLiteral("[No Timeout]"));
        QCOMPARE(model.index(0, 2).data().toString(), QStringLiteral("Free"));
    }
    {
        const MarkingTranslator translator(QStringLiteral("Connection"));
        QVERIFY(model.headerData(4, Qt::Horizontal, Qt::ToolTipRole)
                    .toString()
                    .contains(QStringLiteral("\n- \"[Direct Connection]\" --> userinterface does directly")));
        QCOMPARE(model.index(0, 2).data().toString(), QStringLiteral("[Free]"));
        QCOMPARE(model.index(0, 3).data().toString(), QStringLiteral("Kite Echo"));
    }
}

void TestConnectionsModel::flagsFollowTypeAndStatus_data()
{
    QTest::addColumn<int>("connectionType");
    QTest::addColumn<int>("status");
    for (const int type : {-1, 0, 1, 2, 3})
        for (const int status : {-1, 0, 1, 2})
            QTest::addRow("type %d status %d", type, status) << type << status;
}

void TestConnectionsModel::flagsFollowTypeAndStatus()
{
    QFETCH(int, connectionType);
    QFETCH(int, status);
    Connection entry;
    entry.ConnectionType = connectionType;
    entry.ConnectionStatus = status;
    WatchedModel model;
    model.AddConnection(entry);
    const Qt::ItemFlags shut = Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    const Qt::ItemFlags readOnly = shut | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    const Qt::ItemFlags open = readOnly | Qt::ItemIsEditable;
    for (int column = 0; column < kColumns; ++column) {
        Qt::ItemFlags expected = column == 0 || column == 2 ? readOnly : open;
        if (status != 0 || (column == 5 && connectionType == 2) || (column == 6 && connectionType == 0))
            expected = shut;
        QCOMPARE(model.flags(model.index(0, column)), expected);
    }
}

void TestConnectionsModel::invalidIndexesAreDisabled()
{
    WatchedModel model;
    model.AddConnection(Connection());
    WatchedModel other;
    other.AddConnection(Connection());
    QCOMPARE(model.flags(QModelIndex()), Qt::NoItemFlags);
    const Qt::ItemFlags beyondTheBase = Qt::ItemIsEditable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled |
                                        Qt::ItemIsDropEnabled | Qt::ItemIsUserCheckable;
    for (const QModelIndex& index : {model.createIndex(1, 1), model.createIndex(0, 10), other.index(0, 1)})
        QVERIFY(!(model.flags(index) & beyondTheBase));
}

VEXEL_TEST(QTEST_MAIN, TestConnectionsModel)

#include "tst_connectionsmodel.moc"
