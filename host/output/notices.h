#pragma once

#include <QString>
#include <QStringList>

#include <functional>

/// What the host has to say of itself while a person works with its dialog. It goes to standard error; where nobody
/// reads that, as when kitestarter started the host, it is shown to the person.
class Notices
{
public:
    using Show = std::function<void(const QString& text)>;

    /// Writes `line` to standard error, and shows it where nobody reads that.
    void Say(const QString& line) { Say(line, line); }
    /// The same, with another text for the person.
    void Say(const QString& line, const QString& shown);
    /// For what standard error has had already: shows `text` where nobody reads that.
    void ShowUnread(const QString& text);

    /// How texts are shown from now on. What came before is shown at once, in one piece. None: texts are kept again.
    void ShowThrough(Show show);

private:
    Show m_show;
    QStringList m_kept;
};
