#pragma once

#include "platform/config/initext.h"

#include <QByteArray>
#include <QFile>
#include <QMap>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>

#include <optional>

/// What the text of a configuration document reads as: every text, by key; nothing for a damaged document. Keys that
/// are spelled as the store never spells them are left out, since nobody can ask for them.
namespace IniReadings {

using Values = QMap<QString, QString>;

inline bool CanBeAskedFor(const QString& key)
{
    return !key.isEmpty() && !key.startsWith(u'/') && !key.endsWith(u'/') && !key.contains(QLatin1String("//")) &&
           !key.contains(u'%') && !key.contains(u'\\');
}

/// To the product.
inline std::optional<Values> Own(const QByteArray& text)
{
    const IniText own(text);
    if (own.IsDamaged())
        return std::nullopt;
    Values values = own.Values();
    values.removeIf([](const auto& entry) { return !CanBeAskedFor(entry.key()); });
    return values;
}

/// Nothing for other types than text, and lists of it.
inline std::optional<QString> TextOf(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::QByteArray:
        return QString::fromUtf8(value.toByteArray());
    case QMetaType::QStringList:
        return value.toStringList().join(QStringLiteral(", "));
    case QMetaType::QVariantList: {
        QStringList texts;
        for (const QVariant& item : value.toList())
            texts += TextOf(item).value_or(QString());
        return texts.join(QStringLiteral(", "));
    }
    default:
        return std::nullopt;
    }
}

/// To Qt's own settings.
inline std::optional<Values> Theirs(const QByteArray& text)
{
    static const QTemporaryDir kFolder;
    static int s_files = 0;
    // Never the same name twice: what is read of a file is remembered.
    const QString path = kFolder.filePath(QString::number(++s_files));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("There is no room for a copy: %s", qPrintable(file.errorString()));
    file.close();

    Values values;
    QSettings::Status status = QSettings::NoError;
    {
        const QSettings settings(path, QSettings::IniFormat);
        const QStringList keys = settings.allKeys();
        for (const QString& key : keys) {
            const auto value = CanBeAskedFor(key) ? TextOf(settings.value(key)) : std::nullopt;
            if (value)
                values.insert(key, *value);
        }
        status = settings.status();
    }
    QFile::remove(path);
    return status == QSettings::NoError ? std::optional(values) : std::nullopt;
}

} // namespace IniReadings
