// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Takes the screenshots for the documentation: vexel_pictures <connection list> <output folder> [<language>]
//
// With a language, such as "de", those of the operator's guide in this language.

#include "files/boundedfile.h"
#include "platform/cfgcenter.h"
#include "platform/translationcenter.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QMessageBox>
#include <QTimer>
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

    void Filter(ConnectionsModel::Column column, const QString& pattern)
    {
        dialog.m_pFilterAction->trigger();
        dialog.m_pFilterColumnComboBox->setCurrentIndex(column);
        dialog.m_pFilterPatternLineEdit->setText(pattern);
    }

    void Edit(int row, ConnectionsModel::Column column)
    {
        const QModelIndex cell = dialog.m_pBasicView->model()->index(row, column);
        dialog.m_pBasicView->setCurrentIndex(cell);
        dialog.SlotDoubleClicked(cell);
    }

    /// Shows the ticked entries as in use.
    void UseTicked()
    {
        for (int row = 0; row < model.rowCount(); ++row) {
            const Connection entry = model.GetConnection(row);
            if (entry.Selected)
                model.SetConnectionStatus(entry, Connection::InUse);
        }
    }

    bool SaveMenu(const QString& path)
    {
        auto* const menu = dialog.findChild<QMenu*>();
        menu->popup({});
        Settle();
        return menu->grab().save(path);
    }

    /// Saves the box that appears if no application is installed for an entry.
    bool SaveProblem(const QString& path)
    {
        bool saved = false;
        QTimer::singleShot(0, &dialog, [&saved, &path] {
            auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            Settle();
            saved = box && box->grab().save(path);
            if (box)
                box->accept();
        });
        appCounter.ConnectTo(model.GetConnection(0));
        return saved;
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

bool TakeAll(const QByteArray& document, const QDir& folder)
{
    const auto path = [&folder](const char* name) {
        return folder.filePath(QStringLiteral("%1.png").arg(QLatin1String(name)));
    };
    bool saved = true;
    {
        Scene scene(document);
        saved &= scene.Save(path("dialog"));
    }
    {
        Scene scene(document);
        scene.ShowDetails();
        scene.Filter(ConnectionsModel::ColumnDeviceType, QStringLiteral("kite"));
        saved &= scene.Save(path("dialog-details-filter"));
    }
    {
        Scene scene(document);
        scene.Edit(3, ConnectionsModel::ColumnDeviceType);
        saved &= scene.Save(path("dialog-editor"));
    }
    {
        Scene scene(document);
        scene.UseTicked();
        saved &= scene.Save(path("dialog-in-use"));
    }
    return saved;
}

bool TakeForGuide(const QByteArray& document, const QDir& folder, const QString& language)
{
    TranslationCenter& translations = TranslationCenter::Instance();
    translations.SetLocale(QLocale(language));
    translations.Register(QStringLiteral("VexelConnectDlg"));
    translations.Register(QStringLiteral("qtbase"));
    const auto path = [&](const char* name) {
        return folder.filePath(QStringLiteral("%1_%2.png").arg(QLatin1String(name), language));
    };
    bool saved = true;
    {
        Scene scene(document);
        saved &= scene.Save(path("list"));
    }
    {
        Scene scene(document);
        scene.ShowDetails();
        saved &= scene.Save(path("details"));
    }
    {
        Scene scene(document);
        scene.UseTicked();
        saved &= scene.Save(path("in-use"));
    }
    {
        Scene scene(document);
        saved &= scene.SaveProblem(path("problem"));
    }
    {
        Scene scene(document);
        scene.Edit(3, ConnectionsModel::ColumnDeviceType);
        saved &= scene.Save(path("editor"));
    }
    {
        Scene scene(document);
        saved &= scene.SaveMenu(path("menu"));
    }
    {
        Scene scene(document);
        scene.dialog.resize(700, 400);
        scene.Filter(ConnectionsModel::ColumnDeviceType, QStringLiteral("kite"));
        saved &= scene.Save(path("filter"));
    }
    return saved;
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const qsizetype count = arguments.size();
    const auto document = count == 3 || count == 4 ? ReadRegularFile(arguments.at(1)) : std::nullopt;
    if (!document) {
        std::fprintf(stderr, "usage: vexel_pictures <connection list> <output folder> [<language>]\n");
        return 1;
    }
    const QDir folder(arguments.at(2));
    return (count == 3 ? TakeAll(*document, folder) : TakeForGuide(*document, folder, arguments.at(3))) ? 0 : 2;
}
