// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/idllinstance.h"
#include "tests/support/testmain.h"

#include <QTest>

/// The base class without any overrides.
class TestIDllInstance : public QObject
{
    Q_OBJECT

private slots:
    void nameIsKept_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << QStringLiteral("VexelConnectDlg");
        QTest::newRow("empty") << QString();
        QTest::newRow("spaces and characters beyond the BMP") << QStringLiteral(" Peil\u00fcbersicht \U0001F4E1 ");
    }
    void nameIsKept()
    {
        QFETCH(QString, name);
        const IDllInstance instance(name);
        QCOMPARE(instance.Name(), name);
    }

    void baseIsAvailableAndDoesNothing()
    {
        IDllInstance instance(QStringLiteral("Base"));
        QVERIFY(instance.IsAvailable());
        instance.Notify();
        instance.SaveSettings();
        QVERIFY(instance.IsAvailable());
        QCOMPARE(instance.Name(), QStringLiteral("Base"));
    }

    void canBeDeletedThroughTheBase()
    {
        class Probe : public IDllInstance
        {
        public:
            explicit Probe(bool& isGone)
                : IDllInstance(QStringLiteral("Probe"))
                , m_isGone(isGone)
            {
            }
            ~Probe() override { m_isGone = true; }

        private:
            bool& m_isGone;
        };
        bool isGone = false;
        const IDllInstance* const instance = new Probe(isGone);
        delete instance;
        QVERIFY(isGone);
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestIDllInstance)
#include "tst_idllinstance.moc"
