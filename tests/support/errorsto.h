#pragma once

#include <QString>
#include <QtGlobal>

/// While it lives, what this process writes to standard error goes to `file`, from its beginning. To
/// `QProcess::nullDevice()`: nobody reads it, as where a program is started without a terminal.
class ErrorsTo
{
public:
    explicit ErrorsTo(const QString& file);
    ~ErrorsTo();
    Q_DISABLE_COPY_MOVE(ErrorsTo)

private:
    qintptr m_former = -1;
#ifdef Q_OS_WIN
    int m_formerDescriptor = -1; // the compiler's runtime has one of its own
#endif
    qintptr m_file = -1;
};
