// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

/// The directory in which the plug-in finds the machine's XML files: "VexelDataDir" under "Administration" in the
/// product configuration.
namespace DataDirectory {

/// Stores `directory` in the configuration.
void Set(const QString& directory);

/// Whether the user has been told that the samples are used; stored in the configuration.
bool IsSamplesNoticeShown();
void SetSamplesNoticeShown();

/// Returns the data directory of the samples installed with the host in `programDirectory`; empty if there is none.
QString InstalledSamples(const QString& programDirectory);

/// Sets `directory` in the configuration during its lifetime if none is configured. It is never saved, so that an
/// installed tree can be moved together with its samples.
class Fallback
{
public:
    explicit Fallback(const QString& directory);
    ~Fallback();

    /// Returns whether none is configured.
    bool IsUsed() const { return m_isSet; }

    Fallback(const Fallback&) = delete;
    Fallback& operator=(const Fallback&) = delete;

private:
    bool m_isSet = false;
};

} // namespace DataDirectory
