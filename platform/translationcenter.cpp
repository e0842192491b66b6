// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/translationcenter.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QTranslator>

#include <map>
#include <memory>

namespace {

/// Loads the translation of `domain` into the first language of `locale` that has one. Returns null if the source texts
/// are to be used.
std::unique_ptr<QTranslator> LoadTranslator(const QString& domain, const QLocale& locale, const QString& directory)
{
    auto translator = std::make_unique<QTranslator>();
    const QStringList languages = locale.uiLanguages();
    for (qsizetype i = 0; i < languages.size(); ++i) {
        // Try the exact file name first. The list has "de_Latn_CH" before "de_CH", and for the former load() below
        // would fall back to "de" before "de_CH" gets its turn.
        const QString name = domain + u'_' + QString(languages.at(i)).replace(u'-', u'_');
        if (QFileInfo::exists(directory + u'/' + name + QStringLiteral(".qm")) && translator->load(name, directory))
            return translator;

        const QLocale wanted(languages.at(i));
        if (i + 1 < languages.size() && QLocale(languages.at(i + 1)).language() == wanted.language())
            continue;
        if (translator->load(wanted, domain, QStringLiteral("_"), directory))
            return translator;
        // The source texts are English. A user who prefers English to German must not get German because no English
        // file exists.
        if (wanted.language() == QLocale::English || wanted.language() == QLocale::C)
            break;
    }
    return nullptr;
}

} // namespace

struct TranslationCenter::Private
{
    struct Domain
    {
        int registrations = 0;
        std::unique_ptr<QTranslator> translator; // its destructor uninstalls it
    };

    QLocale locale;
    QString directory; // empty for the directory of the installed product
    std::map<QString, Domain> domains;
};

TranslationCenter::TranslationCenter()
    : d(new Private{QLocale::system(), {}, {}})
{
}

TranslationCenter::~TranslationCenter()
{
    delete d;
}

TranslationCenter& TranslationCenter::Instance()
{
    static TranslationCenter center;
    return center;
}

void TranslationCenter::Register(const QString& domain)
{
    Private::Domain& entry = d->domains[domain];
    if (entry.registrations++ > 0 || !QCoreApplication::instance())
        return;

    const QString directory =
        d->directory.isEmpty() ? QCoreApplication::applicationDirPath() + QStringLiteral("/" VEXEL_BIN_TO_TRANSLATIONS)
                               : d->directory;
    entry.translator = LoadTranslator(domain, d->locale, directory);
    if (!entry.translator)
        entry.translator = LoadTranslator(domain, d->locale, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    if (entry.translator)
        QCoreApplication::installTranslator(entry.translator.get());
}

void TranslationCenter::Unregister(const QString& domain)
{
    const auto entry = d->domains.find(domain);
    if (entry != d->domains.end() && --entry->second.registrations == 0)
        d->domains.erase(entry);
}

void TranslationCenter::SetLocale(const QLocale& locale)
{
    d->locale = locale;
}

void TranslationCenter::SetDirectory(const QString& directory)
{
    d->directory = directory;
}
