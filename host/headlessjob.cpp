#include "host/headlessjob.h"

#include "host/connectionreport.h"
#include "host/console.h"
#include "host/dialogpicture.h"
#include "host/listfile.h"
#include "host/textline.h"

#include <QDateTime>
#include <QEventLoop>
#include <QRegularExpression>
#include <QScopedValueRollback>

#include <algorithm>

HeadlessJob::HeadlessJob(const HostOptions& options, const ConnectDialog& dialog, QObject* parent)
    : QObject(parent)
    , m_Options(options)
    , m_Dialog(dialog)
    , m_Monitor(dialog.Entries())
{
    connect(&m_Answerer, &BoxAnswerer::BoxOpened, this, &HeadlessJob::OnBoxOpened);
    connect(&m_Monitor, &StatusMonitor::StatusChanged, this, &HeadlessJob::OnStatusChanged);
}

ExitCode HeadlessJob::Run()
{
    if (!ImportAndAdd())
        return m_Result;
    if (!m_Options.fileToExport.isEmpty())
        Export();
    if (m_Options.list)
        List();
    TakePicture(m_Options.screenshotBefore);
    if (m_Options.Connects() && !Connect())
        return m_Result;
    TakePicture(m_Options.screenshotDuring);
    if (m_Options.wait)
        Wait();
    TakePicture(m_Options.screenshot);
    return m_Result;
}

void HeadlessJob::Stop()
{
    m_Stopped = true;
    emit Stopped();
}

/// All the files or none: the same command can then be given again. False when there was one that could not be taken;
/// the list then is as it was.
bool HeadlessJob::ImportAndAdd()
{
    const QScopedValueRollback changing(m_IsChangingEntries, true);
    QStringList files = m_Options.filesToAdd;
    const bool imports = !m_Options.fileToImport.isEmpty();
    if (imports)
        files.prepend(m_Options.fileToImport);

    const int before = m_Dialog.Count();
    const bool good = std::all_of(files.cbegin(), files.cend(), [this](const QString& file) { return Append(file); });
    // What an import replaces goes last, when nothing can fail any more: so nothing has to be brought back.
    if (!good && m_Dialog.Count() > before)
        m_Dialog.Entries()->removeRows(before, m_Dialog.Count() - before);
    else if (good && imports && before > 0)
        m_Dialog.Entries()->removeRows(0, before);
    return good;
}

bool HeadlessJob::Append(const QString& fileName)
{
    const ListFile file = ReadListFile(fileName);
    if (file.error.isEmpty() && m_Dialog.Append(file.content))
        return true;
    Fail(ExitCode::Unusable, file.error.isEmpty()
                                 ? QStringLiteral("%1 is not a connection list, or holds no entry").arg(fileName)
                                 : file.error);
    return false;
}

void HeadlessJob::Export()
{
    const QByteArray document = m_Dialog.Document();
    if (m_Options.fileToExport == HostOptions::s_standardOutput)
        NotePrinted(Console::PrintBytes(document));
    else if (const QString error = WriteListFile(m_Options.fileToExport, document); !error.isEmpty())
        Fail(ExitCode::Usage, error);
}

void HeadlessJob::List()
{
    NotePrinted(m_Options.json ? Console::PrintBytes(ConnectionJson(*m_Dialog.Entries()))
                               : Console::PrintRaw(ConnectionTable(*m_Dialog.Entries())));
}

/// False when nothing was connected because the list does not hold what was asked for.
bool HeadlessJob::Connect()
{
    for (const QString& name : m_Options.namesToConnect) {
        if (m_Dialog.RowsNamed(name).isEmpty())
            Fail(ExitCode::NotConnected, QStringLiteral("there is no entry called \"%1\"").arg(name));
    }
    const QList<int> rows = RowsToConnect();
    if (m_Options.connectSelected && rows.isEmpty())
        Fail(ExitCode::NotConnected, QStringLiteral("no entry is ticked"));
    if (m_Result == ExitCode::NotConnected)
        return false;

    Press(rows);
    for (const int row : rows) {
        if (m_RowsStarted.contains(row))
            continue;
        // A box has already said why; else only the traces do.
        const QString hint = m_BoxOpened || m_Options.trace ? QString() : QStringLiteral(" (--trace says why)");
        Fail(ExitCode::NotConnected, QStringLiteral("\"%1\" could not be connected%2").arg(m_Dialog.Name(row), hint));
    }
    return true;
}

QList<int> HeadlessJob::RowsToConnect() const
{
    QList<int> rows;
    for (int row = 0; row < m_Dialog.Count(); ++row) {
        if (m_Options.connectSelected ? m_Dialog.IsTicked(row) : m_Options.namesToConnect.contains(m_Dialog.Name(row)))
            rows.append(row);
    }
    return rows;
}

/// Connects exactly the entries of `rows`; the ticks are afterwards as they were.
void HeadlessJob::Press(const QList<int>& rows)
{
    const QScopedValueRollback changing(m_IsChangingEntries, true);
    const TickKeeper keeper(m_Dialog);
    const QSet<int> wanted(rows.begin(), rows.end());
    for (int row = 0; row < m_Dialog.Count(); ++row) {
        if (wanted.contains(row) || m_Dialog.IsTicked(row))
            m_Dialog.SetTicked(row, wanted.contains(row));
    }
    m_Dialog.PressConnect();
}

void HeadlessJob::Wait()
{
    if (m_Monitor.CountInUse() == 0 || m_Stopped)
        return;
    QEventLoop loop;
    connect(this, &HeadlessJob::Stopped, &loop, &QEventLoop::quit);
    connect(&m_Monitor, &StatusMonitor::InUseChanged, &loop, [&loop](int count) {
        if (count == 0)
            loop.quit();
    });
    loop.exec();
}

void HeadlessJob::TakePicture(const QString& fileName)
{
    if (fileName.isEmpty() || m_Stopped)
        return;
    if (const QString error = WriteDialogPicture(m_Dialog, fileName); !error.isEmpty())
        Fail(ExitCode::Usage, error);
}

void HeadlessJob::Fail(ExitCode code, const QString& message)
{
    Console::Complain(message);
    NoteFailure(code);
}

void HeadlessJob::NotePrinted(bool isPrinted)
{
    if (!isPrinted)
        NoteFailure(ExitCode::Usage);
}

void HeadlessJob::NoteFailure(ExitCode code)
{
    if (m_Result == ExitCode::Done)
        m_Result = code;
}

void HeadlessJob::OnBoxOpened(const QString& title, const QString& text)
{
    m_BoxOpened = true;
    // One line for all paragraphs; the one that follows names the entry exactly.
    static const QRegularExpression s_breaks(QStringLiteral("\\n+"));
    Console::Complain(QStringLiteral("%1: %2").arg(title, QString(text).replace(s_breaks, QStringLiteral(" "))));
}

void HeadlessJob::OnStatusChanged(int row, const QString& name, const QString& from, const QString& to)
{
    if (m_Dialog.Status(row) != ConnectDialog::Free)
        m_RowsStarted.insert(row);
    if (m_Options.wait) {
        Console::Print(QStringLiteral("%1 ").arg(QDateTime::currentDateTime().toString(Qt::ISODateWithMs)) +
                       OneLine(name) + QStringLiteral(": ") + from + QStringLiteral(" -> ") + to);
    }
}
