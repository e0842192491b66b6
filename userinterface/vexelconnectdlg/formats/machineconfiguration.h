// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

class QXmlStreamReader;

/// Parser for the machine configuration document: the user-interface applications installed on this machine.
///
/// Neither opens files nor reports errors. Each child element of "Machine" is an application of that name; its first
/// "Startup" element describes how to start it.
class MachineConfiguration
{
public:
    /// The executable, then the parameters in index order.
    using StartList = QStringList;

    /// Limits for the parameters of one application and the start list slots of all. The file only states a number, but
    /// each slot takes memory. A negative count or one beyond a limit makes the start description unreadable: it adds
    /// nothing to the start list. A count that is not a number is 0.
    static constexpr int kMaximumParameterCount = 1000;
    static constexpr int kMaximumSlotCount = 100'000;

    /// Reads up to the end of the document or the first XML error; check `reader.hasError()`. For an untrusted
    /// document, `reader` must be a `BoundedXmlReader`. Adds to the existing names and start lists. Returns whether the
    /// document has a "Machine" element.
    bool Read(QXmlStreamReader& reader);

    /// The applications in document order.
    QStringList applications;
    /// Start lists by application; applications without a readable start description have none.
    QMap<QString, StartList> startLists;
    /// The applications whose start description was unreadable, in document order.
    QStringList unreadable;

private:
    void ReadApplication(QXmlStreamReader& reader);
    void ReadStartup(QXmlStreamReader& reader, const QString& application);

    int m_iSlots = 0;
};
