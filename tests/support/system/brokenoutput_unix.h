// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QFile>
#include <QProcess>
#include <QTest>

#include <array>
#include <fcntl.h>
#include <unistd.h>

/// An output for child processes that fails on writing.
class BrokenOutput
{
public:
    enum Kind {
        FullDisk,
        GoneReader // of a pipe
    };

    explicit BrokenOutput(Kind kind)
    {
        if (kind == FullDisk) {
            m_descriptor = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
            return;
        }
        std::array<int, 2> pipe = {-1, -1};
        if (::pipe(pipe.data()) == 0) {
            ::close(pipe[0]);
            m_descriptor = pipe[1];
            ::fcntl(m_descriptor, F_SETFD, FD_CLOEXEC);
        }
    }
    ~BrokenOutput() { ::close(m_descriptor); }
    Q_DISABLE_COPY_MOVE(BrokenOutput)

    /// Redirects `stream` of `process` to this output. Call before the start.
    void Give(QProcess& process, int stream) const
    {
        process.setChildProcessModifier([from = m_descriptor, stream] { ::dup2(from, stream); });
    }

private:
    int m_descriptor = -1;
};

/// Adds test columns and rows: each kind that this system supports with each command line.
inline void AddBrokenOutputs(const QList<QStringList>& commandLines)
{
    QTest::addColumn<BrokenOutput::Kind>("kind");
    QTest::addColumn<QStringList>("arguments");
    for (const QStringList& arguments : commandLines) {
        const QByteArray name = arguments.join(QLatin1Char(' ')).toUtf8();
        if (QFile::exists(QStringLiteral("/dev/full")))
            QTest::newRow((name + " to a full disk").constData()) << BrokenOutput::FullDisk << arguments;
        QTest::newRow((name + " to a reader that has gone").constData()) << BrokenOutput::GoneReader << arguments;
    }
}
