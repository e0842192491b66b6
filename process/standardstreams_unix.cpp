// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/standardstreams.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Opens the null device for streams that are closed. The next files would become the standard streams otherwise, and
/// get what is written to these.
void OccupyClosedStreams()
{
    // Opening uses the lowest free number. In the wrong direction, so that reading and writing still fail.
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) == -1)
            (void)::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

/// Returns whether it is the file to which a desktop's session sends the errors of all programs.
bool IsSessionLog(int descriptor)
{
    std::array<char, 4096> path = {};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t size = ::readlink(link.c_str(), path.data(), path.size());
    return size > 0 && std::string_view(path.data(), static_cast<std::size_t>(size)).ends_with("/.xsession-errors");
}

int DescriptorOf(StandardStreams::Stream stream)
{
    return stream == StandardStreams::Stream::Error ? STDERR_FILENO : STDOUT_FILENO;
}

} // namespace

namespace StandardStreams {

void Prepare()
{
    OccupyClosedStreams();
    // Writing to a closed pipe then fails with EPIPE instead of ending the process. An existing handler is kept.
    struct sigaction action = {};
    if (::sigaction(SIGPIPE, nullptr, &action) != 0 || action.sa_handler != SIG_DFL)
        return;
    action.sa_handler = [](int) {
    }; // not SIG_IGN, which children inherit
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGPIPE, &action, nullptr);
}

bool Write(Stream stream, const QString& text)
{
    return Write(stream, text.toLocal8Bit());
}

bool Write(Stream stream, const QByteArray& bytes)
{
    std::FILE* const file = stream == Stream::Error ? stderr : stdout;
    const auto size = static_cast<std::size_t>(bytes.size());
    const bool isTaken = std::fwrite(bytes.constData(), 1, size, file) == size;
    return std::fflush(file) == 0 && isTaken;
}

std::optional<QByteArray> ReadInput(qint64 limit, QString* error)
{
    QByteArray content;
    std::array<char, 65536> part = {};
    while (content.size() <= limit) {
        const ssize_t size = ::read(STDIN_FILENO, part.data(), part.size());
        if (size == 0)
            return content;
        if (size > 0) {
            content.append(part.data(), size);
        } else if (errno != EINTR) {
            *error = qt_error_string(errno);
            return std::nullopt;
        }
    }
    *error = QStringLiteral("more than %1 bytes").arg(limit);
    return std::nullopt;
}

bool HasReader(Stream stream)
{
    const int descriptor = DescriptorOf(stream);
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0)
        return false;
    if (S_ISREG(status.st_mode))
        return !IsSessionLog(descriptor);
    return S_ISFIFO(status.st_mode) ? !IsBroken(stream) : ::isatty(descriptor) == 1;
}

bool IsBroken(Stream stream)
{
    const int descriptor = DescriptorOf(stream);
    struct stat status = {};
    pollfd state{descriptor, POLLOUT, 0};
    return ::fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode) && ::poll(&state, 1, 0) == 1 &&
           (state.revents & POLLERR) != 0;
}

} // namespace StandardStreams
