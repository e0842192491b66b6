// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "fuzz/fuzzing.h"

#include "platform/errorhandler.h"

#include <QApplication>

namespace {

/// Turns the product's assertions and Qt's warnings into findings.
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
        Fuzzing::Require(isOfPlatform || type == QtDebugMsg || type == QtInfoMsg, "no warning from Qt");
    });
}

} // namespace

/// libFuzzer calls this once, before the first input.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = 1;
    static char name[] = "fuzz";
    static char* arguments[] = {name, nullptr};
    // Never deleted: libFuzzer calls exit(), and by then parts of Qt are already destroyed.
    static const auto* const application = new QApplication(count, arguments);
    Q_UNUSED(application)
    WatchMessages();
    return 0;
}
