// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/textline.h"

#include <QList>

namespace {

constexpr char32_t kZeroWidthNonJoiner = 0x200c;
constexpr char32_t kZeroWidthJoiner = 0x200d;

bool NeedsEscape(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    case QChar::Other_Format:
        // The joiners are part of words and emoji; other format characters can reverse a line.
        return character != kZeroWidthNonJoiner && character != kZeroWidthJoiner;
    default:
        return false;
    }
}

QString Escape(char32_t character)
{
    switch (character) {
    case U'\n':
        return QStringLiteral("\\n");
    case U'\r':
        return QStringLiteral("\\r");
    case U'\t':
        return QStringLiteral("\\t");
    default:
        return QStringLiteral("\\u{%1}").arg(static_cast<quint32>(character), 0, 16);
    }
}

/// Returns the code points of `text`. Unlike `QString::toUcs4` this keeps unpaired surrogates, so that they can be
/// escaped.
QList<char32_t> CodePoints(const QString& text)
{
    QList<char32_t> points;
    points.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text.at(i);
        if (unit.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            points.append(QChar::surrogateToUcs4(unit, text.at(++i)));
        else
            points.append(unit.unicode());
    }
    return points;
}

bool TakesCell(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
        return false;
    default:
        return true;
    }
}

} // namespace

QString OneLine(const QString& text)
{
    QString line;
    line.reserve(text.size());
    for (const char32_t character : CodePoints(text))
        if (NeedsEscape(character))
            line += Escape(character);
        else
            line += QChar::fromUcs4(character);
    return line;
}

QString Elided(const QString& text, int width)
{
    const QList<char32_t> points = CodePoints(text);
    if (points.size() <= width)
        return text;
    const QList<char32_t> kept = points.first(width - 1);
    return QString::fromUcs4(kept.constData(), kept.size()) + QChar(0x2026);
}

int CellCount(const QString& text)
{
    int cells = 0;
    for (const char32_t character : CodePoints(text))
        cells += TakesCell(character) ? 1 : 0;
    return cells;
}
