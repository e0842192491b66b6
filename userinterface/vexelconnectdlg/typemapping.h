#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>

class QXmlStreamReader;

/// The type/application mapping document: which executable serves which device type. Reader only, no file and no
/// report in it.
namespace TypeMapping {

/// What became of a mapping of the document.
enum class Outcome {
    Kept,
    NoDeviceType,  ///< its device type is negative, missing or no number
    NoApplication, ///< it names none
    NoStartList    ///< it names an application without a start list
};
/// Hears of each mapping, in document order.
using Observer = std::function<void(int deviceType, const QString& application, Outcome outcome)>;

/// Reads to the end of the document or to its first XML error, which the reader then has, and puts each mapping into
/// `executables`, by device type; a later one replaces an earlier one.
///
/// A mapping names an executable (a text with ".exe" in it) or an application, whose executable is the first element
/// of its list in `startLists`. A mapping without an application, one of an application without a start list, and
/// one whose device type is negative, missing or no number, is dropped.
///
/// Returns whether the last mapping of the document was kept; false when there was none.
bool Read(QXmlStreamReader& reader, const QMap<QString, QStringList>& startLists, QMap<int, QString>& executables,
          const Observer& observer = {});

/// By device type of `executables`, in the order of `applications` and each once: the applications whose start list
/// begins with the type's executable. A type that none serves is missing.
QMap<int, QStringList> ServingApplications(QStringList applications, const QMap<QString, QStringList>& startLists,
                                           const QMap<int, QString>& executables);

} // namespace TypeMapping
