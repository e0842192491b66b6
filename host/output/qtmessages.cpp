// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/output/qtmessages.h"

#include "host/output/console.h"
#include "host/output/exitcode.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QtGlobal>

#include <cstdlib>

namespace {

struct Message
{
    QtMsgType type = QtDebugMsg;
    QByteArray category;
    QString text;
};

// Message handlers are plain functions. During Qt's start-up there is only one thread.
QList<Message>* g_pBuffered = nullptr;
QtMessageHandler g_previousHandler = nullptr;
QtMessageHandler g_unfilteredHandler = nullptr;

void BufferMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type != QtFatalMsg) {
        g_pBuffered->append({type, QByteArray(context.category), text});
        return;
    }
    // The first warning names the cause; the fatal message is long advice about reinstalling.
    const QString cause = g_pBuffered->isEmpty() ? text.section(QLatin1Char('\n'), 0, 0) : g_pBuffered->first().text;
    Console::PrintError(QStringLiteral("cannot show windows: %1").arg(cause));
    std::_Exit(static_cast<int>(ExitCode::Unusable));
}

void FilterMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    // The offscreen platform prints the first message for each window. The second is about a user session's
    // directories, which services and containers do not have.
    const bool isExpected = text == QLatin1String("This plugin does not support propagateSizeHints()") ||
                            text.startsWith(QLatin1String("QStandardPaths: "));
    if (!isExpected)
        g_unfilteredHandler(type, context, text);
}

} // namespace

QtStartMessages::QtStartMessages()
{
    g_pBuffered = new QList<Message>;
    g_previousHandler = qInstallMessageHandler(BufferMessage);
}

QtStartMessages::~QtStartMessages()
{
    qInstallMessageHandler(g_previousHandler);
    for (const Message& message : std::as_const(*g_pBuffered)) {
        const QMessageLogContext context(nullptr, 0, nullptr, message.category.constData());
        qt_message_output(message.type, context, message.text);
    }
    delete g_pBuffered;
    g_pBuffered = nullptr;
}

void SuppressHeadlessWarnings()
{
    g_unfilteredHandler = qInstallMessageHandler(FilterMessage);
}
