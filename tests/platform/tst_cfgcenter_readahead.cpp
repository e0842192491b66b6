// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/cfgcenter.h"
#include "platform/configversions.h"
#include "platform/icfg.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QTemporaryDir>
#include <QTest>

#include <optional>

namespace {

const QString kKey = QStringLiteral("Key");
const QString kOther = QStringLiteral("Other");
const QString kLong = QStringLiteral("0123456789abcdef").repeated(1000);
const QString kNone = QStringLiteral("(none)");

ICfg& Document()
{
    return *CfgCenter::GetAppCfg(View::Application);
}

QString Value(const QString& key = kKey)
{
    return Document().GetString(key, kNone, 0);
}

} // namespace

/// A document that is read before the store is opened. What comes of it is the same.
class TestCfgCenterReadAhead : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_directory.emplace();
        m_notices.clear();
        CfgCenter::SetNoticeSink([this](const QString& line) { m_notices += line; });
        Save(kLong);
        m_file = ConfigVersions(View::Application, QString()).DocumentFile();
        CfgCenter::Close();
    }
    void cleanup()
    {
        CfgCenter::Close();
        CfgCenter::SetNoticeSink({});
        m_directory.reset();
    }

    void documentIsRead()
    {
        Start();
        QCOMPARE(Value(), kLong);
        QCOMPARE(Value(), kLong); // held another way since
        QCOMPARE(Value(kOther), kNone);
        QVERIFY(CfgCenter::IsAppCfgKnown(View::Application));
        QVERIFY(CfgCenter::WasAppCfgIntact(View::Application));
        QVERIFY(m_notices.isEmpty());
        Save(QStringLiteral("new"));
        CfgCenter::Close();
        Start();
        QCOMPARE(Value(), QStringLiteral("new"));
    }

    void documentOfAnotherStoreIsNotUsed()
    {
        const QTemporaryDir other;
        CfgCenter::ReadAhead(m_directory->path());
        QVERIFY(CfgCenter::Open(other.path()));
        QCOMPARE(Value(), kNone);
    }

    void laterContentIsRead_data()
    {
        QTest::addColumn<QString>("value");
        QTest::newRow("of another length") << QStringLiteral("short");
        QTest::newRow("of the same length") << QString(kLong).replace(0, 1, u'f');
    }
    void laterContentIsRead()
    {
        QFETCH(const QString, value);
        CfgCenter::ReadAhead(m_directory->path());
        Save(value);
        CfgCenter::Close();
        QVERIFY(CfgCenter::Open(m_directory->path()));
        QCOMPARE(Value(), value);
    }

    void removedDocumentIsMissed()
    {
        CfgCenter::ReadAhead(m_directory->path());
        QVERIFY(QFile::remove(m_file));
        QVERIFY(CfgCenter::Open(m_directory->path()));
        QCOMPARE(Value(), kNone);
    }

    void damagedDocumentIsReported()
    {
        QVERIFY(Files::Write(m_file, "damage"));
        Start();
        QCOMPARE(Value(), kNone);
        QVERIFY(CfgCenter::IsAppCfgLost(View::Application));
        QCOMPARE(m_notices.size(), 1);
    }

    /// Whether a document is intact is known later than its values.
    void changedDocumentIsAdopted()
    {
        QByteArray text = Files::Read(m_file);
        QVERIFY(Files::Write(m_file, text.replace("0123", "3210")));
        const QByteArray found = Files::Read(m_file);
        Start();
        QVERIFY(Value().startsWith(QStringLiteral("3210")));
        Document().SetString(kOther, QStringLiteral("changed meanwhile"), 0);

        QVERIFY(!CfgCenter::WasAppCfgIntact(View::Application));
        QCOMPARE(m_notices.size(), 1);
        QVERIFY(m_notices.first().contains(QStringLiteral("was changed by something else")));
        const QList<ConfigVersion> versions = ConfigVersions(View::Application, QString()).List();
        QCOMPARE(versions.size(), 1);
        QCOMPARE(Files::Read(versions.first().file), found);
        QVERIFY(Files::Read(m_file) != found); // with the digest that belongs to it

        QVERIFY(Value().startsWith(QStringLiteral("3210")));
        QCOMPARE(Value(kOther), QStringLiteral("changed meanwhile"));
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(Files::Read(m_file).contains("changed meanwhile"));
        QVERIFY(!CfgCenter::WasAppCfgIntact(View::Application));
        QCOMPARE(m_notices.size(), 1);
    }

    void savingWaitsForTheCheck()
    {
        QByteArray text = Files::Read(m_file);
        QVERIFY(Files::Write(m_file, text.replace("0123", "3210")));
        const QByteArray found = Files::Read(m_file);
        Start();
        Document().SetString(kOther, QStringLiteral("x"), 0);
        QVERIFY(CfgCenter::SaveDocument());
        const QList<ConfigVersion> versions = ConfigVersions(View::Application, QString()).List();
        QVERIFY(!versions.isEmpty());
        QCOMPARE(Files::Read(versions.last().file), found);
        QCOMPARE(Value(kOther), QStringLiteral("x"));
        QCOMPARE(m_notices.size(), 1);
    }

    void savingNothingWaitsForTheCheck()
    {
        QVERIFY(Files::Write(m_file, Files::Read(m_file).replace("0123", "3210")));
        Start();
        Value();
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(m_notices.size(), 1);
    }

private:
    void Start()
    {
        CfgCenter::ReadAhead(m_directory->path());
        QVERIFY(CfgCenter::Open(m_directory->path()));
    }
    void Save(const QString& value)
    {
        QVERIFY(CfgCenter::Open(m_directory->path()));
        Document().SetString(kKey, value, 0);
        QVERIFY(CfgCenter::SaveDocument());
    }

    std::optional<QTemporaryDir> m_directory;
    QString m_file;
    QStringList m_notices;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCfgCenterReadAhead)
#include "tst_cfgcenter_readahead.moc"
