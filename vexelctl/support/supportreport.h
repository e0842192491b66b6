// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>

#include <variant>
#include <vector>

/// A report in sections, as text for people or JSON for programs.
///
/// Values are texts, numbers, booleans, arrays of texts, or null for unknown or missing ones. In JSON each section is
/// an object; its keys are the titles and labels in camel case ("dataDirectory").
class SupportReport
{
public:
    using Row = QJsonArray;

    void BeginSection(const QString& title);
    /// Adds a line "label  value".
    void AddFact(const QString& label, const QJsonValue& value);
    /// Adds a line for each text.
    void AddList(const QString& label, const QStringList& texts);
    /// Adds a table. Every row has a value for each column. In JSON: an array of objects.
    void AddTable(const QString& label, const QStringList& columns, const QList<Row>& rows);

    /// Returns the report as text. Long texts, lists and tables are shortened, with a note about it.
    QString Text() const;
    QByteArray Json() const;

private:
    struct Fact
    {
        QString label;
        QJsonValue value;
    };
    struct Table
    {
        QString label;
        QStringList columns; // empty: a list of single texts
        QList<Row> rows;
    };
    struct Section
    {
        QString title;
        std::vector<std::variant<Fact, Table>> items;
    };

    static QString TableText(const Table& table);

    std::vector<Section> m_sections;
};
