#pragma once

#include <QString>

/// Where the plug-in finds the machine's XML files: "VexelDataDir" under "Administration" in the product configuration.
namespace DataDirectory {

/// Puts `directory` into the configuration.
void Set(const QString& directory);

/// The data directory of the samples that are installed with the host at `programDirectory`; empty where there is none.
QString InstalledSamples(const QString& programDirectory);

/// Lets the configuration name `directory` for as long as it lives, if it names none itself. It is never stored: an
/// installed tree that is moved takes its samples along.
class Fallback
{
public:
    explicit Fallback(const QString& directory);
    ~Fallback();

    Fallback(const Fallback&) = delete;
    Fallback& operator=(const Fallback&) = delete;

private:
    bool m_inPlace = false;
};

} // namespace DataDirectory
