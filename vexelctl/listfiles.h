// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

using Entries = std::vector<Connection>;

/// Why a file is not used as a connection list.
struct ListFileError
{
    QString file;                    ///< as it is called to the user
    QString obstacle;                ///< why it cannot be read; empty: see `error`
    ConnectionList::ReadError error; ///< why its content is no list

    /// Returns a sentence for the user that names the file.
    QString Sentence() const;
};

/// Reads the entries of `files`, all of them or none; one may be "-" for standard input. All together must fit into an
/// empty list. They are all "Free".
std::optional<Entries> ReadListFiles(const QStringList& files, ListFileError& error);

/// Returns the connection list document of `entries`.
QByteArray ToDocument(const Entries& entries);
