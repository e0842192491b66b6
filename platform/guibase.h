#pragma once

#include "platform/platformexport.h"

#include <QPointer>
#include <QWidget>

/// Holds the product's main widget and remembers the sizes of windows. GUI thread only.
class VEXELPLATFORM_EXPORT GuiBase
{
public:
    GuiBase(const GuiBase&) = delete;
    GuiBase& operator=(const GuiBase&) = delete;

    static GuiBase& Instance();

    /// The main widget; null until one is set, and again once that widget is gone. Not owned.
    QWidget* GetMainWidget() const;
    void SetMainWidget(QWidget* widget);

    /// Gives `widget` the size stored under its object name. Nothing usable stored: size unchanged. Never
    /// larger than the screen.
    void RestoreWidgetSize(QWidget* widget);
    /// Host side, when it saves: puts the widget's size into the user's configuration under its object name.
    void StoreWidgetSize(QWidget* widget);

private:
    GuiBase() = default;

    QPointer<QWidget> m_pMainWidget;
};
