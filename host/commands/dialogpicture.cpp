// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/commands/dialogpicture.h"

#include "host/plugin/connectdialog.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QHeaderView>
#include <QPixmap>

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

QByteArray DialogPicture(const ConnectDialog& dialog, QString* error)
{
    const QPixmap picture = dialog.Window()->grab();
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    if (picture.isNull() || !picture.save(&buffer, "PNG"))
        *error = QStringLiteral("the dialog cannot be painted");
    return png;
}

QByteArray EnlargedDialogPicture(const ConnectDialog& dialog, QString* error)
{
    QWidget* window = dialog.Window();
    const QSize maxSize = MaxSize(*window);
    // Checked first, because Qt crashes if it shows a window without enough memory to paint it.
    if (window->minimumSizeHint().boundedTo(maxSize) != window->minimumSizeHint()) {
        *error = QStringLiteral("the dialog is too large with the scale factor %1")
                     .arg(QString::number(window->devicePixelRatioF()));
        return {};
    }
    if (window->size().boundedTo(maxSize) != window->size())
        window->resize(window->size().boundedTo(maxSize));
    const bool wasHidden = window->isHidden();
    window->show();
    ProcessLayout();
    // The first layout may measure differently once it has enough room.
    for (int attempt = 0; attempt < kMaxAttempts && Enlarge(dialog); ++attempt)
        ProcessLayout();
    const QByteArray png = DialogPicture(dialog, error);
    if (wasHidden)
        window->hide();
    return png;
}
