// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/plugin/pluginlibrary.h"

#include "files/boundedfile.h"

#include <QDir>
#include <QFileInfo>
#include <QLibrary>

#include <string>

QString PluginLibrary::DefaultFile(const QString& programDirectory)
{
    return QDir::cleanPath(
        QDir(programDirectory).absoluteFilePath(QStringLiteral(VEXEL_BIN_TO_PLUGINS "/" VEXEL_PLUGIN_FILE)));
}

QString PluginLibrary::VersionIn(const QString& file)
{
    const QByteArray mark = QByteArrayLiteral("@(#)vexelconnectdlg ");
    const QByteArray content = ReadRegularFile(file).value_or(QByteArray());
    const qsizetype begin = content.indexOf(mark);
    // A C string, so it ends with a null.
    const qsizetype end = content.indexOf('\0', begin);
    return begin < 0 || end < 0 ? QString() : QString::fromUtf8(content.mid(begin, end - begin).mid(mark.size()));
}

PluginLibrary::Error PluginLibrary::Load(const QString& file)
{
    // QLibrary would look for a missing file under other names and in system folders.
    const QFileInfo info(file);
    if (!info.exists())
        return Fail(Error::Missing, QStringLiteral("there is no plug-in %1").arg(file));
    if (!info.isFile())
        return Fail(Error::NotAFile, QStringLiteral("the plug-in %1 is not a file").arg(file));

    // Resolving all symbols now turns a missing one into an error here instead of a crash later.
    QLibrary library(info.absoluteFilePath());
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    if (!library.load()) {
        return Fail(Error::NotLoadable,
                    QStringLiteral("the plug-in %1 cannot be loaded: %2").arg(file, library.errorString()));
    }

    m_create = reinterpret_cast<CreateFunction>(library.resolve("ARCreateEx"));
    m_destroy = reinterpret_cast<DestroyFunction>(library.resolve("ARDestroy"));
    if (!m_create || !m_destroy) {
        m_create = nullptr;
        m_destroy = nullptr;
        return Fail(Error::MissingExports,
                    QStringLiteral("%1 is not a plug-in: it does not export ARCreateEx and ARDestroy").arg(file));
    }
    m_errorText.clear();
    return Error::None;
}

PluginLibrary::Instance PluginLibrary::Create(const QString& name) const
{
    const std::wstring wide = name.toStdWString();
    return Instance(m_create(wide.c_str()), Deleter{m_destroy});
}

PluginLibrary::Error PluginLibrary::Fail(Error error, const QString& text)
{
    m_errorText = text;
    return error;
}
