// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/signalwatcher.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

// A signal handler may do very little: it writes the signal's number into this pipe, and the event loop reads it.
int g_writeEnd = -1;

extern "C" void OnSignal(int signal)
{
    const int error = errno;
    const char byte = static_cast<char>(signal);
    // If the pipe is full, a request is pending already.
    [[maybe_unused]] const ssize_t written = ::write(g_writeEnd, &byte, 1);
    errno = error;
}

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

void SetCloseOnExecAndNonBlocking(int descriptor)
{
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

} // namespace

struct SignalWatcher::Private
{
    std::array<int, 2> pipe = {-1, -1};
    std::array<struct sigaction, kSignals.size()> previousActions = {};
    std::unique_ptr<QSocketNotifier> notifier;
};

SignalWatcher::SignalWatcher(QObject* parent)
    : QObject(parent)
    , d(std::make_unique<Private>())
{
    if (::pipe(d->pipe.data()) != 0) {
        qWarning("no pipe for signals; an interrupt ends the program without saving");
        return;
    }
    for (const int descriptor : d->pipe)
        SetCloseOnExecAndNonBlocking(descriptor);
    g_writeEnd = d->pipe[1];

    d->notifier = std::make_unique<QSocketNotifier>(d->pipe[0], QSocketNotifier::Read);
    connect(d->notifier.get(), &QSocketNotifier::activated, this, [this] {
        std::array<unsigned char, 16> numbers = {};
        int signal = 0;
        while (::read(d->pipe[0], numbers.data(), numbers.size()) > 0)
            signal = numbers.front();
        emit QuitRequested(signal);
    });

    struct sigaction action = {};
    action.sa_handler = OnSignal;
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        ::sigaction(kSignals[i], nullptr, &d->previousActions[i]);
        if (d->previousActions[i].sa_handler != SIG_IGN)
            ::sigaction(kSignals[i], &action, nullptr);
    }
}

SignalWatcher::~SignalWatcher()
{
    if (!d->notifier)
        return;
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        ::sigaction(kSignals[i], &d->previousActions[i], nullptr);
    d->notifier.reset();
    g_writeEnd = -1;
    for (const int descriptor : d->pipe)
        ::close(descriptor);
}
