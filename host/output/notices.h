// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>
#include <QStringList>

#include <functional>

/// The host's messages to an interactive user. They go to standard error; if that has no reader, for example because
/// kitestarter started the host, they are displayed as well.
class Notices
{
public:
    using Display = std::function<void(const QString& text)>;

    /// Writes `line` to standard error, and displays it if standard error has no reader.
    void Report(const QString& line) { Report(line, line); }
    /// Same, with a different text to display.
    void Report(const QString& line, const QString& shown);
    /// Displays `text` if standard error has no reader. For messages already written there.
    void ShowIfUnread(const QString& text);

    /// Sets the function that displays texts. Pending texts are displayed at once, as one text. An empty function makes
    /// further texts pending.
    void SetDisplay(Display display);

private:
    Display m_display;
    QStringList m_pending;
};
