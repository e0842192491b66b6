// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/siblingname.h"
#include "tests/support/testmain.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

class TestSiblingName : public QObject
{
    Q_OBJECT

private slots:
    void nameHasMarkAndUtcTime()
    {
        const QDateTime time(QDate(2026, 3, 4), QTime(10, 11, 12, 345), QTimeZone(3600));
        QCOMPARE(UniqueSiblingName(QStringLiteral("/no/such/list.json"), QStringLiteral(".mark-"), time),
                 QStringLiteral("/no/such/list.json.mark-20260304T091112345"));
    }

    void existingNamesAreSkipped()
    {
        const QTemporaryDir directory;
        const QString file = directory.filePath(QStringLiteral("list.json"));
        const QDateTime time = QDateTime::currentDateTime();
        const auto next = [&] {
            return UniqueSiblingName(file, QStringLiteral(".mark-"), time);
        };
        const QString first = next();
        QFile taken(first);
        QVERIFY(taken.open(QIODevice::WriteOnly));
        QCOMPARE(next(), first + QStringLiteral("-2"));
        QVERIFY(QDir().mkdir(next()));
        QCOMPARE(next(), first + QStringLiteral("-3"));
        // A dangling link: writing to it would create its target.
        if (!QFile::link(directory.filePath(QStringLiteral("nowhere")), next()))
            QSKIP("This user cannot make links here.");
        QCOMPARE(next(), first + QStringLiteral("-4"));
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestSiblingName)
#include "tst_siblingname.moc"
