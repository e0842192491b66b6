#include "starter/starter.h"
#include "starter/starteroptions.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <cstdio>

namespace {

void Write(std::FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    (void)std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    (void)std::fflush(stream);
}

void Complain(const QString& message)
{
    Write(stderr, QStringLiteral("kitestarter: %1\n").arg(message));
}

Starter::Settings ToSettings(const StarterOptions& options)
{
    Starter::Settings settings;
    settings.lockFile = Starter::DefaultLockFile(settings.port);
    settings.host =
        options.host.isEmpty() ? Starter::DefaultHost(QCoreApplication::applicationDirPath()) : options.host;
    settings.hostArguments = options.hostArguments;
    settings.timeOut = options.timeOut;
    settings.callOnly = options.callOnly;
    return settings;
}

StarterExit Run()
{
    const ParsedStarterCommandLine commandLine = ParseStarterCommandLine(QCoreApplication::arguments());
    switch (commandLine.outcome) {
    case ParsedStarterCommandLine::Outcome::Print:
        Write(stdout, commandLine.text);
        return StarterExit::Called;
    case ParsedStarterCommandLine::Outcome::Wrong:
        Complain(QStringLiteral("%1 (--help tells more)").arg(commandLine.text));
        return StarterExit::Usage;
    case ParsedStarterCommandLine::Outcome::Run:
        break;
    }
    const Starter::Outcome outcome = Starter(ToSettings(commandLine.options)).Run();
    if (!outcome.message.isEmpty())
        Complain(outcome.message);
    return outcome.code;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    // Such as that there is no folder for run-time files, which is coped with.
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    return static_cast<int>(Run());
}
