// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QString>
#include <QXmlStreamReader>

/// What a document may have. The defaults leave room for everything that is read here: the largest list that the
/// configuration can hold has 3.5 million elements or 7.9 million references.
struct XmlLimits
{
    int depth = 1000;           ///< elements inside one another
    int attributes = 64;        ///< of one element
    int nodes = 4'000'000;      ///< elements, attributes, comments and processing instructions, all together
    int references = 8'000'000; ///< to characters and entities, all together
};

/// For the machine's files. Looking up their elements takes longer than reading them.
inline constexpr XmlLimits kMachineFileLimits{.nodes = 100'000};

/// QXmlStreamReader for untrusted documents. It reads or refuses 64 MiB in about a second, whatever they hold.
///
/// Qt's reader alone takes quadratic time for many attributes or namespaces, gigabytes for deep nesting, and for
/// entities, which may refer to one another, as much of both as there is. So the document is checked first. One that
/// exceeds a limit, or has a document type with an internal subset, is refused: the reader is then at its end from the
/// beginning, with an error that gives the reason and the line, and no token is read.
///
/// Names are compared by their local part, whether their prefix is declared or not.
class BoundedXmlReader : public QXmlStreamReader
{
public:
    explicit BoundedXmlReader(const QByteArray& document, const XmlLimits& limits = {});

private:
    struct Source
    {
        QString text;
        QByteArray utf8; ///< read in place of `text`, if not empty
        QString refusal; ///< empty: the document can be read
    };
    explicit BoundedXmlReader(const Source& source);
    static Source Check(const QByteArray& document, const XmlLimits& limits);

    QBuffer m_utf8;
};
