#include "host/headless/headlessjob.h"

#include "files/atomicfile.h"
#include "files/boundedfile.h"
#include "host/headless/connectionreport.h"
#include "host/headless/dialogpicture.h"
#include "host/output/console.h"
#include "process/textline.h"
#include "userinterface/vexelconnectdlg/connectionlist.h"

#include <QDateTime>
#include <QEventLoop>
#include <QRegularExpression>
#include <QScopedValueRollback>

#include <algorithm>
#include <optional>

HeadlessJob::HeadlessJob(const HostOptions& options, const ConnectDialog& dialog, QObject* parent)
    : QObject(parent)
    , m_options(options)
    , m_dialog(dialog)
    , m_monitor(dialog)
{
    connect(&m_autoResponder, &MessageBoxAutoResponder::BoxOpened, this, &HeadlessJob::OnBoxOpened);
    connect(&m_monitor, &StatusMonitor::StatusChanged, this, &HeadlessJob::OnStatusChanged);
}

ExitCode HeadlessJob::Run()
{
    if (!ImportAndAdd())
        return m_result;
    if (!m_options.fileToExport.isEmpty())
        Export();
    if (m_options.list)
        List();
    TakeScreenshot(m_options.screenshotBefore);
    if (m_options.Connects() && !Connect())
        return m_result;
    TakeScreenshot(m_options.screenshotDuring);
    if (m_options.wait)
        Wait();
    TakeScreenshot(m_options.screenshot);
    return m_result;
}

void HeadlessJob::Stop()
{
    m_stopped = true;
    emit Stopped();
}

/// Imports and adds all files or none, so that the same command can be repeated. Returns false if a file could not be
/// used; the list is then unchanged.
bool HeadlessJob::ImportAndAdd()
{
    const QScopedValueRollback changing(m_isChangingEntries, true);
    QStringList files = m_options.filesToAdd;
    const bool imports = !m_options.fileToImport.isEmpty();
    if (imports)
        files.prepend(m_options.fileToImport);

    // The entries that an import replaces must not take up room. Where editing has made the list so large that it could
    // not be put back after a failure, they stay until nothing can fail any more.
    const QByteArray replaced = imports ? m_dialog.Document() : QByteArray();
    const bool removesFirst = imports && m_dialog.Count() <= ConnectionList::kMaximumEntries &&
                              replaced.size() <= ConnectionList::kMaximumSize;
    if (removesFirst)
        RemoveEntries(0, m_dialog.Count());
    const int kept = m_dialog.Count();
    const bool ok = std::all_of(files.cbegin(), files.cend(), [this](const QString& file) { return Append(file); });
    if (!ok)
        RemoveEntries(kept, m_dialog.Count() - kept);
    if (!ok && removesFirst)
        m_dialog.Append(replaced);
    else if (ok && imports)
        RemoveEntries(0, kept);
    return ok;
}

void HeadlessJob::RemoveEntries(int first, int count)
{
    if (count > 0)
        m_dialog.Entries()->removeRows(first, count);
}

bool HeadlessJob::Append(const QString& fileName)
{
    QString error;
    const std::optional<QByteArray> document = ReadRegularFile(fileName, ConnectionList::kMaximumSize, &error);
    if (document && m_dialog.Append(*document))
        return true;
    Fail(ExitCode::Unusable,
         document ? QStringLiteral("%1 is not a connection list, has no entries, or makes the list too long (the most "
                                   "are %2 entries)")
                        .arg(fileName)
                        .arg(ConnectionList::kMaximumEntries)
                  : QStringLiteral("cannot read %1: %2").arg(fileName, error));
    return false;
}

void HeadlessJob::Export()
{
    const QByteArray document = m_dialog.Document();
    if (m_options.fileToExport == HostOptions::kStandardOutput)
        CheckPrinted(Console::PrintBytes(document));
    else if (const QString error = ReplaceRegularFile(m_options.fileToExport, document); !error.isEmpty())
        Fail(ExitCode::Usage, QStringLiteral("cannot write %1: %2").arg(m_options.fileToExport, error));
}

void HeadlessJob::List()
{
    CheckPrinted(m_options.json ? Console::PrintBytes(ConnectionJson(*m_dialog.Entries()))
                                : Console::PrintRaw(ConnectionTable(*m_dialog.Entries())));
}

/// Connects the requested entries. Returns false if nothing was connected because an entry is missing or none is
/// ticked.
bool HeadlessJob::Connect()
{
    for (const QString& name : m_options.namesToConnect)
        if (m_dialog.RowsNamed(name).isEmpty())
            Fail(ExitCode::NotConnected, QStringLiteral("there is no entry called \"%1\"").arg(name));
    const QList<int> rows = RowsToConnect();
    if (m_options.connectSelected && rows.isEmpty())
        Fail(ExitCode::NotConnected, QStringLiteral("no entry is ticked"));
    if (m_result == ExitCode::NotConnected)
        return false;

    ConnectRows(rows);
    for (const int row : rows) {
        if (m_rowsStarted.contains(row))
            continue;
        // If a message box opened, it gave the reason; otherwise only the traces do.
        const QString hint =
            m_boxOpened || m_options.trace ? QString() : QStringLiteral(" (use --trace for the reason)");
        Fail(ExitCode::NotConnected, QStringLiteral("\"%1\" could not be connected%2").arg(m_dialog.Name(row), hint));
    }
    return true;
}

QList<int> HeadlessJob::RowsToConnect() const
{
    QList<int> rows;
    for (int row = 0; row < m_dialog.Count(); ++row)
        if (m_options.connectSelected ? m_dialog.IsTicked(row) : m_options.namesToConnect.contains(m_dialog.Name(row)))
            rows.append(row);
    return rows;
}

/// Connects exactly the entries in `rows` and restores the ticks.
void HeadlessJob::ConnectRows(const QList<int>& rows)
{
    const QScopedValueRollback changing(m_isChangingEntries, true);
    const TickRestorer restorer(m_dialog);
    const QSet<int> wanted(rows.begin(), rows.end());
    for (int row = 0; row < m_dialog.Count(); ++row)
        if (wanted.contains(row) || m_dialog.IsTicked(row))
            m_dialog.SetTicked(row, wanted.contains(row));
    m_dialog.PressConnect();
}

void HeadlessJob::Wait()
{
    if (m_monitor.CountInUse() == 0 || m_stopped)
        return;
    QEventLoop loop;
    connect(this, &HeadlessJob::Stopped, &loop, &QEventLoop::quit);
    connect(&m_monitor, &StatusMonitor::InUseChanged, &loop, [&loop](int count) {
        if (count == 0)
            loop.quit();
    });
    loop.exec();
}

void HeadlessJob::TakeScreenshot(const QString& fileName)
{
    if (fileName.isEmpty() || m_stopped)
        return;
    if (const QString error = WriteDialogPicture(m_dialog, fileName); !error.isEmpty())
        Fail(ExitCode::Usage, error);
}

void HeadlessJob::Fail(ExitCode code, const QString& message)
{
    Console::PrintError(message);
    RecordFailure(code);
}

void HeadlessJob::CheckPrinted(bool isPrinted)
{
    if (!isPrinted)
        RecordFailure(ExitCode::Usage);
}

void HeadlessJob::RecordFailure(ExitCode code)
{
    if (m_result == ExitCode::Done)
        m_result = code;
}

void HeadlessJob::OnBoxOpened(const QString& title, const QString& text)
{
    m_boxOpened = true;
    // Joins the paragraphs into one line; the line that follows quotes the entry's name exactly.
    static const QRegularExpression kLineBreaks(QStringLiteral("\\n+"));
    Console::PrintError(QStringLiteral("%1: %2").arg(title, QString(text).replace(kLineBreaks, QStringLiteral(" "))));
}

void HeadlessJob::OnStatusChanged(const StatusChange& change)
{
    if (change.to != ConnectDialog::kFree)
        m_rowsStarted.insert(change.row);
    if (m_options.wait) {
        Console::Print(QStringLiteral("%1 ").arg(QDateTime::currentDateTime().toString(Qt::ISODateWithMs)) +
                       OneLine(change.name) + QStringLiteral(": ") + change.fromText + QStringLiteral(" -> ") +
                       change.toText);
    }
}
