#include "host/headless/headlessjob.h"

#include "files/atomicfile.h"
#include "files/boundedfile.h"
#include "host/headless/connectionreport.h"
#include "host/headless/dialogpicture.h"
#include "host/output/console.h"
#include "process/textline.h"

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
    , m_monitor(dialog.Entries())
{
    connect(&m_answerer, &MessageBoxAutoResponder::BoxOpened, this, &HeadlessJob::OnBoxOpened);
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
    TakePicture(m_options.screenshotBefore);
    if (m_options.Connects() && !Connect())
        return m_result;
    TakePicture(m_options.screenshotDuring);
    if (m_options.wait)
        Wait();
    TakePicture(m_options.screenshot);
    return m_result;
}

void HeadlessJob::Stop()
{
    m_stopped = true;
    emit Stopped();
}

/// All the files or none: the same command can then be given again. False when there was one that could not be taken;
/// the list then is as it was.
bool HeadlessJob::ImportAndAdd()
{
    const QScopedValueRollback changing(m_isChangingEntries, true);
    QStringList files = m_options.filesToAdd;
    const bool imports = !m_options.fileToImport.isEmpty();
    if (imports)
        files.prepend(m_options.fileToImport);

    const int before = m_dialog.Count();
    const bool good = std::all_of(files.cbegin(), files.cend(), [this](const QString& file) { return Append(file); });
    // What an import replaces goes last, when nothing can fail any more: so nothing has to be brought back.
    if (!good && m_dialog.Count() > before)
        m_dialog.Entries()->removeRows(before, m_dialog.Count() - before);
    else if (good && imports && before > 0)
        m_dialog.Entries()->removeRows(0, before);
    return good;
}

bool HeadlessJob::Append(const QString& fileName)
{
    QString error;
    const std::optional<QByteArray> document = ReadRegularFile(fileName, kMaximumFileSize, &error);
    if (document && m_dialog.Append(*document))
        return true;
    Fail(ExitCode::Unusable, document ? QStringLiteral("%1 is not a connection list, or holds no entry").arg(fileName)
                                      : QStringLiteral("cannot read %1: %2").arg(fileName, error));
    return false;
}

void HeadlessJob::Export()
{
    const QByteArray document = m_dialog.Document();
    if (m_options.fileToExport == HostOptions::kStandardOutput)
        NotePrinted(Console::PrintBytes(document));
    else if (const QString error = ReplaceRegularFile(m_options.fileToExport, document); !error.isEmpty())
        Fail(ExitCode::Usage, QStringLiteral("cannot write %1: %2").arg(m_options.fileToExport, error));
}

void HeadlessJob::List()
{
    NotePrinted(m_options.json ? Console::PrintBytes(ConnectionJson(*m_dialog.Entries()))
                               : Console::PrintRaw(ConnectionTable(*m_dialog.Entries())));
}

/// False when nothing was connected because the list does not hold what was asked for.
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

    Press(rows);
    for (const int row : rows) {
        if (m_rowsStarted.contains(row))
            continue;
        // A box has already said why; else only the traces do.
        const QString hint = m_boxOpened || m_options.trace ? QString() : QStringLiteral(" (--trace says why)");
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

/// Connects exactly the entries of `rows`; the ticks are afterwards as they were.
void HeadlessJob::Press(const QList<int>& rows)
{
    const QScopedValueRollback changing(m_isChangingEntries, true);
    const TickRestorer keeper(m_dialog);
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

void HeadlessJob::TakePicture(const QString& fileName)
{
    if (fileName.isEmpty() || m_stopped)
        return;
    if (const QString error = WriteDialogPicture(m_dialog, fileName); !error.isEmpty())
        Fail(ExitCode::Usage, error);
}

void HeadlessJob::Fail(ExitCode code, const QString& message)
{
    Console::PrintError(message);
    NoteFailure(code);
}

void HeadlessJob::NotePrinted(bool isPrinted)
{
    if (!isPrinted)
        NoteFailure(ExitCode::Usage);
}

void HeadlessJob::NoteFailure(ExitCode code)
{
    if (m_result == ExitCode::Done)
        m_result = code;
}

void HeadlessJob::OnBoxOpened(const QString& title, const QString& text)
{
    m_boxOpened = true;
    // One line for all paragraphs; the one that follows names the entry exactly.
    static const QRegularExpression kBreaks(QStringLiteral("\\n+"));
    Console::PrintError(QStringLiteral("%1: %2").arg(title, QString(text).replace(kBreaks, QStringLiteral(" "))));
}

void HeadlessJob::OnStatusChanged(int row, const QString& name, const QString& from, const QString& to)
{
    if (m_dialog.Status(row) != ConnectDialog::kFree)
        m_rowsStarted.insert(row);
    if (m_options.wait) {
        Console::Print(QStringLiteral("%1 ").arg(QDateTime::currentDateTime().toString(Qt::ISODateWithMs)) +
                       OneLine(name) + QStringLiteral(": ") + from + QStringLiteral(" -> ") + to);
    }
}
