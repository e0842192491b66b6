#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>

#include <variant>
#include <vector>

/// A report in sections, in the order in which it is made: as text for a person, or as JSON for a program.
///
/// Values are texts, numbers, yes or no, or null for what is not known or not there; a value may also be an array of
/// texts. JSON has an object for each section; its keys are the titles and labels written as one word
/// ("dataDirectory").
class SupportReport
{
public:
    using Row = QJsonArray;

    void BeginSection(const QString& title);
    /// A line "label  value".
    void AddFact(const QString& label, const QJsonValue& value);
    /// A line for each text.
    void AddList(const QString& label, const QStringList& texts);
    /// Every row has a value for each column. In JSON: an array of objects.
    void AddTable(const QString& label, const QStringList& columns, const QList<Row>& rows);

    /// Long texts are cut, and so are lists and tables of very many lines; it then says so.
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
        QStringList columns; // none: a list of single texts
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
