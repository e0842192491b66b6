#include "host/headless/dialogpicture.h"

#include "host/plugin/connectdialog.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QPixmap>
#include <QSaveFile>

#include <algorithm>

namespace {

// A screenshot of 10,000 entries is useless; scroll bars show that there are more.
constexpr QSize kMaxSize(2400, 1600);
// Larger factors make the picture smaller than `kMaxSize`. Without this limit, memory would not suffice.
constexpr qreal kMaxScaleFactor = 5;
constexpr int kMaxAttempts = 4;

/// Returns the size at which `view` shows all columns and rows without scrolling or elided text.
QSize FittingSize(const QTreeView& view)
{
    const QHeaderView* header = view.header();
    // sizeHintForColumn() is protected in QTreeView, but public in its base class.
    const QAbstractItemView& items = view;
    const int frame = 2 * view.frameWidth();
    int width = frame;
    int height = frame + header->height();
    for (int column = 0; column < header->count(); ++column) {
        if (header->isSectionHidden(column))
            continue;
        // The last section is stretched to the available width, which may be less than its texts need.
        width +=
            std::max({header->sectionSize(column), header->sectionSizeHint(column), items.sizeHintForColumn(column)});
    }
    const QAbstractItemModel* model = view.model();
    for (int row = 0; row < model->rowCount() && height < kMaxSize.height(); ++row)
        height += view.visualRect(model->index(row, header->logicalIndexAt(0))).height();
    return {width, height};
}

/// Returns the largest size for the window, in its coordinates.
QSize MaxSize(const QWidget& window)
{
    return kMaxSize * std::min(1.0, kMaxScaleFactor / window.devicePixelRatioF());
}

void ProcessLayout()
{
    // Posted events update layouts and header sizes.
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers);
}

/// Enlarges the window to fit its views. Returns false if the size did not change.
bool Enlarge(const ConnectDialog& dialog)
{
    QSize missing(0, 0);
    for (const QTreeView* view : dialog.Views()) {
        if (!view->isVisible())
            continue;
        const QSize needed = FittingSize(*view) - view->size();
        missing.rwidth() += std::max(0, needed.width());
        missing.rheight() = std::max(missing.height(), needed.height());
    }
    QWidget* window = dialog.Window();
    const QSize before = window->size();
    window->resize((before + missing).expandedTo(window->minimumSizeHint()).boundedTo(MaxSize(*window)));
    return window->size() != before;
}

} // namespace

QString WriteDialogPicture(const ConnectDialog& dialog, const QString& fileName)
{
    QWidget* window = dialog.Window();
    const QSize maxSize = MaxSize(*window);
    // Checked first, because Qt crashes if it shows a window without enough memory to paint it.
    if (window->minimumSizeHint().boundedTo(maxSize) != window->minimumSizeHint()) {
        return QStringLiteral("cannot write the screenshot %1: the dialog is too large with the scale factor %2")
            .arg(fileName, QString::number(window->devicePixelRatioF()));
    }
    if (window->size().boundedTo(maxSize) != window->size())
        window->resize(window->size().boundedTo(maxSize));
    const bool wasHidden = window->isHidden();
    window->show();
    ProcessLayout();
    // The first layout may measure differently once it has enough room.
    for (int attempt = 0; attempt < kMaxAttempts && Enlarge(dialog); ++attempt)
        ProcessLayout();
    const QPixmap picture = window->grab();
    if (wasHidden)
        window->hide();

    if (picture.isNull())
        return QStringLiteral("cannot write the screenshot %1: the dialog cannot be painted").arg(fileName);

    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || !picture.save(&file, "PNG") || !file.commit())
        return QStringLiteral("cannot write the screenshot %1: %2").arg(fileName, file.errorString());
    return {};
}
