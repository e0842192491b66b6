// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/plugin/connectdialog.h"

#include <QAbstractProxyModel>
#include <QApplication>
#include <QMetaMethod>
#include <QMimeData>
#include <QVariantMap>

#include <algorithm>

namespace {

/// The MIME type of a connection list document.
const QString kMimeType = QStringLiteral("text/plain");

/// Returns the source model of `view`, below all proxies.
QAbstractItemModel* SourceModel(const QTreeView* view)
{
    QAbstractItemModel* model = view->model();
    while (auto* proxy = qobject_cast<QAbstractProxyModel*>(model))
        model = proxy->sourceModel();
    return model;
}

} // namespace

Connection ToConnection(const EntryRow& row)
{
    const auto value = [&row](EntryColumn column) {
        return row[static_cast<std::size_t>(column)];
    };
    Connection entry;
    entry.Selected = value(EntryColumn::Tick).toBool();
    entry.ConnectionName = value(EntryColumn::Name).toString();
    entry.ConnectionStatus = value(EntryColumn::Status).toInt();
    entry.DeviceType = value(EntryColumn::DeviceType).toInt();
    entry.ConnectionType = value(EntryColumn::ConnectionType).toInt();
    entry.DeviceAddress = value(EntryColumn::DeviceAddress).toString();
    entry.DriverAddress = value(EntryColumn::DriverAddress).toString();
    entry.LinkSpeed = value(EntryColumn::LinkSpeed).toInt();
    entry.TimeoutSeconds = value(EntryColumn::Timeout).toInt();
    entry.Subsystem = value(EntryColumn::Subsystem).toString();
    return entry;
}

std::optional<ConnectDialog> ConnectDialog::Find(QString& error)
{
    const QString windowName = QStringLiteral("VexelConnectDlgGUI");
    const QString modelName = QStringLiteral("ConnectionsModel");

    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto window = std::find_if(windows.begin(), windows.end(),
                                     [&](const QWidget* widget) { return widget->objectName() == windowName; });
    if (window == windows.end()) {
        error = QStringLiteral("the plug-in has no window \"%1\"").arg(windowName);
        return std::nullopt;
    }

    ConnectDialog dialog;
    dialog.m_pWindow = *window;
    for (const QString& name : {QStringLiteral("m_pBasicView"), QStringLiteral("m_pDetailsView")}) {
        auto* view = dialog.m_pWindow->findChild<QTreeView*>(name);
        if (!view) {
            error = QStringLiteral("the plug-in's window has no view \"%1\"").arg(name);
            return std::nullopt;
        }
        dialog.m_views.append(view);
    }
    dialog.m_pEntries = SourceModel(dialog.m_views.constFirst());
    if (!dialog.m_pEntries || dialog.m_pEntries->objectName() != modelName ||
        dialog.m_pEntries->columnCount() != kEntryColumnCount) {
        error = QStringLiteral("the plug-in's window does not show a list \"%1\" of %2 columns")
                    .arg(modelName)
                    .arg(kEntryColumnCount);
        return std::nullopt;
    }
    return dialog;
}

int ConnectDialog::Count() const
{
    return m_pEntries->rowCount();
}

QVariant ConnectDialog::Value(int row, EntryColumn column) const
{
    return m_pEntries->index(row, static_cast<int>(column)).data(Qt::EditRole);
}

QString ConnectDialog::Name(int row) const
{
    return Value(row, EntryColumn::Name).toString();
}

int ConnectDialog::Status(int row) const
{
    return Value(row, EntryColumn::Status).toInt();
}

bool ConnectDialog::IsTicked(int row) const
{
    return Value(row, EntryColumn::Tick).toBool();
}

EntryRow ConnectDialog::Row(int row) const
{
    EntryRow values;
    for (int column = 0; column < kEntryColumnCount; ++column)
        values[static_cast<std::size_t>(column)] = Value(row, static_cast<EntryColumn>(column));
    return values;
}

std::optional<EntryApplication> ConnectDialog::ApplicationOf(int row) const
{
    const QMetaObject* const type = m_pWindow->metaObject();
    const QMetaMethod method = type->method(type->indexOfMethod("ApplicationOf(int)"));
    QVariantMap values;
    if (method.returnMetaType() != QMetaType::fromType<QVariantMap>() ||
        !method.invoke(m_pWindow, Qt::DirectConnection, Q_RETURN_ARG(QVariantMap, values), Q_ARG(int, row)) ||
        values.isEmpty())
        return std::nullopt;

    const auto number = [&values](const QString& key) {
        const auto value = values.constFind(key);
        return value == values.cend() ? std::nullopt : std::optional(value->toInt());
    };
    EntryApplication application;
    application.program = values.value(QStringLiteral("program")).toString();
    application.process = values.value(QStringLiteral("process")).toLongLong();
    application.since = values.value(QStringLiteral("since")).toDateTime();
    application.exitCode = number(QStringLiteral("exitCode"));
    application.signal = number(QStringLiteral("signal"));
    application.isCrash = values.value(QStringLiteral("crashed")).toBool();
    return application;
}

bool ConnectDialog::Append(const QByteArray& document) const
{
    const int before = Count();
    QMimeData data;
    data.setData(kMimeType, document);
    // Through the view's proxy, which sorts the entries in faster than one by one.
    const bool good = m_views.constFirst()->model()->dropMimeData(&data, Qt::CopyAction, -1, -1, QModelIndex());
    if (!good) {
        // The model has taken the entries before the error; a partial import is not wanted.
        if (Count() > before)
            m_pEntries->removeRows(before, Count() - before);
        return false;
    }
    // The file may have been written while its entries were in use, but no application runs for them here.
    for (int row = before; row < Count(); ++row)
        m_pEntries->setData(m_pEntries->index(row, static_cast<int>(EntryColumn::Status)), kFree, Qt::EditRole);
    return true;
}

ListCopy ConnectDialog::Copy() const
{
    ListCopy copy;
    copy.document = m_pWindow->property("entriesBeforeImport").toByteArray();
    if (!copy.document.isEmpty())
        return copy;
    copy.rows.resize(static_cast<std::size_t>(Count()));
    for (int row = 0; row < Count(); ++row)
        copy.rows[static_cast<std::size_t>(row)] = Row(row);
    return copy;
}

bool ConnectDialog::ConnectEntries(const QList<int>& rows) const
{
    bool isDone = true;
    QMetaObject::invokeMethod(m_pWindow, "ConnectEntries", Q_RETURN_ARG(bool, isDone), Q_ARG(QList<int>, rows));
    return isDone;
}

void ConnectDialog::BringToFront() const
{
    m_pWindow->setWindowState(m_pWindow->windowState() & ~Qt::WindowMinimized);
    m_pWindow->show();
    m_pWindow->raise();
    m_pWindow->activateWindow();
}
