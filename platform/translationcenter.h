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

    static TranslationCenter& Instance();

    /// Loads `domain`_<locale>.qm and installs it, from the product's directory or else from Qt's, which has Qt's own
    /// texts as the domain "qtbase". Without such a file the source texts are shown. Registrations are counted: a
    /// domain stays installed until `Unregister` has been called as often.
    void Register(const QString& domain);
    /// Undoes one registration of `domain`; the last one removes its translation. Ignores an unknown domain.
    void Unregister(const QString& domain);

    /// Host side, before the first `Register`: set the language and the directory of the .qm files. Defaults: the
    /// system's locale and the translations of the installed product.
    void SetLocale(const QLocale& locale);
    void SetDirectory(const QString& directory);

private:
    TranslationCenter();
    ~TranslationCenter();

    struct Private;
    Private* const d;
};
