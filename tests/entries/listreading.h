// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "tests/support/tracerecorder.h"
#include "userinterface/vexelconnectdlg/formats/boundedxmlreader.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <deque>
#include <vector>

/// The result of reading one document.
struct Reading
{
    bool result = false;
    std::deque<Connection> entries; ///< in the order of the calls of the consumer
    QList<TraceRecorder::Report> reports;
};

inline Reading ReadList(const QByteArray& document, const ConnectionList::Room& room = {})
{
    const TraceRecorder recorder;
    Reading reading;
    reading.result = ConnectionList::Read(
        document, [&reading](const Connection& entry) { reading.entries.push_back(entry); }, room);
    reading.reports = recorder.Reports();
    return reading;
}

inline QByteArray WriteList(const std::deque<Connection>& entries)
{
    std::vector<const Connection*> pointers;
    for (const Connection& entry : entries)
        pointers.push_back(&entry);
    return ConnectionList::Write(pointers);
}

/// A list of `count` default entries, as short as can be.
inline QByteArray DefaultEntries(int count)
{
    return "<ConnectionEntries>" + QByteArray("<Connection/>").repeated(count) + "</ConnectionEntries>";
}

/// The declaration and the root element around `content`.
inline QByteArray InRoot(const QByteArray& content)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<ConnectionEntries>" + content + "</ConnectionEntries>\n";
}

/// The trace message for a document with an XML error: the place and the reason that the parser reports.
inline QString ParserMessage(const QByteArray& document)
{
    BoundedXmlReader xml(document);
    while (!xml.atEnd())
        xml.readNext();
    return QStringLiteral("XML parsing error occurred in row %1 column %2. \"%3\"")
        .arg(QString::number(xml.lineNumber()), QString::number(xml.columnNumber()), xml.errorString());
}

/// Whether `reports` is exactly one trace of the model.
inline bool IsModelTrace(const QList<TraceRecorder::Report>& reports, const QString& message, quint16 line)
{
    return reports.size() == 1 && reports.first().kind == ErrorHandler::Trace && reports.first().message == message &&
           reports.first().sourceFile == QLatin1String("userinterface/vexelconnectdlg/connectionsmodel") &&
           reports.first().line == line;
}

inline bool IsXmlErrorTrace(const QList<TraceRecorder::Report>& reports, const QString& message)
{
    return IsModelTrace(reports, message, 612);
}
