#include "platform/guibase.h"

#include "platform/cfgcenter.h"
#include "platform/icfg.h"

#include <QScreen>

#include <memory>

namespace {

// No screen is larger, and a larger window cannot be painted.
constexpr int kMaximumLength = 16384;

const QString kWidth = QStringLiteral("Width");
const QString kHeight = QStringLiteral("Height");

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
    const QSize size(node->GetInt(kWidth, 0, 0), node->GetInt(kHeight, 0, 0));
    if (!IsUsable(size))
        return;
    // The size may come from a larger screen. A window beyond the edges of this one could not be resized by the mouse.
    const QScreen* screen = widget->screen();
    widget->resize(screen ? size.boundedTo(screen->availableSize()) : size);
}

void GuiBase::StoreWidgetSize(QWidget* widget)
{
    const auto node = SizeNode(widget);
    if (!node)
        return;
    // A maximised window has the size of the screen; the user chose its normal size.
    const bool fillsScreen = widget->isMaximized() || widget->isFullScreen();
    const QSize size = fillsScreen ? widget->normalGeometry().size() : widget->size();
    if (!IsUsable(size))
        return;
    node->SetInt(kWidth, size.width(), 0);
    node->SetInt(kHeight, size.height(), 0);
}
