// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Takes the screenshots for the documentation: vexel_pictures <connection list> <output folder>

#include "files/boundedfile.h"
#include "platform/cfgcenter.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QTreeView>

#include <cstdio>

namespace {

/// The dialog with the entries of `document`.
class Scene
{
public:
    /// Starts with an empty configuration.
    explicit Scene(const QByteArray& document)
        : model((CfgCenter::Close(), nullptr), QString())
        , appCounter(&model, QString())
        , dialog(nullptr, &model, &appCounter)
    {
        model.FromByteArray(document);
        dialog.resize(560, 400);
        dialog.show();
        Settle();
    }

    void ShowDetails()
    {
        dialog.resize(1240, 470);
        dialog.m_pDetailsAction->trigger();
        Settle();
        dialog.m_pSplitter->setSizes({430, 800});
        Settle();
    }

    /// Processes pending layouts and repaints.
    static void Settle()
    {
        for (int i = 0; i < 5; ++i) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents();
        }
    }

    bool Save(const QString& path)
    {
        Settle();
        return dialog.grab().save(path);
    }

    ConnectionsModel model;
    AppCounter appCounter;
    VexelConnectDlgGUI dialog;
};

bool TakeAll(const QByteArray& document, const QString& folder)
{
    const auto path = [&folder](const char* name) {
        return QStringLiteral("%1/%2.png").arg(folder, QString::fromLatin1(name));
    };
    bool saved = true;
    {
        Scene scene(document);
        saved &= scene.Save(path("dialog"));
    }
    {
        Scene scene(document);
        scene.ShowDetails();
        scene.dialog.m_pFilterAction->trigger();
        scene.dialog.m_pFilterColumnComboBox->setCurrentIndex(ConnectionsModel::ColumnDeviceType);
        scene.dialog.m_pFilterPatternLineEdit->setText(QStringLiteral("kite"));
        saved &= scene.Save(path("dialog-details-filter"));
    }
    {
        Scene scene(document);
        const QModelIndex cell = scene.dialog.m_pBasicView->model()->index(3, ConnectionsModel::ColumnDeviceType);
        scene.dialog.m_pBasicView->setCurrentIndex(cell);
        scene.dialog.SlotDoubleClicked(cell);
        saved &= scene.Save(path("dialog-editor"));
    }
    {
        Scene scene(document);
        for (int row = 0; row < scene.model.rowCount(); ++row) {
            const Connection entry = scene.model.GetConnection(row);
            if (entry.Selected)
                scene.model.SetConnectionStatus(entry, Connection::InUse);
        }
        saved &= scene.Save(path("dialog-in-use"));
    }
    return saved;
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const auto document = arguments.size() == 3 ? ReadRegularFile(arguments.at(1)) : std::nullopt;
    if (!document) {
        std::fprintf(stderr, "usage: vexel_pictures <connection list> <output folder>\n");
        return 1;
    }
    return TakeAll(*document, arguments.at(2)) ? 0 : 2;
}
