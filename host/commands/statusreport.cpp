// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/commands/statusreport.h"

#include "control/controlreply.h"
#include "control/entryjson.h"
#include "host/plugin/connectdialog.h"

#include <QDateTime>

#include <algorithm>

namespace {

bool IsFailure(const EntryApplication& application)
{
    return application.isCrash || application.exitCode.value_or(0) != 0;
}

QJsonObject ToLine(const StatusChange& change)
{
    QJsonObject line{{QStringLiteral("type"), QStringLiteral("status")},
                     {QStringLiteral("time"), TimeToJson(QDateTime::currentDateTime())},
                     {QStringLiteral("name"), change.name},
                     {QStringLiteral("from"), change.from},
                     {QStringLiteral("fromText"), Connection::EnglishStatusName(change.from)},
                     {QStringLiteral("to"), change.to},
                     {QStringLiteral("toText"), Connection::EnglishStatusName(change.to)}};
    if (change.application)
        InsertApplication(line, *change.application);
    return line;
}

} // namespace

StatusReport::StatusReport(const ConnectDialog& dialog, const StatusMonitor& monitor, ControlReply* reply, Scope scope,
                           const QList<int>& rows)
    : QObject(reply)
    , m_dialog(dialog)
    , m_pReply(reply)
    , m_scope(scope)
{
    for (const int row : rows)
        (scope == Scope::Rows ? m_rows : m_started).insert(Index(row));
    connect(&monitor, &StatusMonitor::StatusChanged, this, &StatusReport::OnStatusChanged);
}

bool StatusReport::IsOver() const
{
    return std::none_of(
        m_started.cbegin(), m_started.cend(),
        [this](const QPersistentModelIndex& entry) {
            return entry.isValid() && m_dialog.Status(entry.row()) != ConnectDialog::kFree;
        });
}

void StatusReport::OnStatusChanged(const StatusChange& change)
{
    const QPersistentModelIndex index = Index(change.row);
    if (m_scope == Scope::Rows && !m_rows.contains(index))
        return;
    if (m_isSending)
        m_pReply->Send(ToLine(change));
    if (change.to != ConnectDialog::kFree)
        m_started.insert(index);
    else
        m_hasFailed = m_hasFailed || (change.application && IsFailure(*change.application));
}

QPersistentModelIndex StatusReport::Index(int row) const
{
    return m_dialog.Entries()->index(row, 0);
}
