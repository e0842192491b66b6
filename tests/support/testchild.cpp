// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// A program that tests start: reports how it was started, then exits, crashes, prints or keeps running. The environment
// controls this, because the arguments are under test.

#include "tests/support/system/inheritedhandles.h"
#include "tests/support/system/system.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QUuid>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

/// Writes a file "<process id>.<something>.json" into the folder VEXEL_TESTCHILD_REPORTS. It appears only
/// when complete. The process id alone is not unique: some systems reuse it at once.
bool WriteReport(const QStringList& inherited)
{
    QSaveFile file(QStringLiteral("%1/%2.%3.json")
                       .arg(qEnvironmentVariable("VEXEL_TESTCHILD_REPORTS"))
                       .arg(QCoreApplication::applicationPid())
                       .arg(QUuid::createUuid().toString(QUuid::WithoutBraces)));
    const QJsonObject report{
        {QStringLiteral("pid"), QCoreApplication::applicationPid()},
        {QStringLiteral("program"), QCoreApplication::applicationFilePath()},
        {QStringLiteral("arguments"), QJsonArray::fromStringList(QCoreApplication::arguments().mid(1))},
        {QStringLiteral("directory"), QDir::current().canonicalPath()},
        {QStringLiteral("inherited"), QJsonArray::fromStringList(inherited)},
        {QStringLiteral("stdin"), System::StreamTarget(0)},
        {QStringLiteral("stdout"), System::StreamTarget(1)},
        {QStringLiteral("stderr"), System::StreamTarget(2)},
    };
    return file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(report).toJson()) > 0 && file.commit();
}

void Print(long long bytes)
{
    // On Windows each write is slow, and standard error is unbuffered.
    std::setvbuf(stdout, nullptr, _IOFBF, 65536);
    std::setvbuf(stderr, nullptr, _IOFBF, 4096);
    const std::string line(1023, 'x');
    for (long long printed = 0; bytes < 0 || printed < bytes; printed += 1024) {
        std::puts(line.c_str());
        std::fputs("y", stderr);
    }
}

[[noreturn]] void Crash()
{
#ifdef Q_OS_WIN
    // The exit code of an access violation; `abort` would ask the user.
    std::_Exit(static_cast<int>(0xC0000005));
#else
    std::abort();
#endif
}

} // namespace

int main(int argc, char* argv[])
{
    const QStringList inherited = InheritedHandles();
    const QCoreApplication application(argc, argv);
    const QString mode = qEnvironmentVariable("VEXEL_TESTCHILD_MODE", QStringLiteral("exit"));

    // Before the report, so that tests can rely on it once they see the report.
    if (mode == QLatin1String("stubborn"))
        System::GoOnWhenAsked();
    if (mode == QLatin1String("polite"))
        System::EndWhenAsked();
    if (mode == QLatin1String("print"))
        Print(qEnvironmentVariableIntValue("VEXEL_TESTCHILD_NUMBER"));

    if (!WriteReport(inherited))
        return 99;

    if (mode == QLatin1String("crash"))
        Crash();
    if (mode == QLatin1String("print-forever"))
        Print(-1);
    if (mode == QLatin1String("stay") || mode == QLatin1String("polite") || mode == QLatin1String("stubborn"))
        return QCoreApplication::exec();
    return mode == QLatin1String("exit") ? qEnvironmentVariableIntValue("VEXEL_TESTCHILD_NUMBER") : 0;
}
