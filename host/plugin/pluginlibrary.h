#pragma once

#include "platform/idllinstance.h"

#include <QString>

#include <memory>

/// A plug-in's library: its two exported functions, and nothing else of it.
///
/// A loaded library stays in the process until the process ends. Unloading would pull code from under what the
/// plug-in leaves in Qt: registered types, resources, and objects that are deleted by a later turn of the event loop.
class PluginLibrary
{
public:
    enum class Error {
        None,
        Missing,       ///< there is no such file
        NotAFile,      ///< a directory or a device
        NotLoadable,   ///< not a library, or one that lacks something it needs
        LacksFunctions ///< a library, but not of a plug-in
    };

    /// Gives an instance back to the plug-in that made it.
    struct Destroyer
    {
        void (*destroy)(IDllInstance*) = nullptr;
        void operator()(IDllInstance* instance) const { destroy(instance); }
    };
    using Instance = std::unique_ptr<IDllInstance, Destroyer>;

    /// Where the plug-in stands that is installed with the host at `programDirectory`.
    static QString DefaultFile(const QString& programDirectory);

    /// Loads `file`. Call once.
    Error Load(const QString& file);

    /// The last error as a sentence that names the file; empty after a success.
    const QString& ErrorText() const { return m_errorText; }

    /// Asks the plug-in for an instance, after a successful `Load`. Null when it gives none.
    Instance Create(const QString& name) const;

private:
    using CreateFunction = IDllInstance* (*)(const wchar_t*);
    using DestroyFunction = void (*)(IDllInstance*);

    Error Fail(Error error, const QString& text);

    CreateFunction m_create = nullptr;
    DestroyFunction m_destroy = nullptr;
    QString m_errorText;
};
