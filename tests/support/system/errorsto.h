// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>
#include <QtGlobal>

/// Redirects standard error of this process to `file` during its lifetime, and truncates the file. With
/// `QProcess::nullDevice()` the output is lost, as in a program started without a terminal.
class ErrorsTo
{
public:
    explicit ErrorsTo(const QString& file);
    ~ErrorsTo();
    Q_DISABLE_COPY_MOVE(ErrorsTo)

private:
    qintptr m_former = -1;
#ifdef Q_OS_WIN
    int m_formerDescriptor = -1; // the C runtime's descriptor, besides the system's handle
#endif
    qintptr m_file = -1;
};
