#include "host/dialogpicture.h"

#include "host/connectdialog.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QPixmap>
#include <QSaveFile>
#include <QScrollBar>
#include <QSplitter>

#include <algorithm>

namespace {

// 10,000 entries do not make a picture; the views' scroll bars show that there is more.
constexpr QSize s_largest(2400, 1600);

/// The size at which `view` shows its columns and rows without scrolling.
QSize FittingSize(const QTreeView& view)
{
    int height = view.header()->sizeHint().height() + 2 * view.frameWidth();
    const QAbstractItemModel* model = view.model();
    for (int row = 0; row < model->rowCount() && height < s_largest.height(); ++row)
        height += std::max(0, view.visualRect(model->index(row, static_cast<int>(EntryColumn::Name))).height());
    return {view.header()->length() + 2 * view.frameWidth(), height};
}

void Settle()
{
    // Layouts and header sizes are brought up to date by posted events.
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers);
}

void MakeRoom(const ConnectDialog& dialog)
{
    QSize missing(0, 0);
    for (const QTreeView* view : dialog.Views()) {
        if (!view->isVisible())
            continue;
        const QSize lacking = FittingSize(*view) - view->size();
        missing.rwidth() += lacking.width();
        missing.rheight() = std::max(missing.height(), lacking.height());
    }
    const QSize wanted = dialog.Window()->size() + missing;
    dialog.Window()->resize(wanted.expandedTo(dialog.Window()->minimumSizeHint()).boundedTo(s_largest));
}

} // namespace

QString WriteDialogPicture(const ConnectDialog& dialog, const QString& fileName)
{
    QWidget* window = dialog.Window();
    const bool wasHidden = window->isHidden();
    window->show();
    Settle();
    MakeRoom(dialog);
    Settle();
    const QPixmap picture = window->grab();
    if (wasHidden)
        window->hide();

    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || !picture.save(&file, "PNG") || !file.commit())
        return QStringLiteral("cannot write the picture %1: %2").arg(fileName, file.errorString());
    return {};
}
