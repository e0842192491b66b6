// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/platformexport.h"

#include <QString>

/// One node of a configuration document: keys with values, and named child nodes.
///
/// Values are stored as text, so a value written as one type can be read as another. A read returns the default if the
/// key is missing or its text cannot be converted. `flag` and `mode` are part of the product's interface; this
/// implementation ignores them.
class VEXELPLATFORM_EXPORT ICfg
{
public:
    ICfg() = default;
    virtual ~ICfg();

    ICfg(const ICfg&) = delete;
    ICfg& operator=(const ICfg&) = delete;

    /// Returns a handle to the child node `key`; never null. The first value written to the node creates it. The caller
    /// owns the handle; deleting it does not remove the node.
    virtual ICfg* OpenChild(const QString& key, int flag) = 0;
    /// Removes the value of `key` and the child node of that name. It is not an error if they do not exist.
    virtual void Remove(const QString& key, int flag) = 0;
    /// Returns the text of `key`.
    virtual QString GetString(const QString& key, const QString& defaultValue, int mode) = 0;
    /// Returns the value of `key` as a decimal number.
    virtual int GetInt(const QString& key, int defaultValue, int mode) = 0;
    /// Returns the value of `key`: "true" or "1", "false" or "0".
    virtual bool GetBool(const QString& key, bool defaultValue, int mode) = 0;
    /// Sets the text of `key`.
    virtual void SetString(const QString& key, const QString& value, int flag) = 0;
    /// Sets the value of `key` to a number.
    virtual void SetInt(const QString& key, int value, int flag) = 0;
    /// Sets the value of `key` to "true" or "false".
    virtual void SetBool(const QString& key, bool value, int flag) = 0;
};
