// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/autosave.h"
#include "platform/cfgcenter.h"
#include "tests/support/confignodes.h"
#include "tests/support/fakedialog.h"
#include "tests/support/testmain.h"

#include <QSignalSpy>
#include <QTest>

/// Saving after changes, on a dialog with the entries "mast" and "pier". The pause after the last change is cut short.
class TestAutoSave : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        CfgCenter::Close();
        m_fake = std::make_unique<FakeDialog>();
        m_fake->Add(QStringLiteral("mast"));
        m_fake->Add(QStringLiteral("pier"));
        m_dialog = FindDialog();
        m_saves = 0;
        m_error.clear();
        m_autoSave = std::make_unique<AutoSave>(*m_dialog, [this](const auto& done) {
            ++m_saves;
            done(m_error);
        });
        m_timer = m_autoSave->findChild<QTimer*>(QStringLiteral("m_autoSaveTimer"));
        QVERIFY(m_timer->interval() <= 5000);
        m_timer->setInterval(0);
    }
    void cleanup()
    {
        m_autoSave.reset();
        m_fake.reset();
        CfgCenter::Close();
    }

    void changeIsStoredAndSaved_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addColumn<QStringList>("names");
        QTest::newRow("edited") << QStringLiteral("edit")
                                << QStringList({QStringLiteral("quay"), QStringLiteral("pier")});
        QTest::newRow("added") << QStringLiteral("add")
                               << QStringList({QStringLiteral("mast"), QStringLiteral("pier"), QStringLiteral("quay")});
        QTest::newRow("removed") << QStringLiteral("remove") << QStringList({QStringLiteral("pier")});
        QTest::newRow("ticked") << QStringLiteral("tick")
                                << QStringList({QStringLiteral("mast"), QStringLiteral("pier")});
        QTest::newRow("reordered") << QStringLiteral("sort")
                                   << QStringList({QStringLiteral("pier"), QStringLiteral("mast")});
    }
    void changeIsStoredAndSaved()
    {
        QFETCH(QString, change);
        QFETCH(QStringList, names);
        QVERIFY(!m_timer->isActive());
        if (change == QLatin1String("edit"))
            m_fake->entries.setData(m_fake->entries.index(0, 1), QStringLiteral("quay"), Qt::EditRole);
        else if (change == QLatin1String("add"))
            m_fake->Add(QStringLiteral("quay"));
        else if (change == QLatin1String("remove"))
            m_fake->entries.removeRow(0);
        else if (change == QLatin1String("tick"))
            m_fake->SetTicked(1, true);
        else
            m_fake->entries.sort(1, Qt::DescendingOrder);
        QTRY_COMPARE(m_saves, 1);
        const QByteArray stored = Stored();
        qsizetype at = 0;
        for (const QString& name : names) {
            at = stored.indexOf("<ConnectionName><![CDATA[" + name.toUtf8() + "]]>", at);
            QVERIFY2(at >= 0, stored.constData());
        }
        QCOMPARE(stored.count("<Connection>"), names.size());
        QCOMPARE(stored.count("<Selected>true"), change == QLatin1String("tick") ? 1 : 0);
        QCOMPARE(ReadEntryCount(*CfgCenter::GetAppCfg(View::Application)), int(names.size()));
    }

    void statusAloneIsNotSaved()
    {
        m_fake->SetStatus(0, 1);
        QVERIFY(!m_timer->isActive());
        m_fake->SetStatus(0, 0);
        QVERIFY(!m_timer->isActive());
    }

    void burstIsSavedOnce()
    {
        for (int i = 0; i < 20; ++i)
            m_fake->Add(QString::number(i));
        QTRY_COMPARE(m_saves, 1);
        QVERIFY(!m_timer->isActive());
        QCOMPARE(Stored().count("<Connection>"), 22);
    }

    void changeWhileTheTextIsMadeIsSavedAfterwards()
    {
        m_fake->Add(QStringLiteral("first"));
        QTRY_VERIFY(!m_timer->isActive()); // the text is being made now
        m_fake->Add(QStringLiteral("second"));
        QTRY_VERIFY(Stored().contains("second"));
        QVERIFY(!m_timer->isActive());
    }

    void unchangedListIsSavedWithoutACopy()
    {
        m_autoSave->SaveNow();
        QCOMPARE(m_saves, 1); // at once: no text is made
        QVERIFY(Stored().isEmpty());

        m_fake->Add(QStringLiteral("quay"));
        m_autoSave->SaveNow();
        QVERIFY(!m_timer->isActive());
        QTRY_COMPARE(m_saves, 2);
        QVERIFY(Stored().contains("quay"));
        m_autoSave->SaveNow();
        QCOMPARE(m_saves, 3);
    }

    void statusIsSavedOnRequest()
    {
        m_fake->SetStatus(0, 1);
        m_autoSave->SaveNow();
        QTRY_COMPARE(m_saves, 1);
        QCOMPARE(Stored().count("<ConnectionStatus>1"), 1);
    }

    void saveOnRequestWhileTheTextIsMadeIsNewer()
    {
        m_timer->setInterval(60'000);
        m_fake->Add(QStringLiteral("first"));
        m_autoSave->SaveNow();
        m_fake->Add(QStringLiteral("second"));
        m_autoSave->SaveNow();
        QTRY_VERIFY(Stored().contains("second"));
        QTRY_COMPARE(m_saves, 2);
    }

    // What is saved otherwise is newer.
    void cancelledTextIsNotStored()
    {
        m_fake->Add(QStringLiteral("quay"));
        m_autoSave->Cancel();
        QVERIFY(!m_timer->isActive());

        m_fake->Add(QStringLiteral("dock"));
        m_timer->stop();
        QVERIFY(QMetaObject::invokeMethod(m_timer, "timeout", Qt::DirectConnection)); // starts to make the text
        m_autoSave->Cancel();
        m_autoSave.reset(); // waits for the text
        QCoreApplication::processEvents();
        QCOMPARE(m_saves, 0);
        QVERIFY(Stored().isEmpty());
    }

    // The dialog shows what could be read of the file until the user has closed the message box.
    void entriesFromBeforeAFailedImportAreStored()
    {
        const QByteArray before = "<r><Connection/><Connection/></r>";
        m_fake->setProperty("entriesBeforeImport", before);
        m_fake->entries.removeRow(0);
        QTRY_COMPARE(Stored(), before);
        QCOMPARE(ReadEntryCount(*CfgCenter::GetAppCfg(View::Application)), 2);
        // The import ends without a further change.
        m_fake->setProperty("entriesBeforeImport", {});
        QTRY_VERIFY(Stored() != before);
        QCOMPARE(ReadEntryCount(*CfgCenter::GetAppCfg(View::Application)), m_fake->entries.rowCount());
    }

    void failureIsReported()
    {
        const QSignalSpy saved(m_autoSave.get(), &AutoSave::Saved);
        m_error = QStringLiteral("the disk is full");
        m_fake->Add(QStringLiteral("quay"));
        QTRY_COMPARE(saved.count(), 1);
        QCOMPARE(saved.front().front().toString(), m_error);
    }

private:
    static QByteArray Stored() { return QByteArray::fromHex(ConfigNodes::StoredSet(QString()).toLatin1()); }

    std::unique_ptr<FakeDialog> m_fake;
    std::optional<ConnectDialog> m_dialog;
    std::unique_ptr<AutoSave> m_autoSave;
    QTimer* m_timer = nullptr;
    QString m_error;
    int m_saves = 0;
};

VEXEL_TEST(QTEST_MAIN, TestAutoSave)
#include "tst_autosave.moc"
