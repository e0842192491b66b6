#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

class ApplicationInstance;
class ConnectionsModel;
class QXmlStreamReader;

/// The launcher: knows which user-interface applications this machine can start and which device type each serves, and
/// starts one of them for a connection entry.
///
/// What is installed is read once, at construction, from two files of the product's data directory: the machine
/// configuration lists the applications and how each is started, the mapping says which executable serves which device
/// type. What cannot be read is traced and missing from the tables; nothing is shown. Device types are those of the
/// entries; the lookups find the one that serves them by themselves (`Connection::ApplicationDeviceType`). GUI thread
/// only.
class AppCounter : public QObject
{
    Q_OBJECT

public:
    /// Reads both files.
    /// @param owner the model whose entries' statuses are kept up to date; not owned, may be gone before this object.
    /// @param configurationName the configuration document whose value "TypeApplicationMappings" is the path of the
    /// mapping file.
    AppCounter(ConnectionsModel* owner, QString configurationName);
    /// Ends the applications that still run. Leaves the model alone.
    ~AppCounter() override;

    /// Empties the table of running applications, reads the machine configuration anew and settles the mapping file's
    /// path: the configured one, or else that in the data directory; a machine configuration that cannot be opened
    /// leaves it as configured, even when that is empty.
    void UpdateInstalledApps();
    /// Reads the mapping file anew and finds, for each device type in it, the applications that serve it.
    void UpdateTypeDeviceMappings();

    /// Adds what a machine configuration document says. Returns false on an XML error, which is traced, and without a
    /// "Machine" element.
    bool ReadMachine(QXmlStreamReader& reader);
    /// Adds what a mapping document says. Returns false on an XML error, which is traced; otherwise whether the last
    /// mapping in it was kept.
    bool ReadTypeApplicationMappings(QXmlStreamReader& reader);

    /// Starts an application for `entry` and waits for the start, at most 30 s. Once it is started the entry is
    /// "In Use" and the application taken, both until it ends. Returns whether it was started. Where every application
    /// for the entry's device type is taken, a modal box says so.
    bool ConnectTo(const Connection& entry);

    /// The applications for a device type: those installed, those of them that run (once for each start), and those
    /// installed that do not run; and the executable to start, empty without a mapping.
    QStringList InstalledApplications(int deviceType) const;
    QStringList RunningApplications(int deviceType) const;
    QStringList FreeApplications(int deviceType) const;
    QString ProgramForType(int deviceType) const;

    /// The applications in the order of the machine configuration.
    const QStringList& InstalledList() const { return m_installedList; }
    /// For each application that has one its start list: the executable, then the parameters.
    const QMap<QString, QStringList>& StartupTable() const { return m_startupTable; }
    const QString& MappingFilePath() const { return m_sMappingFilePath; }
    /// The applications started and not yet swept, in start order. Owned by the launcher.
    const QList<ApplicationInstance*>& Instances() const { return m_instances; }

public slots:
    /// An application has ended: lets go of every instance that is "Free", makes its entry "Free" and its application
    /// available. An instance whose start failed is among them.
    void SlotOnProcessExit();

private:
    void FillInstalledTable();
    // `servedType`: a device type as `Connection::ApplicationDeviceType` gives it.
    QStringList FreeAmongInstalled(int servedType) const;
    void ShowNoFreeApplication(const Connection& entry, int servedType) const;
    void Sweep(ApplicationInstance* instance);

    QPointer<ConnectionsModel> m_pOwner;
    QMap<int, QStringList> m_installedTable;
    QMap<QString, QStringList> m_startupTable;
    QStringList m_installedList;
    QMap<int, QStringList> m_runningTable;
    QList<ApplicationInstance*> m_instances;
    QMap<int, QString> m_typeTable;
    const QString m_sConfigurationName;
    QString m_sMappingFilePath;
};
