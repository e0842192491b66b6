// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "tests/entries/entrysamples.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QAbstractItemModelTester>
#include <QList>
#include <QMimeData>
#include <QSignalSpy>
#include <QStringList>
#include <QTest>

#include <initializer_list>
#include <memory>
#include <utility>

/// A model without a stored set, with a model tester attached before the first change.
class WatchedModel : public ConnectionsModel
{
public:
    WatchedModel()
        : ConnectionsModel(nullptr, QString())
    {
    }
    using ConnectionsModel::createIndex;

    void AddNamed(std::initializer_list<const char*> names)
    {
        for (const char* const name : names)
            AddConnection(NamedEntry(QString::fromLatin1(name)));
    }

    QStringList Names() const
    {
        QStringList names;
        for (int row = 0; row < rowCount(); ++row)
            names += GetConnection(row).ConnectionName;
        return names;
    }

private:
    QAbstractItemModelTester m_tester{this, QAbstractItemModelTester::FailureReportingMode::QtTest};
};

inline QStringList Texts(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const char* const text : texts)
        list += QString::fromLatin1(text);
    return list;
}

/// The (row, column) pairs of the cells that `dataChanged` announced one by one; a larger range fails the test.
inline QList<std::pair<int, int>> ChangedCells(const QSignalSpy& spy)
{
    QList<std::pair<int, int>> cells;
    for (const QList<QVariant>& arguments : spy) {
        const auto topLeft = arguments.at(0).toModelIndex();
        if (topLeft != arguments.at(1).toModelIndex())
            QTest::qFail("dataChanged for more than one cell", __FILE__, __LINE__);
        cells.append({topLeft.row(), topLeft.column()});
    }
    return cells;
}

inline std::unique_ptr<QMimeData> PlainText(const QByteArray& bytes)
{
    auto data = std::make_unique<QMimeData>();
    data->setData(QStringLiteral("text/plain"), bytes);
    return data;
}

inline bool Drop(ConnectionsModel& model, const QMimeData* data)
{
    return model.dropMimeData(data, Qt::CopyAction, -1, -1, QModelIndex());
}

/// The counts of a model, computed from its entries.
struct CountedByHand
{
    int selectedFree = 0;
    int inUse = 0;
    int selected = 0;

    explicit CountedByHand(const ConnectionsModel& model)
    {
        for (int row = 0; row < model.rowCount(); ++row) {
            const Connection entry = model.GetConnection(row);
            selected += entry.Selected ? 1 : 0;
            inUse += entry.ConnectionStatus != 0 ? 1 : 0;
            selectedFree += entry.Selected && entry.ConnectionStatus == 0 ? 1 : 0;
        }
    }

    bool Agrees(const ConnectionsModel& model) const
    {
        return model.CountSelectedFree() == selectedFree && model.CountInUse() == inUse &&
               model.CountSelected() == selected;
    }
};
