#pragma once

#include "platform/configversions.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

/// The folder beside a document that holds its earlier states, one file each.
///
/// The files are numbered, as clocks go backwards and two saves fit into one tick of them. The names carry the time
/// all the same, for people: "00000017-20260304T101112.345Z.ini".
class VersionFolder
{
public:
    explicit VersionFolder(QString document);

    QString Path() const;

    /// Newest first. A file that is at the same time the document is not among them: a process was killed after it
    /// kept the document and before it replaced it.
    QList<ConfigVersion> List() const;

    // The rest: only while holding the document's lock.

    /// Keeps the document's file, which holds `content`, so that replacing it leaves a version. Returns the file that
    /// was made for that, an empty name where the newest version has this content already, nothing, with a trace, when
    /// it could not be kept.
    std::optional<QString> Keep(const QByteArray& content) const;

    /// Takes back what `Keep` has returned, as the document was not replaced.
    static void Forget(const std::optional<QString>& kept);

    /// Removes the oldest versions where there are too many, and what a killed process left unfinished.
    void Prune() const;

private:
    QString NextName(const QString& newest) const;
    QStringList Names() const;
    void Renumber(const QStringList& names) const;

    const QString m_document;
};
