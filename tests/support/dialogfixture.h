#pragma once

#include "platform/cfgcenter.h"
#include "platform/guibase.h"
#include "platform/icfg.h"
#include "tests/support/messageboxes.h"
#include "tests/support/tracerecorder.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QSortFilterProxyModel>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

#include <memory>

/// An entry as a test writes it down.
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

/// The dialog as the plug-in builds it, on a configuration that lives in memory and a data directory of its own, with
/// model testers on the model and on the proxy. What is needed of it is found by object name.
class DialogFixture
{
public:
    DialogFixture() { CfgCenter::Close(); }
    ~DialogFixture()
    {
        TearDown();
        CfgCenter::Close();
    }
    Q_DISABLE_COPY_MOVE(DialogFixture)

    /// Builds model, launcher and dialog; the data directory and the stored configuration must be as wanted by then.
    void Build()
    {
        CfgCenter::CreateCfg(QStringLiteral("Administration"), View::Application, QString())
            ->SetString(QStringLiteral("VexelDataDir"), m_data.path(), 0);
        model = new ConnectionsModel(nullptr, QStringLiteral("ConnectionsModel"));
        m_modelTester =
            std::make_unique<QAbstractItemModelTester>(model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        appCounter = new AppCounter(model, QStringLiteral("VexelConnectDlg"));
        dialog = new VexelConnectDlgGUI(nullptr, model, appCounter);
        m_proxyTester =
            std::make_unique<QAbstractItemModelTester>(Proxy(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    }

    /// In the order in which the plug-in does it.
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

    /// Installs the test's child program under `applications` names, all of them for `deviceTypes`.
    void Install(const QStringList& applications, const QList<int>& deviceTypes, const QString& program)
    {
        QByteArray machine = "<VEXEL><Machine>";
        for (const QString& application : applications) {
            machine += "<" + application.toUtf8() + "><Startup><exe>" + program.toUtf8() + "</exe></Startup></" +
                       application.toUtf8() + ">";
        }
        machine += "</Machine></VEXEL>";
        QByteArray mapping = "<TypeApplicationMappings>";
        for (const int type : deviceTypes) {
            mapping += "<Mapping><DeviceType>" + QByteArray::number(type) + "</DeviceType><Application>" +
                       applications.first().toUtf8() + "</Application></Mapping>";
        }
        mapping += "</TypeApplicationMappings>";
        WriteFile(QStringLiteral("CfgVEXEL.xml"), machine);
        WriteFile(QStringLiteral("TypeApplicationMappings.xml"), mapping);
    }

    QString WriteFile(const QString& name, const QByteArray& content)
    {
        QFile file(DataPath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
        return file.fileName();
    }

    QString DataPath(const QString& name) const { return m_data.filePath(name); }

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

    /// What a person's double click sends: press, release, double click, release.
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

    /// What the platform sends when something is dragged onto `target` and let go.
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
    QTemporaryDir m_data;
    std::unique_ptr<QAbstractItemModelTester> m_modelTester;
    std::unique_ptr<QAbstractItemModelTester> m_proxyTester;
};
