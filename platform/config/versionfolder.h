// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/configversions.h"

#include <QByteArray>
#include <QList>
#include <QString>

/// The folder beside a document that holds its earlier versions, one file each.
///
/// The files are numbered, because clocks go backwards and two saves fit into one tick. The time in the name is for
/// people: "00000017-20260304T101112.345Z.json".
class VersionFolder
{
public:
    explicit VersionFolder(QString document);

    QString Path() const;

    /// The versions, newest first. A file that is the document itself is not a version: a process was killed after it
    /// linked the document and before it replaced it.
    QList<ConfigVersion> List() const;

    enum class Outcome {
        Added,
        AlreadyNewest, ///< the newest version has this content
        Failed
    };
    struct Kept
    {
        Outcome outcome = Outcome::Failed;
        QString file;  ///< of an added version
        QString error; ///< why it failed, for people
    };
    /// Adds the document's file, which holds `content`, to the versions, so that it outlasts the document's
    /// replacement. Call only while holding the document's lock.
    Kept Keep(const QByteArray& content) const;

    /// Removes all versions but the newest ten and the last one of each of the thirty latest days that have one. Call
    /// only while holding the document's lock.
    ///
    /// The order of versions is that of their numbers; a day is a local one, by the time in the name. A clock that was
    /// wrong for a while takes up some of the thirty days, and no version becomes too old.
    void Prune() const;

private:
    QString NextName(const QString& newest) const;
    QStringList Names() const;
    void Renumber(const QStringList& names) const;

    const QString m_document;
};
