#pragma once

#include "platform/platformexport.h"

#include <QString>

/// One node of a configuration document: keys with values, and named child nodes.
///
/// Values are kept as text, so a value written as one kind can be read as another where its text allows; a text that
/// does not stand for the asked kind reads as the default. `flag` and `mode` are part of the product's interface; this
/// implementation treats every value of them alike.
class VEXELPLATFORM_EXPORT ICfg
{
public:
    ICfg() = default;
    virtual ~ICfg();

    ICfg(const ICfg&) = delete;
    ICfg& operator=(const ICfg&) = delete;

    /// A handle on the child node `key`, which comes into being with the first value written to it. Never null. The
    /// caller deletes the handle; the node stays.
    virtual ICfg* OpenChild(const QString& key, int flag) = 0;
    /// Removes `key` with its value, and the child node of that name; a missing one is no error.
    virtual void Remove(const QString& key, int flag) = 0;
    virtual QString GetString(const QString& key, const QString& defaultValue, int mode) = 0;
    virtual int GetInt(const QString& key, int defaultValue, int mode) = 0;
    virtual bool GetBool(const QString& key, bool defaultValue, int mode) = 0;
    virtual void SetString(const QString& key, const QString& value, int flag) = 0;
    virtual void SetInt(const QString& key, int value, int flag) = 0;
    virtual void SetBool(const QString& key, bool value, int flag) = 0;
};
