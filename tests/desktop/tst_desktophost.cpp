#include "tests/desktop/desktop.h"

#include <QRegularExpression>
#include <QTemporaryDir>

/// The host with its window on a desktop.
class tst_DesktopHost : public QObject
{
    Q_OBJECT

private slots:
    void sizeOutlivesTheRun();

private:
    static QString FindWindow()
    {
        return Desktop::Do({QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                            QStringLiteral("^Vexel - Connect Dialog$")})
            .section(QLatin1Char('\n'), 0, 0);
    }
    static QSize SizeOf(const QString& window)
    {
        const QString geometry = Desktop::Do({QStringLiteral("getwindowgeometry"), window});
        const auto match = QRegularExpression(QStringLiteral("Geometry: (\\d+)x(\\d+)")).match(geometry);
        return {match.captured(1).toInt(), match.captured(2).toInt()};
    }
};

void tst_DesktopHost::sizeOutlivesTheRun()
{
    const QTemporaryDir directory;
    const QStringList arguments{QStringLiteral("--config"), directory.filePath(QStringLiteral("config")),
                                QStringLiteral("--data"), directory.path()};
    const QSize wanted(777, 333);
    for (int run = 0; run < 2; ++run) {
        QProcess host;
        host.setProcessChannelMode(QProcess::ForwardedChannels);
        host.start(QStringLiteral(VEXEL_HOST), arguments);
        QString window;
        QTRY_VERIFY_WITH_TIMEOUT(!(window = FindWindow()).isEmpty(), 20000);
        if (run == 0) {
            QVERIFY(SizeOf(window) != wanted);
            Desktop::Do({QStringLiteral("windowsize"), QStringLiteral("--sync"), window,
                         QString::number(wanted.width()), QString::number(wanted.height())});
        }
        QTRY_COMPARE(SizeOf(window), wanted);
        host.terminate();
        QVERIFY(host.waitForFinished());
        QCOMPARE(host.exitStatus(), QProcess::NormalExit);
        QCOMPARE(host.exitCode(), 0);
    }
}

QTEST_MAIN(tst_DesktopHost)
#include "tst_desktophost.moc"
