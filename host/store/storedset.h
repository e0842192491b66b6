// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

class Connection;
class ICfg;
class QObject;
struct ListCopy;

/// Summary of the stored entries in the application's own document, read without the plug-in.
struct StoredSet
{
    enum class State {
        None,     ///< nothing is stored
        Whole,    ///< can be read to its end
        Malformed ///< the plug-in would load and store only the entries before the error
    };

    State state = State::None;
    int entries = 0; ///< of a malformed set: those that begin before the error
};

/// Reads the set from the document with the root node `document`. Does not keep the entries in memory.
StoredSet ReadStoredSet(ICfg& document);

/// Same, as the plug-in's list `entries` reports its own reading of the stored set; an empty one counts as whole. None
/// if it does not report it.
std::optional<StoredSet> ReportedStoredSet(const QObject& entries);

/// Returns the set itself, as a connection list document; empty if nothing is stored.
QByteArray ReadStoredDocument(ICfg& document);

/// What is stored of a list.
struct StoredText
{
    QString text; ///< as the plug-in stores it
    int entries = 0;
};

/// Return the entries of `list`, its connection list document, and what is stored of it. Any thread; they take a good
/// part of a second for a long list.
std::vector<Connection> ToConnections(const ListCopy& list);
QByteArray ToDocument(const ListCopy& list);
StoredText ToStoredText(const ListCopy& list);

/// Stores a list in the document with the root node `document`.
void WriteStoredSet(ICfg& document, const StoredText& text);

/// The number of entries is stored with the list, so that the host can report a loss.
void WriteEntryCount(ICfg& document, int entries);
std::optional<int> ReadEntryCount(ICfg& document);
