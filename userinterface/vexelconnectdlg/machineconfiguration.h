#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

class QXmlStreamReader;

/// What the machine configuration file says of the user-interface applications of this machine.
///
/// The document reader only: it neither opens files nor reports. Each element below "Machine" is an application of that
/// name; the first "Startup" within it says how the application is started.
class MachineConfiguration
{
public:
    /// The executable, then the parameters in index order.
    using StartList = QStringList;

    /// An application has at most this many parameters, and all of them together at most that many start list slots:
    /// the file only has to name a number, while each slot takes memory. A count that is negative or beyond them makes
    /// the start description unreadable: it adds nothing to the start list. A count that is no number is 0.
    static constexpr int kMaximumParameterCount = 1000;
    static constexpr int kMaximumSlotCount = 100'000;

    /// Reads to the end of the document or to its first XML error, which the reader then has. Names and start lists
    /// are added to those there are. Returns whether the document holds a "Machine" element.
    bool Read(QXmlStreamReader& reader);

    /// The applications in document order.
    QStringList applications;
    /// Start list by application; applications without a readable start description have none.
    QMap<QString, StartList> startLists;
    /// The applications whose start description was unreadable, in document order.
    QStringList unreadable;

private:
    void ReadApplication(QXmlStreamReader& reader);
    void ReadStartup(QXmlStreamReader& reader, const QString& application);

    int m_iSlots = 0;
};
