// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/idllinstance.h"

#include <QString>

#include <memory>

/// Loads a plug-in's library and resolves its two exported functions.
///
/// A loaded library is never unloaded: the plug-in leaves types, resources and objects pending deletion in Qt that need
/// its code.
class PluginLibrary
{
public:
    enum class Error {
        None,
        Missing,       ///< no such file
        NotAFile,      ///< a directory or a device
        NotLoadable,   ///< not a library, or a dependency is missing
        MissingExports ///< a library, but not a plug-in
    };

    /// Destroys an instance through the plug-in that created it.
    struct Deleter
    {
        void (*destroy)(IDllInstance*) = nullptr;
        void operator()(IDllInstance* instance) const { destroy(instance); }
    };
    using Instance = std::unique_ptr<IDllInstance, Deleter>;

    /// Returns the path of the plug-in that is installed with the host in `programDirectory`.
    static QString DefaultFile(const QString& programDirectory);

    /// Returns the version that a plug-in's file contains, without loading it; empty if it contains none.
    static QString VersionIn(const QString& file);

    /// Loads `file`. Call once.
    Error Load(const QString& file);

    /// Returns the last error as a sentence with the file's name; empty after success.
    const QString& ErrorText() const { return m_errorText; }

    /// Creates an instance. Call after a successful `Load`. Returns null if the plug-in creates none.
    Instance Create(const QString& name) const;

private:
    using CreateFunction = IDllInstance* (*)(const wchar_t*);
    using DestroyFunction = void (*)(IDllInstance*);

    Error Fail(Error error, const QString& text);

    CreateFunction m_create = nullptr;
    DestroyFunction m_destroy = nullptr;
    QString m_errorText;
};
