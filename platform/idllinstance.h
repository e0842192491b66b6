#pragma once

#include "platform/platformexport.h"

#include <QString>

/// One instance of a plug-in, as the host holds it: what a plug-in's exported `ARCreateEx` returns and its
/// `ARDestroy` deletes. The order of the virtual operations is part of the contract between host and plug-in.
class VEXELPLATFORM_EXPORT IDllInstance
{
public:
    /// @param name the instance name; kept unchanged for the life of the instance.
    explicit IDllInstance(const QString& name);
    virtual ~IDllInstance();

    IDllInstance(const IDllInstance&) = delete;
    IDllInstance& operator=(const IDllInstance&) = delete;

    /// Whether the plug-in can be used. The base answers true.
    virtual bool IsAvailable();
    /// A word from the host without content. The base does nothing.
    virtual void Notify();
    /// The host is about to save the configuration: put everything that shall outlive the run into it. The base does
    /// nothing.
    virtual void SaveSettings();

    /// The name given at construction.
    const QString& Name() const { return m_sName; }

private:
    const QString m_sName;
};
