#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

class QXmlStreamReader;

/// The type/application mapping document: which executable serves which device type. Reader only, no file and no
/// report in it.
namespace TypeMapping {

/// Reads to the end of the document or to its first XML error, which the reader then has, and puts each mapping into
/// `executables`, by device type; a later one replaces an earlier one.
///
/// A mapping names an executable (a text with ".exe" in it) or an application, whose executable is the first element
/// of its list in `startLists`. A mapping without an application, one of an application without a start list, and
/// one whose device type is negative, missing or no number, is dropped.
///
/// Returns whether the last mapping of the document was kept; false when there was none.
bool Read(QXmlStreamReader& reader, const QMap<QString, QStringList>& startLists, QMap<int, QString>& executables);

} // namespace TypeMapping
