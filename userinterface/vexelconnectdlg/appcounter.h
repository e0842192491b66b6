// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

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

/// The launcher: knows which user-interface applications are installed and which device types each serves, and starts
/// one for a connection entry.
///
/// The constructor reads two files of the product's data directory: the machine configuration lists the applications
/// and how to start each; the mapping file says which executable serves which device type. Anything unreadable is
/// traced and left out of the tables; nothing is shown. All lookups take an entry's device type and map it with
/// `Connection::ApplicationDeviceType`. GUI thread only.
class AppCounter : public QObject
{
    Q_OBJECT

public:
    /// Reads both files.
    /// @param owner the model in which entry statuses are updated; not owned, may be destroyed before this object.
    /// @param configurationName the configuration document whose value "TypeApplicationMappings" is the path of the
    ///        mapping file.
    AppCounter(ConnectionsModel* owner, QString configurationName);
    /// Kills the applications that still run. Does not touch the model.
    ~AppCounter() override;

    /// Clears the table of running applications, reads the machine configuration again and sets the mapping file's
    /// path: the configured one or, if that is empty, the default in the data directory. If the machine configuration
    /// cannot be opened, an empty path stays empty.
    void UpdateInstalledApps();
    /// Reads the mapping file again and looks up the applications that serve each of its device types.
    void UpdateTypeDeviceMappings();

    /// Adds the applications of a machine configuration document. Returns false on an XML error, which is traced, and
    /// if there is no "Machine" element.
    bool ReadMachine(QXmlStreamReader& reader);
    /// Adds the mappings of a mapping document. Returns false on an XML error, which is traced; otherwise whether the
    /// last mapping was kept.
    bool ReadTypeApplicationMappings(QXmlStreamReader& reader);

    /// Starts an application for `entry` and waits up to 30 s for the start. The entry is then "In Use" and the
    /// application unavailable until the process ends. Returns whether it was started. If no application for the
    /// entry's device type is free, shows a modal message box.
    bool ConnectTo(const Connection& entry);

    /// Return the applications for a device type: installed, running (once per start), installed and not running; and
    /// the executable to start, empty without a mapping.
    QStringList InstalledApplications(int deviceType) const;
    QStringList RunningApplications(int deviceType) const;
    QStringList FreeApplications(int deviceType) const;
    QString ProgramForType(int deviceType) const;

    /// Returns the applications in the order of the machine configuration.
    const QStringList& InstalledList() const { return m_installedList; }
    /// Returns the start lists by application: the executable, then the parameters. Not every application has one.
    const QMap<QString, QStringList>& StartupTable() const { return m_startupTable; }
    const QString& MappingFilePath() const { return m_sMappingFilePath; }
    /// Returns the instances that `SlotOnProcessExit` has not removed yet, in start order. Owned by the launcher.
    const QList<ApplicationInstance*>& Instances() const { return m_instances; }
    /// Returns the application last started for an entry equal to `entry`. Null if there is none or it has ended and
    /// its entries are "Free". While these become "Free", the status change still finds it. Owned by the launcher.
    const ApplicationInstance* InstanceOf(const Connection& entry) const;

    /// While sweeps are held, the entries of applications that have ended stay "In Use"; they are swept when the event
    /// loop runs after the last release. Every hold needs a release.
    void HoldSweeps();
    void ReleaseSweeps();

public slots:
    /// Removes every instance that is "Free", including those that failed to start, sets its entry to "Free" and makes
    /// its application available again. Called when an application has ended.
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
    int m_sweepHolds = 0;
    bool m_isSweepDue = false; // as soon as none is left
    QMap<int, QString> m_typeTable;
    const QString m_sConfigurationName;
    QString m_sMappingFilePath;
};
