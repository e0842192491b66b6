// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/platformexport.h"

#include <QString>

/// Base class of a plug-in instance: the plug-in's exported function `ARCreateEx` creates it, `ARDestroy` deletes it.
/// The order of the virtual functions is part of the contract between host and plug-in.
class VEXELPLATFORM_EXPORT IDllInstance
{
public:
    /// @param name the instance name; never changes.
    explicit IDllInstance(const QString& name);
    virtual ~IDllInstance();

    IDllInstance(const IDllInstance&) = delete;
    IDllInstance& operator=(const IDllInstance&) = delete;

    /// Returns whether the plug-in can be used. The default implementation returns true.
    virtual bool IsAvailable();
    /// Notification by the host, without content. The default implementation does nothing.
    virtual void Notify();
    /// Called before the host saves the configuration: writes all persistent state into it. The default implementation
    /// does nothing.
    virtual void SaveSettings();

    /// Returns the name given to the constructor.
    const QString& Name() const { return m_sName; }

private:
    const QString m_sName;
};
