// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <optional>

/// The text of a configuration document: a JSON object whose member "values" holds every value under its key path, so
/// that each value is one line of the text, and whose member "digest" tells whether they are what was written:
///
///     {
///         "digest": "5d1c...",
///         "values": {
///             "Administration/VexelDataDir": "/srv/vexel"
///         }
///     }
///
/// It does not end with a line break: of a text that ends with its closing brace, every proper prefix is malformed.
namespace DocumentText {

/// Texts by key path.
using Values = QMap<QString, QString>;

struct Parsed
{
    std::optional<Values> values; ///< none: the text is malformed
    QString digest;               ///< empty: there is none
    QString error;                ///< where and why it is malformed: "line 3: missing value separator"
};

/// Reads a text. Integers and booleans, which people may type, are read as their text; of a key that appears twice, the
/// last value counts. Any QString that was written comes back unchanged, also with unpaired surrogates.
Parsed Parse(const QByteArray& text);

/// Whether `digest` belongs to `values`: nobody changed the text since it was written. For a long list this takes as
/// long as the rest of reading it.
bool IsIntact(const Values& values, const QString& digest);

/// Writes `values` as indented UTF-8, sorted by key path.
QByteArray Write(const Values& values);

} // namespace DocumentText
