// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/view.h"

#include <QString>

#include <functional>

class ICfg;

/// Writes configuration documents in another thread. A node of `CfgCenter::GetAppCfg` may have this interface, which
/// `dynamic_cast` finds. The plug-in uses it, and also works with a platform library without it.
class IDocumentWriter
{
public:
    virtual ~IDocumentWriter() = default;

    /// See `CfgCenter::WriteDocument`.
    virtual void WriteDocument(const QString& name, View view, std::function<void(ICfg& root)> write,
                               const std::function<bool()>& whileWaiting) = 0;
};
