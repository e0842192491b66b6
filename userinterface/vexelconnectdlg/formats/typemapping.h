// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>

class QXmlStreamReader;

/// Parser for the type/application mapping document: which executable serves which device type. Neither opens files nor
/// reports errors.
namespace TypeMapping {

/// Result for one mapping of the document.
enum class Outcome {
    Kept,
    NoDeviceType,  ///< the device type is negative, missing or not a number
    NoApplication, ///< the application is missing
    NoStartList    ///< the application has no start list
};
/// Called for each mapping, in document order.
using Observer = std::function<void(int deviceType, const QString& application, Outcome outcome)>;

/// Reads up to the end of the document or the first XML error (check `reader.hasError()`) and adds each mapping to
/// `executables`, by device type; a later one replaces an earlier one. For an untrusted document, `reader` must be a
/// `BoundedXmlReader`.
///
/// A mapping contains an executable (a text with ".exe" in it) or an application, whose executable is the first element
/// of its list in `startLists`. Mappings with any other `Outcome` than `Kept` are dropped.
///
/// Returns whether the last mapping of the document was kept; false if there was none.
bool Read(QXmlStreamReader& reader, const QMap<QString, QStringList>& startLists, QMap<int, QString>& executables,
          const Observer& observer = {});

/// Returns, by device type of `executables`, the applications whose start list begins with the type's executable, in
/// the order of `applications` and without duplicates. Device types without an application are left out.
QMap<int, QStringList> ServingApplications(QStringList applications, const QMap<QString, QStringList>& startLists,
                                           const QMap<int, QString>& executables);

} // namespace TypeMapping
