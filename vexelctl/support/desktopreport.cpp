// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/support/desktopreport.h"

#include "host/system/desktop.h"
#include "vexelctl/support/supportreport.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <chrono>

namespace {

using namespace std::chrono_literals;

/// What the host prints, and why it printed nothing else.
struct Answer
{
    QJsonObject description;
    QString error;
};

Answer AskHost()
{
    constexpr std::chrono::milliseconds kPatience = 30s;
    QProcess host;
    host.start(QCoreApplication::applicationDirPath() + QStringLiteral("/vexelhost"),
               {QStringLiteral("--describe-desktop")});
    // The destructor kills a host that does not answer.
    if (!host.waitForFinished(kPatience.count()))
        return {{}, QStringLiteral("unknown: %1").arg(host.errorString())};
    const QJsonDocument answer = QJsonDocument::fromJson(host.readAllStandardOutput());
    if (answer.isObject())
        return {answer.object(), {}};
    const QString error = QString::fromUtf8(host.readAllStandardError()).section(QLatin1Char('\n'), 0, 0);
    return {{}, QStringLiteral("unknown: %1").arg(error.isEmpty() ? QStringLiteral("the host says nothing") : error)};
}

} // namespace

void ReportDesktop(SupportReport& report)
{
    const Answer answer = AskHost();
    report.BeginSection(QStringLiteral("Desktop"));
    report.AddFact(QStringLiteral("state"),
                   answer.error.isEmpty() ? QStringLiteral("as the host finds it") : answer.error);
    report.AddFact(QStringLiteral("platform"), answer.description.value(QLatin1String("platform")));
    report.AddFact(QStringLiteral("widget style"), answer.description.value(QLatin1String("style")));
    QList<QJsonArray> rows;
    const QJsonArray screens = answer.description.value(QLatin1String("screens")).toArray();
    for (const auto& screen : screens) {
        // As texts: the report prints whole numbers.
        const auto number = [&screen](const char* key) {
            return QString::number(screen[QLatin1String(key)].toDouble());
        };
        rows.append(
            {screen[QLatin1String("name")], screen[QLatin1String("size")], number("scale"), number("dotsPerInch")});
    }
    report.AddTable(
        QStringLiteral("screens"),
        {QStringLiteral("Name"), QStringLiteral("Size"), QStringLiteral("Scale"), QStringLiteral("Dots per inch")},
        rows);
}
