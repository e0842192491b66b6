// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/commands/dialogcommands.h"

#include "control/controlline.h"
#include "control/entryjson.h"
#include "host/commands/dialoghost.h"
#include "host/commands/messageboxautoresponder.h"
#include "host/commands/statusreport.h"
#include "host/output/exitcode.h"
#include "host/store/storedset.h"
#include "process/background.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

#include <QApplication>
#include <QDateTime>
#include <QHash>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QProgressDialog>
#include <QRegularExpression>
#include <QSet>
#include <QTimer>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <utility>
#include <vector>

namespace {

using namespace std::chrono_literals;

const QString kType = QStringLiteral("type");

void End(ControlReply* reply, ExitCode code, const QString& error = {})
{
    reply->End(static_cast<int>(code), error);
}

bool Flag(const QJsonObject& request, const char* name)
{
    return request.value(QLatin1String(name)).toBool();
}

QJsonObject EntryLine(const Connection& entry, const std::optional<EntryApplication>& application)
{
    QJsonObject line = EntryToJson(entry, application);
    line.insert(kType, QStringLiteral("entry"));
    return line;
}

bool IsConnectionList(const QByteArray& document)
{
    return ConnectionList::Read(
        document, [](const Connection&) {});
}

} // namespace

DialogCommands::DialogCommands(const ConnectDialog& dialog, DialogHost& host, QObject* parent)
    : QObject(parent)
    , m_dialog(dialog)
    , m_host(host)
    , m_monitor(dialog)
{
}

DialogCommands::~DialogCommands()
{
    if (m_thread.valid())
        m_thread.wait();
}

void DialogCommands::Execute(const ControlRequest& request, ControlReply* reply)
{
    struct Command
    {
        QLatin1String name;
        void (DialogCommands::*function)(const ControlRequest&, ControlReply*);
    };
    static const std::array kCommands{
        Command{QLatin1String("list"), &DialogCommands::List},
        Command{QLatin1String("status"), &DialogCommands::Status},
        Command{QLatin1String("export"), &DialogCommands::Export},
        Command{QLatin1String("picture"), &DialogCommands::Picture},
        Command{QLatin1String("connect"), &DialogCommands::Connect},
        Command{QLatin1String("wait"), &DialogCommands::Wait},
        Command{QLatin1String("watch"), &DialogCommands::Watch},
        Command{QLatin1String("import"), &DialogCommands::Import},
        Command{QLatin1String("add"), &DialogCommands::Add},
        Command{QLatin1String("save"), &DialogCommands::Save},
        Command{QLatin1String("show"), &DialogCommands::Show},
        Command{QLatin1String("quit"), &DialogCommands::Quit},
    };
    const QString name = request.content.value(QLatin1String("command")).toString();
    const auto command = std::find_if(kCommands.begin(), kCommands.end(),
                                      [&name](const Command& candidate) { return name == candidate.name; });
    if (command == kCommands.end())
        End(reply, ExitCode::Usage, QStringLiteral("unknown command \"%1\"").arg(name.left(100)));
    else
        (this->*command->function)(request, reply);
}

void DialogCommands::List(const ControlRequest& /*request*/, ControlReply* reply)
{
    AnswerInBackground(
        reply,
        [this]() -> std::function<QByteArray()> {
            QHash<int, EntryApplication> applications;
            for (int row = 0; row < m_dialog.Count() && m_monitor.CountInUse() > 0; ++row)
                if (m_dialog.Status(row) != ConnectDialog::kFree)
                    if (const std::optional<EntryApplication> application = m_dialog.ApplicationOf(row))
                        applications.insert(row, *application);

            return [list = std::make_shared<ListCopy>(m_dialog.Copy()), applications] {
                QByteArray lines;
                int row = 0;
                for (const Connection& entry : ToConnections(*list)) {
                    const auto application = applications.constFind(row++);
                    const bool hasApplication = application != applications.cend();
                    lines += ControlLine::Write(
                        EntryLine(entry, hasApplication ? std::optional(*application) : std::nullopt));
                }
                return lines;
            };
        });
}

void DialogCommands::Status(const ControlRequest& /*request*/, ControlReply* reply)
{
    AnswerInBackground(
        reply,
        [this]() -> std::function<QByteArray()> {
            QByteArray lines = ControlLine::Write({{kType, QStringLiteral("host")},
                                                   {QStringLiteral("hidden"), m_dialog.Window()->isHidden()},
                                                   {QStringLiteral("entries"), m_dialog.Count()}});
            for (int row = 0; row < m_dialog.Count() && m_monitor.CountInUse() > 0; ++row)
                if (m_dialog.Status(row) != ConnectDialog::kFree)
                    lines +=
                        ControlLine::Write(EntryLine(ToConnection(m_dialog.Row(row)), m_dialog.ApplicationOf(row)));
            return [lines] {
                return lines;
            };
        });
}

void DialogCommands::Export(const ControlRequest& /*request*/, ControlReply* reply)
{
    AnswerInBackground(
        reply,
        [this]() -> std::function<QByteArray()> {
            return [list = std::make_shared<ListCopy>(m_dialog.Copy())] {
                return ControlLine::WriteParts(QString::fromUtf8(ToDocument(*list)), {{kType, QStringLiteral("data")}});
            };
        });
}

void DialogCommands::Picture(const ControlRequest& /*request*/, ControlReply* reply)
{
    SendPicture("now", reply);
    End(reply, ExitCode::Done);
}

void DialogCommands::Connect(const ControlRequest& request, ControlReply* reply)
{
    if (const QString error = BoxError(); !error.isEmpty())
        return End(reply, ExitCode::Busy, error);
    QString error;
    const QList<int> rows = RowsToConnect(request.content, &error);
    if (rows.isEmpty())
        return End(reply, ExitCode::NotConnected, error);

    const bool waits = Flag(request.content, "wait");
    auto* const report = new StatusReport(m_dialog, m_monitor, reply, StatusReport::Scope::Rows, rows);
    report->SetSending(waits);
    // The user may remove entries meanwhile.
    std::vector<std::pair<QPersistentModelIndex, QString>> entries;
    for (const int row : rows)
        entries.emplace_back(m_dialog.Entries()->index(row, 0), m_dialog.Name(row));
    const QPointer<ControlReply> guard(reply);
    bool hadBox = false;
    // A program that ends says so itself.
    if (!ConnectRows(rows, reply, &hadBox) || !guard)
        return;

    bool hasFailed = false;
    for (const auto& [entry, name] : entries) {
        if (report->HasStarted(entry))
            continue;
        hasFailed = true;
        QString reason = QStringLiteral("\"%1\" could not be connected (--trace gives the reason)");
        if (!entry.isValid())
            reason = QStringLiteral("\"%1\" was removed before it was connected");
        else if (m_dialog.Status(entry.row()) != ConnectDialog::kFree)
            reason = QStringLiteral("\"%1\" is already in use");
        else if (hadBox)
            reason = QStringLiteral("\"%1\" could not be connected");
        reply->SendLines(
            ControlLine::Write({{kType, QStringLiteral("message")}, {QStringLiteral("text"), reason.arg(name)}}));
    }
    if (Flag(request.content, "pictureDuring"))
        SendPicture("during", reply);
    if (waits)
        return EndWhenFree(request.content, report, reply, hasFailed);
    if (Flag(request.content, "picture"))
        SendPicture("end", reply);
    End(reply, hasFailed ? ExitCode::NotConnected : ExitCode::Done);
}

void DialogCommands::Wait(const ControlRequest& request, ControlReply* reply)
{
    QList<int> rows;
    for (int row = 0; row < m_dialog.Count() && m_monitor.CountInUse() > 0; ++row)
        if (m_dialog.Status(row) != ConnectDialog::kFree)
            rows.append(row);
    auto* const report = new StatusReport(m_dialog, m_monitor, reply, StatusReport::Scope::All, rows);
    EndWhenFree(request.content, report, reply, false);
}

void DialogCommands::Watch(const ControlRequest& /*request*/, ControlReply* reply)
{
    new StatusReport(m_dialog, m_monitor, reply, StatusReport::Scope::All);
    // One line for many changes: an import inserts one entry at a time.
    auto* const changes = new QTimer(reply);
    changes->setSingleShot(true);
    connect(
        changes, &QTimer::timeout, reply,
        [this, reply] {
            reply->Send({{kType, QStringLiteral("entries")},
                         {QStringLiteral("time"), TimeToJson(QDateTime::currentDateTime())},
                         {QStringLiteral("count"), m_dialog.Count()}});
        });
    const auto report = [changes] {
        changes->start(0);
    };
    connect(m_dialog.Entries(), &QAbstractItemModel::rowsInserted, changes, report);
    connect(m_dialog.Entries(), &QAbstractItemModel::rowsRemoved, changes, report);
}

void DialogCommands::Import(const ControlRequest& request, ControlReply* reply)
{
    if (const QString error = ChangeError(); !error.isEmpty())
        End(reply, ExitCode::Busy, error);
    else if (Flag(request.content, "clear"))
        Replace(QByteArray(), reply);
    else
        CheckInBackground(
            request, reply, [this, document = request.document, reply] { Replace(document, reply); });
}

/// Replaces all entries by those of `document`; an empty one has none.
void DialogCommands::Replace(const QByteArray& document, ControlReply* reply)
{
    const int before = m_dialog.Count();
    if (before > 0)
        m_dialog.Entries()->removeRows(0, before);
    if (!document.isEmpty())
        m_dialog.Append(document);
    EndOfChange(before, reply);
}

void DialogCommands::Add(const ControlRequest& request, ControlReply* reply)
{
    if (const QString error = ChangeError(); !error.isEmpty())
        return End(reply, ExitCode::Busy, error);
    CheckInBackground(request, reply, [this, document = request.document, reply] {
        const int before = m_dialog.Count();
        if (m_dialog.Append(document))
            EndOfChange(before, reply);
        else
            End(reply, ExitCode::Unusable, QStringLiteral("the list would become too long"));
    });
}

void DialogCommands::CheckInBackground(const ControlRequest& request, ControlReply* reply, Finish change)
{
    DoInBackground(
        reply,
        [this, document = request.document, reply, change = std::move(change)]() -> Work {
            return [this, document, reply, change]() -> Finish {
                const bool isList = IsConnectionList(document);
                return [this, isList, reply, change] {
                    // The user may have begun something meanwhile.
                    const QString error = ChangeError();
                    if (!isList)
                        End(reply, ExitCode::Unusable,
                            QStringLiteral("the document is not a connection list, has no entries, or too many"));
                    else if (!error.isEmpty())
                        End(reply, ExitCode::Busy, error);
                    else
                        change();
                };
            };
        });
}

void DialogCommands::EndOfChange(int before, ControlReply* reply)
{
    reply->Send({{kType, QStringLiteral("changed")},
                 {QStringLiteral("before"), before},
                 {QStringLiteral("after"), m_dialog.Count()}});
    const QString error = m_host.Save();
    End(reply, error.isEmpty() ? ExitCode::Done : ExitCode::Unusable, error);
}

void DialogCommands::Save(const ControlRequest& /*request*/, ControlReply* reply)
{
    // Saving would cancel an import that replaces the entries.
    if (m_dialog.Window()->findChild<QProgressDialog*>())
        return End(reply, ExitCode::Busy, BoxError());
    const QString error = m_host.Save();
    End(reply, error.isEmpty() ? ExitCode::Done : ExitCode::Unusable, error);
}

void DialogCommands::Show(const ControlRequest& /*request*/, ControlReply* reply)
{
    const QString error = m_host.ShowDialog();
    End(reply, error.isEmpty() ? ExitCode::Done : ExitCode::Busy, error);
}

void DialogCommands::Quit(const ControlRequest& request, ControlReply* reply)
{
    const bool isForced = Flag(request.content, "force");
    if (const QString error = ChangeError(); !error.isEmpty() && !isForced)
        return End(reply, ExitCode::Busy, error);
    if (const QString error = m_host.Save(); !error.isEmpty() && !isForced)
        return End(reply, ExitCode::Unusable, error);
    // The answer must have left this process.
    const auto quit = [this] {
        m_host.Quit();
    };
    connect(reply, &QObject::destroyed, this, quit);
    QTimer::singleShot(1s, this, quit);
    End(reply, ExitCode::Done);
}

QString DialogCommands::BoxError() const
{
    if (const QWidget* const box = QApplication::activeModalWidget())
        return QStringLiteral("a box is open in the dialog: \"%1\"").arg(box->windowTitle());
    return m_dialog.IsConnecting() ? QStringLiteral("entries are being connected") : QString();
}

QString DialogCommands::ChangeError() const
{
    const int inUse = m_monitor.CountInUse();
    if (inUse == 0)
        return BoxError();
    return inUse == 1 ? QStringLiteral("1 entry is in use") : QStringLiteral("%1 entries are in use").arg(inUse);
}

void DialogCommands::SendPicture(const char* moment, ControlReply* reply)
{
    QString error;
    const QByteArray picture = m_host.Picture(&error);
    if (!error.isEmpty())
        reply->Send({{kType, QStringLiteral("message")}, {QStringLiteral("text"), error}});
    reply->SendLines(ControlLine::WriteParts(
        picture, {{kType, QStringLiteral("picture")}, {QStringLiteral("moment"), QLatin1String(moment)}}));
}

void DialogCommands::AnswerInBackground(ControlReply* reply, std::function<std::function<QByteArray()>()> begin)
{
    DoInBackground(
        reply,
        [reply, begin = std::move(begin)]() -> Work {
            return [reply, makeLines = begin()]() -> Finish {
                return [reply, lines = makeLines()] {
                    reply->SendLines(lines);
                    End(reply, ExitCode::Done);
                };
            };
        });
}

void DialogCommands::DoInBackground(ControlReply* reply, Begin begin)
{
    m_waiting.push_back({reply, std::move(begin)});
    DoNext();
}

void DialogCommands::DoNext()
{
    // Peers that ask and go take no memory and no time.
    while (!m_isWorking && !m_waiting.empty()) {
        const Waiting next = std::move(m_waiting.front());
        m_waiting.pop_front();
        if (!next.reply)
            continue;
        m_isWorking = true;
        m_thread = RunInBackground([this, reply = next.reply, work = next.begin()] {
            const auto end = [this, reply, finish = work()] {
                m_isWorking = false;
                if (reply)
                    finish();
                DoNext();
            };
            QMetaObject::invokeMethod(this, end, Qt::QueuedConnection);
        });
    }
}

QList<int> DialogCommands::RowsToConnect(const QJsonObject& request, QString* error) const
{
    const bool isByTick = Flag(request, "selected");
    const QStringList names = request.value(QLatin1String("names")).toVariant().toStringList();
    const QSet<QString> wanted(names.begin(), names.end());
    QSet<QString> known;
    QList<int> rows;
    for (int row = 0; row < m_dialog.Count(); ++row) {
        const QString name = m_dialog.Name(row);
        if (isByTick ? !m_dialog.IsTicked(row) : !wanted.contains(name))
            continue;
        known.insert(name);
        rows.append(row);
    }
    QStringList unknown;
    for (const QString& name : names)
        if (!isByTick && !known.contains(name))
            unknown.append(QStringLiteral("\"%1\"").arg(name));
    if (unknown.isEmpty()) {
        *error = isByTick ? QStringLiteral("no entry is ticked") : QStringLiteral("no entry is named");
        return rows;
    }
    *error = QStringLiteral("there is no entry called %1").arg(unknown.join(QStringLiteral(", ")));
    return {};
}

bool DialogCommands::ConnectRows(const QList<int>& rows, ControlReply* reply, bool* hadBox)
{
    MessageBoxAutoResponder responder{QLatin1String(ConnectDialog::kProblemBox)};
    connect(&responder, &MessageBoxAutoResponder::BoxOpened, reply,
            [reply, hadBox](const QString& title, const QString& text) {
                *hadBox = true;
                // One line, which quotes the entry's name exactly.
                static const QRegularExpression kLineBreaks(QStringLiteral("\\n+"));
                const QString line = QString(text).replace(kLineBreaks, QStringLiteral(" "));
                reply->Send({{kType, QStringLiteral("message")},
                             {QStringLiteral("text"), QStringLiteral("%1: %2").arg(title, line)}});
            });
    return m_dialog.ConnectEntries(rows);
}

void DialogCommands::EndWhenFree(const QJsonObject& request, StatusReport* report, ControlReply* reply, bool hasFailed)
{
    const auto endIfFree = [this, request, report, reply, hasFailed] {
        if (!report->IsOver())
            return;
        m_monitor.disconnect(report);
        if (Flag(request, "picture"))
            SendPicture("end", reply);
        const bool countsExits = !Flag(request, "ignoreExitCodes");
        End(reply, hasFailed || (countsExits && report->HasFailed()) ? ExitCode::NotConnected : ExitCode::Done);
    };
    connect(&m_monitor, &StatusMonitor::InUseChanged, report, endIfFree);
    endIfFree();
}
