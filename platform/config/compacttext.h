// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QString>

/// A text for keeping: a long one takes one byte per character if all of them are Latin-1, as in hexadecimal text.
class CompactText
{
public:
    CompactText() = default;
    explicit CompactText(const QString& text);

    QString Text() const;
    bool operator==(const QString& text) const;

private:
    QString m_text;
    QByteArray m_latin1; // if it is not empty, `m_text` is
};
