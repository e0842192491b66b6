// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

#include <functional>

/// Saves the configuration and writes to standard error why that failed, once until it works again.
class ConfigSaver
{
public:
    /// Return, or call `done` with, the reason for a failure: a sentence for people; empty on success. `SaveAsync`
    /// writes in another thread; see `CfgCenter::SaveDocumentAsync`. This object must outlive the save.
    QString Save();
    void SaveAsync(std::function<void(const QString& error)> done);

    /// Returns whether the last save failed.
    bool HasFailed() const { return m_hasFailed; }

private:
    QString Report(bool isSaved);

    bool m_hasFailed = false;
};
