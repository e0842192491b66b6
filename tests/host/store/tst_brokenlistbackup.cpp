// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/store/brokenlistbackup.h"
#include "host/store/storedset.h"
#include "platform/configversions.h"
#include "tests/host/storeddocument.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

class TestBrokenListBackup : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void intactListIsNotCopied();
    void malformedListIsCopied();
    void sameContentIsCopiedOnce();
    void differentContentsAreAllCopied();
    void failedCopyIsReported();

private:
    static void Save(const QByteArray& list);
    static QString Keep() { return BackUpBrokenList(ReadStoredSet(*CfgCenter::GetAppCfg(View::Application))); }
    static QStringList Copies();
    static QString Document() { return ConfigVersions(View::Application, QString()).DocumentFile(); }

    std::unique_ptr<QTemporaryDir> m_pDirectory;
};

void TestBrokenListBackup::init()
{
    m_pDirectory = std::make_unique<QTemporaryDir>();
    QVERIFY(CfgCenter::Open(m_pDirectory->path()));
}

void TestBrokenListBackup::cleanup()
{
    CfgCenter::Close();
    m_pDirectory.reset();
}

void TestBrokenListBackup::Save(const QByteArray& list)
{
    StoreList(list);
    QVERIFY(CfgCenter::SaveDocument());
}

QStringList TestBrokenListBackup::Copies()
{
    const QFileInfo document(Document());
    QStringList copies;
    const QFileInfoList files =
        document.dir().entryInfoList({document.fileName() + QStringLiteral(".malformed-*")}, QDir::Files, QDir::Name);
    for (const QFileInfo& file : files)
        copies.append(file.filePath());
    return copies;
}

void TestBrokenListBackup::intactListIsNotCopied()
{
    QCOMPARE(Keep(), QString());
    for (const QByteArray& list : {QByteArray(), ListOf(0), ListOf(3)}) {
        Save(list);
        QCOMPARE(Keep(), QString());
    }
    QCOMPARE(Copies(), QStringList());
}

void TestBrokenListBackup::malformedListIsCopied()
{
    Save(ListOf(5).chopped(30));
    const QByteArray document = Files::Read(Document());
    QVERIFY(!document.isEmpty());

    TraceRecorder recorder;
    const QString said = Keep();
    QCOMPARE(Copies().size(), 1);
    QCOMPARE(Files::Read(Copies().constFirst()), document);
    QVERIFY2(said.contains(QLatin1String("5 entries")) && said.contains(Copies().constFirst()), qPrintable(said));
    QCOMPARE(recorder.Messages(), QStringList(QStringLiteral("BackUpBrokenList(): ") + said));
    // Copied, not moved: the plug-in still loads the document.
    QCOMPARE(Files::Read(Document()), document);
}

void TestBrokenListBackup::sameContentIsCopiedOnce()
{
    Save(ListOf(5).chopped(30));
    const QString said = Keep();
    QCOMPARE(Copies().size(), 1);
    // As after a host that was killed before it stored anything.
    QVERIFY(CfgCenter::Open(m_pDirectory->path()));
    QCOMPARE(Keep(), said);
    QCOMPARE(Copies().size(), 1);
}

void TestBrokenListBackup::differentContentsAreAllCopied()
{
    constexpr int count = 20;
    QList<QByteArray> documents;
    for (int i = 0; i < count; ++i) {
        // Of the same length, and faster than the clock that names them.
        Save(ListOf(9).replace("Entry 5", "Entry " + QByteArray(1, static_cast<char>('a' + i))).chopped(30));
        documents.append(Files::Read(Document()));
        QVERIFY(!Keep().isEmpty());
    }
    QCOMPARE(Copies().size(), count);
    for (const QString& copy : Copies())
        QVERIFY(documents.removeOne(Files::Read(copy)));
}

void TestBrokenListBackup::failedCopyIsReported()
{
    Save(ListOf(2).chopped(30));
    // The list is in memory, but its file is gone.
    QVERIFY(QFile::remove(Document()));
    const QString said = Keep();
    QVERIFY2(said.contains(QLatin1String("2 entries")) && said.contains(Document()), qPrintable(said));
    QVERIFY2(said.contains(QLatin1String("could not be copied")), qPrintable(said));
    QCOMPARE(Copies(), QStringList());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestBrokenListBackup)
#include "tst_brokenlistbackup.moc"
