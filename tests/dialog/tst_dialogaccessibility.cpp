// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/translationcenter.h"
#include "tests/support/dialogfixture.h"
#include "tests/support/testmain.h"

#include <QAccessible>

/// The names that a screen reader gets for the parts of the shown dialog.
class TestDialogAccessibility : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void everyPartOfListHasName_data();
    void everyPartOfListHasName();
    void namesFollowTicks();
    void onlyProxyNamesTicks();

private:
    static const QString kDomain;
};

const QString TestDialogAccessibility::kDomain = QStringLiteral("VexelConnectDlg");

namespace {

/// Everything at or below `top` that has the role, in the order of the tree.
QList<QAccessibleInterface*> PartsOf(QAccessibleInterface* top, QAccessible::Role role)
{
    QList<QAccessibleInterface*> parts;
    if (top->role() == role)
        parts += top;
    for (int child = 0; child < top->childCount(); ++child)
        if (QAccessibleInterface* const part = top->child(child))
            parts += PartsOf(part, role);
    return parts;
}

QStringList NamesOf(const QList<QAccessibleInterface*>& parts)
{
    QStringList names;
    for (const QAccessibleInterface* part : parts)
        names += part->text(QAccessible::Name);
    return names;
}

QAccessibleInterface* TreeOf(QDialog* dialog, const QTreeView* view)
{
    for (QAccessibleInterface* tree : PartsOf(QAccessible::queryAccessibleInterface(dialog), QAccessible::Tree))
        if (tree->object() == view)
            return tree;
    qFatal("the dialog has no tree for the view");
}

/// The names of all cells of a column, in rows from the top.
QStringList NamesInColumn(QAccessibleInterface* tree, int column)
{
    QStringList names;
    for (QAccessibleInterface* cell : PartsOf(tree, QAccessible::TreeItem))
        if (cell->tableCellInterface()->columnIndex() == column)
            names += cell->text(QAccessible::Name);
    return names;
}

} // namespace

void TestDialogAccessibility::cleanup()
{
    TranslationCenter::Instance().Unregister(kDomain);
    TranslationCenter::Instance().SetLocale(QLocale::c());
}

void TestDialogAccessibility::everyPartOfListHasName_data()
{
    QTest::addColumn<QLocale>("language");
    QTest::addColumn<QStringList>("views");
    QTest::addColumn<QString>("tickHeader");
    QTest::addColumn<QStringList>("ticks");
    QTest::newRow("English") << QLocale(QLocale::English)
                             << QStringList{QStringLiteral("Connections"), QStringLiteral("Connection Details")}
                             << QStringLiteral("Selected")
                             << QStringList{QStringLiteral("not selected"), QStringLiteral("selected")};
    QTest::newRow("German") << QLocale(QLocale::German)
                            << QStringList{QStringLiteral("Verbindungen"), QStringLiteral("Verbindungsdetails")}
                            << QStringLiteral("Ausgew\u00e4hlt")
                            << QStringList{QStringLiteral("nicht ausgew\u00e4hlt"), QStringLiteral("ausgew\u00e4hlt")};
}

void TestDialogAccessibility::everyPartOfListHasName()
{
    QFETCH(QLocale, language);
    QFETCH(QStringList, views);
    QFETCH(QString, tickHeader);
    QFETCH(QStringList, ticks);
    TranslationCenter::Instance().SetDirectory(QStringLiteral(VEXEL_TRANSLATIONS));
    TranslationCenter::Instance().SetLocale(language);
    TranslationCenter::Instance().Register(kDomain);
    DialogFixture fixture;
    fixture.Build();
    fixture.Add({Entry("b", Connection::KiteEcho, true), Entry("a")});
    fixture.Action("m_pDetailsAction")->trigger();
    fixture.Show();

    for (const QTreeView* view : {fixture.BasicView(), fixture.DetailsView()}) {
        QAccessibleInterface* const tree = TreeOf(fixture.dialog, view);
        QCOMPARE(tree->text(QAccessible::Name), views.takeFirst());

        QStringList headers{tickHeader};
        for (int column = 1; column < ConnectionsModel::kColumnCount; ++column)
            headers += fixture.model->headerData(column, Qt::Horizontal).toString();
        QCOMPARE(NamesOf(PartsOf(tree, QAccessible::ColumnHeader)), headers);

        QCOMPARE(NamesInColumn(tree, ConnectionsModel::ColumnSelected), ticks);
        for (int column = 1; column < ConnectionsModel::kColumnCount; ++column) {
            QStringList shown;
            for (int row = 0; row < 2; ++row)
                shown += fixture.Proxy()->index(row, column).data().toString();
            QCOMPARE(NamesInColumn(tree, column), shown);
        }
    }
}

void TestDialogAccessibility::namesFollowTicks()
{
    DialogFixture fixture;
    fixture.Build();
    fixture.Add({Entry("a")});
    fixture.Show();
    QAccessibleInterface* const tree = TreeOf(fixture.dialog, fixture.BasicView());
    QCOMPARE(NamesInColumn(tree, ConnectionsModel::ColumnSelected), QStringList{QStringLiteral("not selected")});
    DialogFixture::Click(fixture.BasicView(), fixture.ProxyIndex("a", ConnectionsModel::ColumnSelected));
    QCOMPARE(NamesInColumn(tree, ConnectionsModel::ColumnSelected), QStringList{QStringLiteral("selected")});
}

void TestDialogAccessibility::onlyProxyNamesTicks()
{
    DialogFixture fixture;
    fixture.Build();
    fixture.Add({Entry("a", Connection::KiteEcho, true)});
    for (int column = 0; column < ConnectionsModel::kColumnCount; ++column) {
        QVERIFY(!fixture.model->index(0, column).data(Qt::AccessibleTextRole).isValid());
        QVERIFY(!fixture.model->headerData(column, Qt::Horizontal, Qt::AccessibleTextRole).isValid());
        // A screen reader reads the displayed text where there is no other.
        QCOMPARE(fixture.Proxy()->index(0, column).data(Qt::AccessibleTextRole).isValid(), column == 0);
        QCOMPARE(fixture.Proxy()->headerData(column, Qt::Horizontal, Qt::AccessibleTextRole).isValid(), column == 0);
    }
    QVERIFY(!fixture.Proxy()->headerData(0, Qt::Vertical, Qt::AccessibleTextRole).isValid());
    QVERIFY(!fixture.Proxy()->data(QModelIndex(), Qt::AccessibleTextRole).isValid());
}

VEXEL_TEST(QTEST_MAIN, TestDialogAccessibility)
#include "tst_dialogaccessibility.moc"
