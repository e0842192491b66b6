#include "starter/hostprocess.h"

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

/// What a started process shall have, and what not.
class Surroundings
{
public:
    Surroundings()
    {
        posix_spawn_file_actions_init(&files);
        for (const int handle : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            posix_spawn_file_actions_addopen(&files, handle, "/dev/null", O_RDWR, 0);
        // Also what this process was itself given without knowing: a pipe among it would keep its reader waiting for as
        // long as the host lives.
        posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);

        posix_spawnattr_init(&attributes);
        // Ignored and blocked signals are inherited: who ran this with nohup did not mean the host's own handling.
        sigset_t all;
        sigfillset(&all);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    ~Surroundings()
    {
        posix_spawn_file_actions_destroy(&files);
        posix_spawnattr_destroy(&attributes);
    }

    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

    posix_spawn_file_actions_t files{};
    posix_spawnattr_t attributes{};
};

} // namespace

HostProcess::~HostProcess() = default;

QString HostProcess::Start(const QString& file, const QStringList& arguments)
{
    QByteArrayList texts{QFile::encodeName(file)};
    for (const QString& argument : arguments)
        texts.append(argument.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& text : texts)
        argv.push_back(text.data());
    argv.push_back(nullptr);

    const Surroundings surroundings;
    pid_t id = 0;
    const int error =
        posix_spawn(&id, argv.front(), &surroundings.files, &surroundings.attributes, argv.data(), environ);
    if (error != 0)
        return qt_error_string(error);
    m_iId = id;
    return {};
}

std::optional<HostProcess::End> HostProcess::Ended()
{
    if (m_end || m_iId == 0)
        return m_end;
    int status = 0;
    const pid_t ended = waitpid(static_cast<pid_t>(m_iId), &status, WNOHANG);
    if (ended == m_iId && WIFSIGNALED(status))
        m_end = End{0, QStringLiteral("signal %1").arg(WTERMSIG(status))};
    else if (ended == m_iId)
        m_end = End{WEXITSTATUS(status), {}};
    return m_end;
}
