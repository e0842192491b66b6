// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/output/notices.h"
#include "tests/support/system/errorsto.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

class TestNotices : public QObject
{
    Q_OBJECT

private slots:
    void noticesGoToStandardErrorWhenItIsRead();
    void noticesAreShownWhenStandardErrorIsNotRead();
    void noticesAreKeptUntilTheyCanBeShown();
};

void TestNotices::noticesGoToStandardErrorWhenItIsRead()
{
    const QTemporaryDir directory;
    const QString fileName = directory.filePath(QStringLiteral("errors"));
    QStringList shown;
    {
        const ErrorsTo errors(fileName);
        Notices notices;
        notices.SetDisplay([&](const QString& text) { shown.append(text); });
        notices.Report(QStringLiteral("one"));
        notices.Report(QStringLiteral("two"), QStringLiteral("zwei"));
        notices.ShowIfUnread(QStringLiteral("three"));
    }
    QCOMPARE(shown, QStringList());
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(),
             QByteArray("NAME: one\nNAME: two\n").replace("NAME", QCoreApplication::applicationName().toUtf8()));
}

void TestNotices::noticesAreShownWhenStandardErrorIsNotRead()
{
    const ErrorsTo errors(QProcess::nullDevice());
    QStringList shown;
    Notices notices;
    notices.SetDisplay([&](const QString& text) { shown.append(text); });
    notices.Report(QStringLiteral("one"));
    notices.Report(QStringLiteral("two"), QStringLiteral("zwei"));
    notices.ShowIfUnread(QStringLiteral("three"));
    QCOMPARE(shown, QStringList({QStringLiteral("one"), QStringLiteral("zwei"), QStringLiteral("three")}));
}

void TestNotices::noticesAreKeptUntilTheyCanBeShown()
{
    const ErrorsTo errors(QProcess::nullDevice());
    QStringList shown;
    const auto show = [&](const QString& text) {
        shown.append(text);
    };
    Notices notices;
    notices.SetDisplay(show);
    QCOMPARE(shown, QStringList());
    notices.SetDisplay({});
    notices.Report(QStringLiteral("one"));
    notices.Report(QStringLiteral("two"));
    QCOMPARE(shown, QStringList());
    notices.SetDisplay(show);
    QCOMPARE(shown, QStringList(QStringLiteral("one\n\ntwo")));
    // Each of them once.
    notices.SetDisplay(show);
    QCOMPARE(shown.size(), 1);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestNotices)
#include "tst_notices.moc"
