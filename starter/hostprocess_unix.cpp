// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "starter/hostprocess.h"

#include "host/output/starterrorfile.h"

#include <QByteArrayList>
#include <QFile>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <vector>

namespace {

/// What the started process inherits.
class SpawnSettings
{
public:
    SpawnSettings()
    {
        posix_spawn_file_actions_init(&files);
        for (const int handle : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            posix_spawn_file_actions_addopen(&files, handle, "/dev/null", O_RDWR, 0);
        // Also closes descriptors this process inherited unknowingly: a pipe's reader would wait as long as the host
        // lives.
        posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);

        posix_spawnattr_init(&attributes);
        // Ignored and blocked signals are inherited: a starter run by nohup must not change the host's handling.
        sigset_t all;
        sigfillset(&all);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&files);
        posix_spawnattr_destroy(&attributes);
    }

    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    posix_spawn_file_actions_t files{};
    posix_spawnattr_t attributes{};
};

} // namespace

HostProcess::~HostProcess() = default;

QString HostProcess::Start(const QString& file, const QStringList& arguments, const QString& errorFile)
{
    QByteArrayList texts{QFile::encodeName(file)};
    for (const QString& argument : arguments)
        texts.append(argument.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& text : texts)
        argv.push_back(text.data());
    argv.push_back(nullptr);

    // Not set in this process, where other threads may read the environment. The first variable of a name counts.
    QByteArray variable = kStartErrorFileVariable + QByteArrayLiteral("=") + QFile::encodeName(errorFile);
    std::vector<char*> environment;
    if (!errorFile.isEmpty())
        environment.push_back(variable.data());
    for (char** other = environ; *other; ++other)
        environment.push_back(*other);
    environment.push_back(nullptr);

    const SpawnSettings settings;
    pid_t id = 0;
    const int error =
        posix_spawn(&id, argv.front(), &settings.files, &settings.attributes, argv.data(), environment.data());
    if (error != 0)
        return qt_error_string(error);
    m_id = id;
    return {};
}

std::optional<HostProcess::ExitStatus> HostProcess::Poll()
{
    if (m_exitStatus || m_id == 0)
        return m_exitStatus;
    int status = 0;
    const pid_t ended = waitpid(static_cast<pid_t>(m_id), &status, WNOHANG);
    if (ended == m_id && WIFSIGNALED(status))
        m_exitStatus = ExitStatus{0, QStringLiteral("signal %1").arg(WTERMSIG(status))};
    else if (ended == m_id)
        m_exitStatus = ExitStatus{WEXITSTATUS(status), {}};
    return m_exitStatus;
}
