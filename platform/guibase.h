#pragma once

#include "platform/platformexport.h"

#include <QPointer>
#include <QWidget>

/// Holds the product's main widget and stores window sizes. GUI thread only.
class VEXELPLATFORM_EXPORT GuiBase
{
public:
    GuiBase(const GuiBase&) = delete;
    GuiBase& operator=(const GuiBase&) = delete;

    static GuiBase& Instance();

    /// Returns the main widget; null until one is set and after it has been destroyed. Not owned.
    QWidget* GetMainWidget() const;
    void SetMainWidget(QWidget* widget);

    /// Resizes `widget` to the size stored under its object name, but not beyond the available area of its screen. Does
    /// nothing if no valid size is stored, or if the widget is null or has no object name.
    void RestoreWidgetSize(QWidget* widget);
    /// Host side, before saving the configuration: stores the size of `widget` under its object name in the user's
    /// configuration. For a maximised or full-screen window this is its normal size.
    void StoreWidgetSize(QWidget* widget);

private:
    GuiBase() = default;

    QPointer<QWidget> m_pMainWidget;
};
