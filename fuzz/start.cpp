#include "fuzz/fuzzing.h"

#include "platform/errorhandler.h"

#include <QApplication>

namespace {

/// Assertions of the product and warnings of Qt are findings from then on: no input may bring about either.
void WatchMessages()
{
    ErrorHandler::Instance().SetEnabledKinds(ErrorHandler::Trace | ErrorHandler::Assertion);
    ErrorHandler::Instance().SetSink(
        [](ErrorHandler::Kind kind, const QString& message, const QString& /*sourceFile*/, quint16 /*line*/) {
            Fuzzing::Require(kind == ErrorHandler::Trace, "no assertion of the product fails");
            Fuzzing::Traces().append(message);
        });
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
        const bool isOfPlatform = message.startsWith(QLatin1String("This plugin does not support"));
        if (!isOfPlatform) {
            std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
        }
        Fuzzing::Require(isOfPlatform || type == QtDebugMsg || type == QtInfoMsg, "Qt has nothing to warn of");
    });
}

} // namespace

/// Runs once in every target, before the first input.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = 1;
    static char name[] = "fuzz";
    static char* arguments[] = {name, nullptr};
    // Never deleted: the fuzzer leaves through exit(), when half of Qt is gone.
    static const auto* const application = new QApplication(count, arguments);
    Q_UNUSED(application)
    WatchMessages();
    return 0;
}
