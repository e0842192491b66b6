// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/guibase.h"
#include "tests/support/confignodes.h"
#include "tests/support/files.h"
#include "tests/support/launcherfixture.h"
#include "tests/support/messageboxes.h"
#include "tests/support/tracerecorder.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <QAbstractItemModelTester>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QSortFilterProxyModel>
#include <QTest>
#include <QTreeView>

#include <memory>

inline Connection Entry(const QString& name, int deviceType = Connection::KiteEcho, bool selected = false,
                        const QString& driverAddress = QString())
{
    Connection entry;
    entry.ConnectionName = name;
    entry.DeviceType = deviceType;
    entry.Selected = selected;
    entry.DriverAddress = driverAddress;
    return entry;
}

inline Connection Entry(const char* name, int deviceType = Connection::KiteEcho, bool selected = false)
{
    return Entry(QString::fromUtf8(name), deviceType, selected);
}

/// The dialog as the plug-in builds it, with a configuration in memory, an own data directory, and model testers for
/// the model and the proxy. Widgets are found by object name.
class DialogFixture
{
public:
    DialogFixture() = default;
    ~DialogFixture() { TearDown(); }
    Q_DISABLE_COPY_MOVE(DialogFixture)

    /// Builds model, launcher and dialog, which read the data directory and the stored configuration.
    void Build()
    {
        model = new ConnectionsModel(nullptr, QStringLiteral("ConnectionsModel"));
        m_modelTester =
            std::make_unique<QAbstractItemModelTester>(model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        appCounter = new AppCounter(model, QStringLiteral("VexelConnectDlg"));
        dialog = new VexelConnectDlgGUI(nullptr, model, appCounter);
        m_proxyTester =
            std::make_unique<QAbstractItemModelTester>(Proxy(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    }

    /// Deletes everything in the same order as the plug-in.
    void TearDown()
    {
        m_proxyTester.reset();
        delete std::exchange(dialog, nullptr);
        m_modelTester.reset();
        delete std::exchange(model, nullptr);
        delete std::exchange(appCounter, nullptr);
    }

    void Show()
    {
        dialog->show();
        QVERIFY(QTest::qWaitForWindowExposed(dialog));
    }

    void Add(const QList<Connection>& entries)
    {
        for (const Connection& entry : entries)
            model->AddConnection(entry);
    }

    /// Installs `program` under all names of `applications`; it serves `deviceTypes`.
    void Install(const QStringList& applications, const QList<int>& deviceTypes, const QString& program)
    {
        QList<std::pair<QString, QList<int>>> installed;
        for (const QString& application : applications)
            installed.append({application, application == applications.first() ? deviceTypes : QList<int>()});
        if (!m_data.Install(installed, program))
            qFatal("cannot write into %s", qPrintable(m_data.Path()));
    }

    QString WriteFile(const QString& name, const QByteArray& content)
    {
        const QString path = DataPath(name);
        if (!Files::Write(path, content))
            qFatal("cannot write %s", qPrintable(path));
        return path;
    }

    QString DataPath(const QString& name) const { return m_data.Path(name); }

    template <typename Widget>
    Widget* Find(const char* name) const
    {
        auto* const found = dialog->findChild<Widget*>(QString::fromLatin1(name));
        if (!found)
            qFatal("no %s in the dialog", name);
        return found;
    }

    QTreeView* BasicView() const { return Find<QTreeView>("m_pBasicView"); }
    QTreeView* DetailsView() const { return Find<QTreeView>("m_pDetailsView"); }
    QPushButton* ConnectButton() const { return Find<QPushButton>("m_pConnectButton"); }
    QAction* Action(const char* name) const { return Find<QAction>(name); }
    QSortFilterProxyModel* Proxy() const { return qobject_cast<QSortFilterProxyModel*>(BasicView()->model()); }

    /// The proxy's row of the first entry of that name; -1 where the filter hides it.
    int ProxyRow(const QString& name) const
    {
        for (int row = 0; row < Proxy()->rowCount(); ++row)
            if (Proxy()->index(row, ConnectionsModel::ColumnName).data(Qt::EditRole).toString() == name)
                return row;
        return -1;
    }

    QModelIndex ProxyIndex(const QString& name, int column) const { return Proxy()->index(ProxyRow(name), column); }
    QModelIndex ProxyIndex(const char* name, int column) const { return ProxyIndex(QString::fromUtf8(name), column); }

    /// Names in the order in which the views show them.
    QStringList ShownNames() const
    {
        QStringList names;
        for (int row = 0; row < Proxy()->rowCount(); ++row)
            names += Proxy()->index(row, ConnectionsModel::ColumnName).data(Qt::EditRole).toString();
        return names;
    }

    /// Names in the model's order.
    QStringList Names() const
    {
        QStringList names;
        for (int row = 0; row < model->rowCount(); ++row)
            names += model->GetConnection(row).ConnectionName;
        return names;
    }

    /// Clicks the cell with the left mouse button.
    static void Click(QTreeView* view, const QModelIndex& index)
    {
        view->scrollTo(index);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, view->visualRect(index).center());
    }

    /// Sends the events of a double click: press, release, double click, release.
    static void DoubleClick(QTreeView* view, const QModelIndex& index)
    {
        Click(view, index);
        const QPoint at = view->visualRect(index).center();
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, at);
        QTest::mouseRelease(view->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    }

    static bool DragEnter(QWidget* target, const QMimeData& data)
    {
        QDragEnterEvent event(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(target, &event);
        return event.isAccepted();
    }

    /// Sends the events of a drag that ends over `target`.
    static bool Drop(QWidget* target, const QMimeData& data)
    {
        if (!DragEnter(target, data))
            return false;
        QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(target, &event);
        return event.isAccepted();
    }

    ConnectionsModel* model = nullptr;
    AppCounter* appCounter = nullptr;
    VexelConnectDlgGUI* dialog = nullptr;

private:
    DataDirectory m_data;
    std::unique_ptr<QAbstractItemModelTester> m_modelTester;
    std::unique_ptr<QAbstractItemModelTester> m_proxyTester;
};
