// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/platformexport.h"

#include <QLocale>
#include <QString>

/// Loads and installs the translations of the product's components, one domain each. GUI thread only.
class VEXELPLATFORM_EXPORT TranslationCenter
{
public:
    TranslationCenter(const TranslationCenter&) = delete;
    TranslationCenter& operator=(const TranslationCenter&) = delete;

    /// Returns the one instance of the process.
    static TranslationCenter& Instance();

    /// Loads `domain`_<locale>.qm and installs it, from the product's directory or else from Qt's, which has Qt's own
    /// texts as the domain "qtbase". Without such a file the source texts are shown. Registrations are counted: a
    /// domain stays installed until `Unregister` has been called as often.
    void Register(const QString& domain);
    /// Undoes one registration of `domain`; the last one removes its translation. Ignores an unknown domain.
    void Unregister(const QString& domain);

    /// Host side, before the first `Register`: sets the language. The default is the system's.
    void SetLocale(const QLocale& locale);
    /// Host side, before the first `Register`: sets the directory of the .qm files. The default is the installed
    /// product's, relative to the program.
    void SetDirectory(const QString& directory);

private:
    TranslationCenter();
    ~TranslationCenter();

    struct Private;
    Private* const d;
};
