// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/cfgcenter.h"
#include "platform/config/readahead.h"
#include "platform/configversions.h"
#include "platform/icfg.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QTemporaryDir>
#include <QTest>

#include <optional>

/// Whether a document that was read before it is needed is used.
class TestReadAhead : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_directory.emplace();
        QVERIFY(CfgCenter::Open(m_directory->path()));
        CfgCenter::GetAppCfg(View::Application)->SetString(QStringLiteral("Key"), QStringLiteral("value"), 0);
        QVERIFY(CfgCenter::SaveDocument());
        m_file = ConfigVersions(View::Application, QString()).DocumentFile();
        CfgCenter::Close();
    }

    void whatWasReadIsUsedOnce()
    {
        ReadAhead::Begin(m_file);
        std::optional<ReadAhead::Document> document = ReadAhead::Take(m_file);
        QVERIFY(document.has_value());
        QCOMPARE(document->reading.values->value(QStringLiteral("Key")), QStringLiteral("value"));
        QVERIFY(document->isIntact.get());
        QVERIFY(!ReadAhead::Take(m_file).has_value());
    }

    void anotherFileIsNotTaken()
    {
        ReadAhead::Begin(m_file);
        QVERIFY(!ReadAhead::Take(m_file + u'x').has_value());
        QVERIFY(ReadAhead::Take(m_file).has_value());
    }

    void fileThatIsWrittenAfterwardsIsNotTaken()
    {
        const QByteArray text = Files::Read(m_file);
        ReadAhead::Begin(m_file);
        ReadAhead::WaitForReading();
        QVERIFY(Files::Write(m_file, QByteArray(text).replace("\"value\"", "\"other\"")));
        QVERIFY(!ReadAhead::Take(m_file).has_value());
    }

    void changedDocumentIsNotIntact()
    {
        QVERIFY(Files::Write(m_file, Files::Read(m_file).replace("\"value\"", "\"other\"")));
        ReadAhead::Begin(m_file);
        std::optional<ReadAhead::Document> document = ReadAhead::Take(m_file);
        QVERIFY(document.has_value());
        QVERIFY(!document->isIntact.get());
    }

private:
    std::optional<QTemporaryDir> m_directory;
    QString m_file;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestReadAhead)
#include "tst_readahead.moc"
