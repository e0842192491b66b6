// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/files.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"
#include "userinterface/vexelconnectdlg/import/importedlist.h"

#include <QTemporaryDir>
#include <QTest>

/// What another thread reads for an import.
class TestImportedList : public QObject
{
    Q_OBJECT

private slots:
    void entriesAreReadCountedAndRanked();
    void malformedListHasTheEntriesBeforeTheError();
    void missingFileIsNotReadable();
    void unwantedListIsEmpty();

private:
    static QByteArray Document()
    {
        Connection first;
        first.ConnectionName = QStringLiteral("quay");
        Connection second;
        second.ConnectionName = QStringLiteral("mast");
        return ConnectionList::Write({&first, &second});
    }
    ImportedList Read(const QByteArray& document, int column = ConnectionsModel::ColumnName)
    {
        const QString path = m_directory.filePath(QStringLiteral("list.xml"));
        if (!Files::Write(path, document))
            qFatal("cannot write the list");
        return ImportedList::Read(path, column, m_progress);
    }

    QTemporaryDir m_directory;
    ReadingProgress m_progress;
};

void TestImportedList::entriesAreReadCountedAndRanked()
{
    const ImportedList list = Read(Document());
    QVERIFY(list.isReadable);
    QVERIFY(list.isWhole);
    QCOMPARE(list.entries.size(), std::size_t{2});
    QCOMPARE(list.entries[0].ConnectionName, QStringLiteral("quay"));
    QCOMPARE(m_progress.total.load(), 2);
    QCOMPARE(m_progress.entries.load(), 2);
    QCOMPARE(list.rankedColumn, int(ConnectionsModel::ColumnName));
    QCOMPARE(list.ranks.size(), std::size_t{2});
    QVERIFY(list.ranks[1] < list.ranks[0]);
    // All will be "Free".
    QCOMPARE(Read(Document(), ConnectionsModel::ColumnStatus).ranks, (std::vector<int>{0, 0}));
}

void TestImportedList::malformedListHasTheEntriesBeforeTheError()
{
    const ImportedList list = Read(Document().replace("</ConnectionEntries>", "<"));
    QVERIFY(list.isReadable);
    QVERIFY(!list.isWhole);
    QCOMPARE(list.entries.size(), std::size_t{2});
}

void TestImportedList::missingFileIsNotReadable()
{
    const ImportedList list = ImportedList::Read(m_directory.filePath(QStringLiteral("none.xml")), 0, m_progress);
    QVERIFY(!list.isReadable);
    QVERIFY(!list.isWhole);
    QVERIFY(list.entries.empty());
}

void TestImportedList::unwantedListIsEmpty()
{
    m_progress.isUnwanted = true;
    const ImportedList list = Read(Document());
    QVERIFY(!list.isReadable);
    QVERIFY(list.entries.empty());
    m_progress.isUnwanted = false;
}

VEXEL_TEST(QTEST_MAIN, TestImportedList)
#include "tst_importedlist.moc"
