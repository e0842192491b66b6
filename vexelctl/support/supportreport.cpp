// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/support/supportreport.h"

#include "host/output/texttable.h"
#include "process/textline.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

constexpr int kMaxTextWidth = 300;
// Texts are cut to this length before escaping: a name in the machine's file may be a megabyte long.
constexpr qsizetype kMaxReadLength = 2000;
constexpr qsizetype kMaxRows = 200;
const QString kIndent = QStringLiteral("  ");

QString ValueText(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Bool:
        return value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    case QJsonValue::Double:
        return QString::number(value.toInteger());
    case QJsonValue::String: {
        const QString text = Elided(OneLine(value.toString().left(kMaxReadLength)), kMaxTextWidth);
        return text.isEmpty() ? QStringLiteral("\"\"") : text;
    }
    case QJsonValue::Array: {
        QStringList texts;
        const QJsonArray array = value.toArray();
        for (const auto& element : array)
            texts.append(ValueText(element));
        return texts.isEmpty() ? QStringLiteral("none") : Elided(texts.join(QStringLiteral(", ")), kMaxTextWidth);
    }
    default:
        return QStringLiteral("-");
    }
}

/// Converts "data directory" to "dataDirectory".
QString Key(const QString& label)
{
    QString key;
    bool startsWord = false;
    for (const QChar character : label) {
        if (!character.isLetterOrNumber()) {
            startsWord = !key.isEmpty();
            continue;
        }
        if (key.isEmpty())
            key += character.toLower();
        else
            key += startsWord ? character.toUpper() : character;
        startsWord = false;
    }
    return key;
}

QString Indented(const QString& lines, const QString& indent)
{
    QString text;
    const QStringList list = lines.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : list)
        text += indent + line + QLatin1Char('\n');
    return text;
}

/// Formats "label  text", with the label padded to `width`.
QString LabelLine(const QString& label, int width, const QString& text)
{
    const int blanks = std::max(0, width - CellCount(label));
    return kIndent + label + QString(blanks, QLatin1Char(' ')) + kIndent + text + QLatin1Char('\n');
}

} // namespace

void SupportReport::BeginSection(const QString& title)
{
    m_sections.push_back({title, {}});
}

void SupportReport::AddFact(const QString& label, const QJsonValue& value)
{
    m_sections.back().items.emplace_back(Fact{label, value});
}

void SupportReport::AddList(const QString& label, const QStringList& texts)
{
    QList<Row> rows;
    for (const QString& text : texts)
        rows.append(Row{text});
    AddTable(label, {}, rows);
}

void SupportReport::AddTable(const QString& label, const QStringList& columns, const QList<Row>& rows)
{
    m_sections.back().items.emplace_back(Table{label, columns, rows});
}

QString SupportReport::TableText(const Table& table)
{
    std::vector<QStringList> lines;
    if (!table.columns.isEmpty())
        lines.push_back(table.columns);
    const qsizetype shown = std::min(table.rows.size(), kMaxRows);
    for (qsizetype i = 0; i < shown; ++i) {
        QStringList line;
        for (const auto value : table.rows.at(i))
            line.append(ValueText(value));
        lines.push_back(line);
    }
    QString text = Indented(TextTable(lines), kIndent + kIndent);
    if (shown < table.rows.size())
        text += kIndent + kIndent + QStringLiteral("and %1 more (--json prints all)\n").arg(table.rows.size() - shown);
    return text;
}

QString SupportReport::Text() const
{
    QString text;
    for (const Section& section : m_sections) {
        int width = 0;
        for (const auto& item : section.items)
            width = std::max(width, std::visit([](const auto& one) { return CellCount(one.label); }, item));

        text += (text.isEmpty() ? QString() : QStringLiteral("\n")) + section.title + QLatin1Char('\n');
        for (const auto& item : section.items) {
            if (const auto* const fact = std::get_if<Fact>(&item)) {
                text += LabelLine(fact->label, width, ValueText(fact->value));
                continue;
            }
            const auto& table = std::get<Table>(item);
            if (table.rows.isEmpty())
                text += LabelLine(table.label, width, QStringLiteral("none"));
            else
                text += kIndent + table.label + QLatin1Char('\n') + TableText(table);
        }
    }
    return text;
}

QByteArray SupportReport::Json() const
{
    QJsonObject report;
    for (const Section& section : m_sections) {
        QJsonObject object;
        for (const auto& item : section.items) {
            if (const auto* const fact = std::get_if<Fact>(&item)) {
                object.insert(Key(fact->label), fact->value);
                continue;
            }
            const auto& table = std::get<Table>(item);
            QJsonArray rows;
            for (const Row& row : table.rows) {
                if (table.columns.isEmpty()) {
                    rows.append(row.at(0));
                    continue;
                }
                QJsonObject line;
                for (qsizetype i = 0; i < table.columns.size(); ++i)
                    line.insert(Key(table.columns.at(i)), row.at(i));
                rows.append(line);
            }
            object.insert(Key(table.label), rows);
        }
        report.insert(Key(section.title), object);
    }
    return QJsonDocument(report).toJson();
}
