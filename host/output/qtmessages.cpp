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

// Message handlers are plain functions; while Qt starts there is one thread.
QList<Message>* g_pHeldBack = nullptr;
QtMessageHandler g_earlierHandler = nullptr;
QtMessageHandler g_handlerBelowFilter = nullptr;

void HoldBack(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type != QtFatalMsg) {
        g_pHeldBack->append({type, QByteArray(context.category), text});
        return;
    }
    // The first warning names the cause; the fatal message explains at length what may be done about an installation.
    const QString cause = g_pHeldBack->isEmpty() ? text.section(QLatin1Char('\n'), 0, 0) : g_pHeldBack->first().text;
    Console::PrintError(QStringLiteral("no window can be shown: %1").arg(cause));
    std::_Exit(static_cast<int>(ExitCode::Unusable));
}

void LeaveOut(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    // The offscreen platform says the first about each window; a service or a container has none of the directories for
    // a person's session that the second is about.
    const bool noise = text == QLatin1String("This plugin does not support propagateSizeHints()") ||
                       text.startsWith(QLatin1String("QStandardPaths: "));
    if (!noise)
        g_handlerBelowFilter(type, context, text);
}

} // namespace

QtStartMessages::QtStartMessages()
{
    g_pHeldBack = new QList<Message>;
    g_earlierHandler = qInstallMessageHandler(HoldBack);
}

QtStartMessages::~QtStartMessages()
{
    qInstallMessageHandler(g_earlierHandler);
    for (const Message& message : std::as_const(*g_pHeldBack)) {
        const QMessageLogContext context(nullptr, 0, nullptr, message.category.constData());
        qt_message_output(message.type, context, message.text);
    }
    delete g_pHeldBack;
    g_pHeldBack = nullptr;
}

void SuppressHeadlessWarnings()
{
    g_handlerBelowFilter = qInstallMessageHandler(LeaveOut);
}
