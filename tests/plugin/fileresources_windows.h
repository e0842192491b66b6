// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include <windows.h>

/// Reads the resources of a Windows program or library without running it.
class FileResources
{
public:
    explicit FileResources(const QString& file)
        : m_file(file.toStdWString())
        , m_module(LoadLibraryExW(m_file.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE))
    {
        if (!m_module)
            throw std::runtime_error("the file cannot be loaded");
        DWORD ignored = 0;
        m_version.resize(GetFileVersionInfoSizeW(m_file.c_str(), &ignored));
        if (!GetFileVersionInfoW(m_file.c_str(), 0, static_cast<DWORD>(m_version.size()), m_version.data()))
            m_version.clear();
    }
    ~FileResources() { FreeLibrary(m_module); }

    FileResources(const FileResources&) = delete;
    FileResources& operator=(const FileResources&) = delete;

    /// A text of the version resource, such as "FileVersion"; empty if it is missing.
    QString VersionText(const QString& name) const
    {
        UINT length = 0;
        const void* const value = VersionValue(QStringLiteral("\\StringFileInfo\\040904B0\\") + name, &length);
        return value ? QString::fromWCharArray(static_cast<const wchar_t*>(value)) : QString();
    }

    /// The numeric version, for example "1.0.0"; empty if it is missing.
    QString VersionNumbers() const
    {
        const VS_FIXEDFILEINFO* const fixed = Fixed();
        if (!fixed)
            return {};
        return QStringLiteral("%1.%2.%3")
            .arg(HIWORD(fixed->dwFileVersionMS))
            .arg(LOWORD(fixed->dwFileVersionMS))
            .arg(HIWORD(fixed->dwFileVersionLS));
    }

    /// VFT_APP or VFT_DLL; 0 if it is missing.
    DWORD Type() const { return Fixed() ? Fixed()->dwFileType : 0; }

    /// The numbers of the resources of `type`, such as RT_MANIFEST.
    QList<int> Ids(const wchar_t* type) const
    {
        QList<int> ids;
        EnumResourceNamesW(
            m_module, type,
            [](HMODULE, LPCWSTR, LPWSTR name, LONG_PTR list) -> BOOL {
                const auto id = reinterpret_cast<quintptr>(name);
                reinterpret_cast<QList<int>*>(list)->append(IS_INTRESOURCE(name) ? static_cast<int>(id) : -1);
                return TRUE;
            },
            reinterpret_cast<LONG_PTR>(&ids));
        return ids;
    }

    /// The resource of `type` with the number `id`; empty if it is missing.
    QByteArray Content(const wchar_t* type, int id) const
    {
        const HRSRC resource = FindResourceW(m_module, MAKEINTRESOURCEW(id), type);
        if (!resource)
            return {};
        return QByteArray(static_cast<const char*>(LockResource(LoadResource(m_module, resource))),
                          static_cast<qsizetype>(SizeofResource(m_module, resource)));
    }

private:
    const void* VersionValue(const QString& path, UINT* length) const
    {
        void* value = nullptr;
        if (m_version.empty() || !VerQueryValueW(m_version.data(), path.toStdWString().c_str(), &value, length))
            return nullptr;
        return value;
    }

    const VS_FIXEDFILEINFO* Fixed() const
    {
        UINT length = 0;
        return static_cast<const VS_FIXEDFILEINFO*>(VersionValue(QStringLiteral("\\"), &length));
    }

    std::wstring m_file;
    HMODULE m_module;
    std::vector<char> m_version;
};
