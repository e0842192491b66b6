#include "host/output/notices.h"
#include "tests/host/errorsto.h"

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
        notices.ShowThrough([&](const QString& text) { shown.append(text); });
        notices.Say(QStringLiteral("one"));
        notices.Say(QStringLiteral("two"), QStringLiteral("zwei"));
        notices.ShowUnread(QStringLiteral("three"));
    }
    QCOMPARE(shown, QStringList());
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("vexelhost: one\nvexelhost: two\n"));
}

void TestNotices::noticesAreShownWhenStandardErrorIsNotRead()
{
    const ErrorsTo errors(QProcess::nullDevice());
    QStringList shown;
    Notices notices;
    notices.ShowThrough([&](const QString& text) { shown.append(text); });
    notices.Say(QStringLiteral("one"));
    notices.Say(QStringLiteral("two"), QStringLiteral("zwei"));
    notices.ShowUnread(QStringLiteral("three"));
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
    notices.ShowThrough(show);
    QCOMPARE(shown, QStringList());
    notices.ShowThrough({});
    notices.Say(QStringLiteral("one"));
    notices.Say(QStringLiteral("two"));
    QCOMPARE(shown, QStringList());
    notices.ShowThrough(show);
    QCOMPARE(shown, QStringList(QStringLiteral("one\n\ntwo")));
    // Each of them once.
    notices.ShowThrough(show);
    QCOMPARE(shown.size(), 1);
}

QTEST_GUILESS_MAIN(TestNotices)
#include "tst_notices.moc"
