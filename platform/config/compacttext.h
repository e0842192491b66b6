// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QString>

/// A text for keeping: once it is compact, a long one takes one byte per character if all of them are Latin-1, as in
/// hexadecimal text.
class CompactText
{
public:
    CompactText() = default;
    /// A text that is not compact yet: for one that will be asked for soon.
    explicit CompactText(QString text);

    void Compact();

    QString Text() const;
    bool operator==(const QString& text) const;

private:
    QString m_text;
    QByteArray m_latin1; // if it is not empty, `m_text` is
};
