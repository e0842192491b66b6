#pragma once

#include "platform/platformexport.h"

#include <QLocale>
#include <QString>

/// Loads and installs the translations of the product's parts, each under its domain name. GUI thread only.
class VEXELPLATFORM_EXPORT TranslationCenter
{
public:
    TranslationCenter(const TranslationCenter&) = delete;
    TranslationCenter& operator=(const TranslationCenter&) = delete;

    static TranslationCenter& Instance();

    /// Loads `domain`_<locale>.qm and installs it. Where there is no such file the source texts are shown. A domain
    /// registered more than once stays installed until it was unregistered as often.
    void Register(const QString& domain);
    /// Takes one registration of `domain` back; the last one removes its translation. An unknown domain: nothing.
    void Unregister(const QString& domain);

    /// Host side, before the first `Register`: the language to load, and the folder with the .qm files. At start the
    /// system's locale and the folder of the installed product.
    void SetLocale(const QLocale& locale);
    void SetDirectory(const QString& directory);

private:
    TranslationCenter();
    ~TranslationCenter();

    struct Private;
    Private* const d;
};
