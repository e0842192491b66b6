#include "host/headless/dialogpicture.h"

#include "host/plugin/connectdialog.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QPixmap>
#include <QSaveFile>

#include <algorithm>

namespace {

// 10,000 entries do not make a picture; the views' scroll bars show that there is more.
constexpr QSize kLargest(2400, 1600);
constexpr int kAttempts = 4;

/// The size at which `view` shows its columns and rows without scrolling or cutting texts.
QSize FittingSize(const QTreeView& view)
{
    const QHeaderView* header = view.header();
    // The tree view keeps this to itself, the class that it derives from does not.
    const QAbstractItemView& items = view;
    const int frame = 2 * view.frameWidth();
    int width = frame;
    int height = frame + header->height();
    for (int column = 0; column < header->count(); ++column) {
        if (header->isSectionHidden(column))
            continue;
        // The last section takes whatever room there is, be it less than its texts need.
        width +=
            std::max({header->sectionSize(column), header->sectionSizeHint(column), items.sizeHintForColumn(column)});
    }
    const QAbstractItemModel* model = view.model();
    for (int row = 0; row < model->rowCount() && height < kLargest.height(); ++row)
        height += view.visualRect(model->index(row, header->logicalIndexAt(0))).height();
    return {width, height};
}

void Settle()
{
    // Layouts and header sizes are brought up to date by posted events.
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers);
}

/// Makes the window as large as its views, side by side, need it. False when it already was.
bool MakeRoom(const ConnectDialog& dialog)
{
    QSize missing(0, 0);
    for (const QTreeView* view : dialog.Views()) {
        if (!view->isVisible())
            continue;
        const QSize lacking = FittingSize(*view) - view->size();
        missing.rwidth() += std::max(0, lacking.width());
        missing.rheight() = std::max(missing.height(), lacking.height());
    }
    QWidget* window = dialog.Window();
    const QSize before = window->size();
    window->resize((before + missing).expandedTo(window->minimumSizeHint()).boundedTo(kLargest));
    return window->size() != before;
}

} // namespace

QString WriteDialogPicture(const ConnectDialog& dialog, const QString& fileName)
{
    QWidget* window = dialog.Window();
    const bool wasHidden = window->isHidden();
    window->show();
    Settle();
    // What is laid out for the first time may measure differently once it has room.
    for (int attempt = 0; attempt < kAttempts && MakeRoom(dialog); ++attempt)
        Settle();
    const QPixmap picture = window->grab();
    if (wasHidden)
        window->hide();

    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || !picture.save(&file, "PNG") || !file.commit())
        return QStringLiteral("cannot write the picture %1: %2").arg(fileName, file.errorString());
    return {};
}
