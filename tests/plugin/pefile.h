// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <vector>

/// Reads exports, imports and subsystem of a 64-bit program or library of Windows from its file, without loading it.
/// Throws std::runtime_error if the file is invalid.
class PeFile
{
public:
    explicit PeFile(QByteArray content)
        : m_content(std::move(content))
    {
        const auto header = Number<std::uint32_t>(0x3c);
        if (Text(0, 2) != "MZ" || Text(header, 4) != QByteArray("PE\0\0", 4))
            throw std::runtime_error("not a program or library for Windows");
        const auto sections = Number<std::uint16_t>(header + 6);
        const auto optionalSize = Number<std::uint16_t>(header + 20);
        const std::uint32_t optional = header + 24;
        if (Number<std::uint16_t>(optional) != 0x20b)
            throw std::runtime_error("not a 64-bit one");
        m_subsystem = Number<std::uint16_t>(optional + 68);
        m_exports = Number<std::uint32_t>(optional + 112);
        m_imports = Number<std::uint32_t>(optional + 120);
        for (std::uint32_t i = 0; i < sections; ++i) {
            const std::uint32_t section = optional + optionalSize + 40 * i;
            m_sections.push_back({Number<std::uint32_t>(section + 12), Number<std::uint32_t>(section + 16),
                                  Number<std::uint32_t>(section + 20)});
        }
    }

    /// IMAGE_SUBSYSTEM_WINDOWS_GUI or, for a program with a console, IMAGE_SUBSYSTEM_WINDOWS_CUI.
    std::uint16_t Subsystem() const { return m_subsystem; }

    /// The exported names in file order, and "#" for each function without a name.
    QStringList Exports() const
    {
        QStringList names;
        if (!m_exports)
            return names;
        const std::uint32_t table = Offset(m_exports);
        const auto functions = Number<std::uint32_t>(table + 20);
        const auto named = Number<std::uint32_t>(table + 24);
        const std::uint32_t pointers = Offset(Number<std::uint32_t>(table + 32));
        for (std::uint32_t i = 0; i < named; ++i)
            names += Name(Number<std::uint32_t>(pointers + 4 * i));
        for (std::uint32_t i = named; i < functions; ++i)
            names += QStringLiteral("#");
        return names;
    }

    /// The file names of the imported libraries.
    QStringList Imports() const
    {
        QStringList names;
        if (!m_imports)
            return names;
        for (std::uint32_t entry = Offset(m_imports); Number<std::uint32_t>(entry + 12); entry += 20)
            names += Name(Number<std::uint32_t>(entry + 12));
        return names;
    }

private:
    struct Section
    {
        std::uint32_t address = 0;
        std::uint32_t size = 0;
        std::uint32_t offset = 0;
    };

    QByteArray Text(std::uint32_t offset, int length) const { return m_content.mid(offset, length); }

    template <typename Integer>
    Integer Number(std::uint32_t offset) const
    {
        Integer number = 0;
        if (std::size_t{offset} + sizeof number > static_cast<std::size_t>(m_content.size()))
            throw std::runtime_error("the file ends too early");
        std::memcpy(&number, m_content.constData() + offset, sizeof number);
        return number;
    }

    /// The file offset of an address in memory.
    std::uint32_t Offset(std::uint32_t address) const
    {
        for (const Section& section : m_sections)
            if (address >= section.address && address - section.address < section.size)
                return address - section.address + section.offset;
        throw std::runtime_error("an address lies in no section");
    }

    QString Name(std::uint32_t address) const
    {
        const std::uint32_t offset = Offset(address);
        const qsizetype end = m_content.indexOf('\0', offset);
        return QString::fromLatin1(m_content.mid(offset, end - qsizetype{offset}));
    }

    QByteArray m_content;
    std::uint16_t m_subsystem = 0;
    std::uint32_t m_exports = 0;
    std::uint32_t m_imports = 0;
    std::vector<Section> m_sections;
};
