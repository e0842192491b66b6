// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/guibase.h"

#include "platform/cfgcenter.h"
#include "platform/icfg.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>

namespace {

// No screen is larger, and a larger window cannot be painted.
constexpr int kMaximumLength = 16384;
// Some screens next to each other.
constexpr int kMaximumOffset = 4 * kMaximumLength;

const QString kWidth = QStringLiteral("Width");
const QString kHeight = QStringLiteral("Height");
const QString kLeft = QStringLiteral("Left");
const QString kTop = QStringLiteral("Top");

bool IsUsable(const QSize& size)
{
    return !size.isEmpty() && size.width() <= kMaximumLength && size.height() <= kMaximumLength;
}

/// Returns the node that stores the size of `widget`; null if the widget has no name.
std::unique_ptr<ICfg> SizeNode(const QWidget* widget)
{
    if (!widget || widget->objectName().isEmpty())
        return nullptr;
    const std::unique_ptr<ICfg> sizes(CfgCenter::GetAppCfg(View::User)->OpenChild(QStringLiteral("WidgetSizes"), 0));
    return std::unique_ptr<ICfg>(sizes->OpenChild(widget->objectName(), 0));
}

std::optional<QPoint> StoredPosition(ICfg& node)
{
    constexpr int kNone = std::numeric_limits<int>::min();
    const QPoint position(node.GetInt(kLeft, kNone, 0), node.GetInt(kTop, kNone, 0));
    const auto isUsable = [](int offset) {
        return offset >= -kMaximumOffset && offset <= kMaximumOffset;
    };
    return isUsable(position.x()) && isUsable(position.y()) ? std::optional(position) : std::nullopt;
}

/// Returns the usable part of the screen that has most of `geometry`; if none has, of the screen of `widget`.
QRect AvailableArea(const QWidget& widget, const QRect& geometry)
{
    const auto overlap = [&geometry](const QScreen* screen) {
        const QSize size = geometry.intersected(screen->geometry()).size();
        return size.isEmpty() ? qint64{0} : qint64{size.width()} * size.height();
    };
    const QScreen* best = widget.screen();
    const QList<QScreen*> screens = QGuiApplication::screens();
    for (const QScreen* screen : screens)
        if (overlap(screen) > overlap(best))
            best = screen;
    return best->availableGeometry();
}

/// Returns the window's frame around its content, as far as it is known. X servers tell it when the window is shown.
QMargins FrameOf(const QWidget& widget)
{
    const QRect outer = widget.frameGeometry();
    const QRect inner = widget.geometry();
    return {inner.left() - outer.left(), inner.top() - outer.top(), outer.right() - inner.right(),
            outer.bottom() - inner.bottom()};
}

/// Returns `geometry`, the content of a window, made smaller and moved so that the window is inside `area`.
QRect Fitted(const QRect& geometry, const QMargins& frame, const QSize& minimumSize, const QRect& area)
{
    QRect outer = geometry.marginsAdded(frame);
    // A window that is still too large has its title, at the top left, on the screen.
    outer.setSize(outer.size().boundedTo(area.size()).expandedTo(minimumSize.grownBy(frame)));
    outer.moveRight(std::min(outer.right(), area.right()));
    outer.moveBottom(std::min(outer.bottom(), area.bottom()));
    outer.moveLeft(std::max(outer.left(), area.left()));
    outer.moveTop(std::max(outer.top(), area.top()));
    return outer.marginsRemoved(frame);
}

/// Gives a window the `geometry` for its content, or one that is as similar and whole on the screen.
void Place(QWidget& widget, const QRect& geometry)
{
    const QSize minimumSize = widget.minimumSize().expandedTo(widget.minimumSizeHint());
    widget.setGeometry(Fitted(geometry, FrameOf(widget), minimumSize, AvailableArea(widget, geometry)));
}

/// Keeps a window whole on the screen whenever it is shown or a screen is removed. The screens may have changed, and
/// the frame may have become known.
class ScreenKeeper : public QObject
{
public:
    explicit ScreenKeeper(QWidget* widget)
        : QObject(widget)
        , m_widget(*widget)
    {
        setObjectName(ObjectName());
        widget->installEventFilter(this);
        WatchWindow();
        connect(qApp, &QGuiApplication::screenRemoved, this, &ScreenKeeper::Keep, Qt::QueuedConnection);
    }

    static QString ObjectName() { return QStringLiteral("ScreenKeeper"); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Show && watched == &m_widget && !event->spontaneous()) {
            Keep();
            WatchWindow();
        } else if (event->type() == QEvent::WindowStateChange) {
            // The screen may have gone while the window was minimised.
            QMetaObject::invokeMethod(this, &ScreenKeeper::Keep, Qt::QueuedConnection);
        } else if (event->type() == QEvent::Expose && m_isShownAnew) {
            // The frame is known now.
            m_isShownAnew = false;
            QMetaObject::invokeMethod(this, &ScreenKeeper::Keep, Qt::QueuedConnection);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    void WatchWindow()
    {
        if (QWindow* const window = m_widget.windowHandle()) {
            window->installEventFilter(this);
            m_isShownAnew = true;
        }
    }

    void Keep()
    {
        constexpr Qt::WindowStates kOthers = Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen;
        if (m_widget.isVisible() && !(m_widget.windowState() & kOthers))
            Place(m_widget, m_widget.geometry());
    }

    QWidget& m_widget;
    bool m_isShownAnew = false;
};

} // namespace

GuiBase& GuiBase::Instance()
{
    static GuiBase base;
    return base;
}

QWidget* GuiBase::GetMainWidget() const
{
    return m_pMainWidget;
}

void GuiBase::SetMainWidget(QWidget* widget)
{
    m_pMainWidget = widget;
}

void GuiBase::RestoreWidgetSize(QWidget* widget)
{
    const auto node = SizeNode(widget);
    if (!node)
        return;
    if (!widget->findChild<QObject*>(ScreenKeeper::ObjectName(), Qt::FindDirectChildrenOnly))
        new ScreenKeeper(widget);
    const QSize size(node->GetInt(kWidth, 0, 0), node->GetInt(kHeight, 0, 0));
    if (!IsUsable(size))
        return;
    const std::optional<QPoint> position = StoredPosition(*node);
    // A window that has not been shown has no position to keep: Qt or the window manager will choose one.
    if (position || widget->isVisible())
        Place(*widget, QRect(position.value_or(widget->geometry().topLeft()), size));
    else
        widget->resize(size.boundedTo(widget->screen()->availableSize()));
}

void GuiBase::StoreWidgetSize(QWidget* widget)
{
    const auto node = SizeNode(widget);
    if (!node)
        return;
    // A maximised window fills the screen; the user chose its normal size.
    const bool fillsScreen = widget->isMaximized() || widget->isFullScreen();
    const QRect geometry = fillsScreen ? widget->normalGeometry() : widget->geometry();
    if (!IsUsable(geometry.size()))
        return;
    node->SetInt(kWidth, geometry.width(), 0);
    node->SetInt(kHeight, geometry.height(), 0);
    // Wayland does not tell where a window is.
    const bool hasPosition = widget->windowHandle() || widget->testAttribute(Qt::WA_Moved);
    if (!hasPosition || QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        return;
    node->SetInt(kLeft, geometry.left(), 0);
    node->SetInt(kTop, geometry.top(), 0);
}
