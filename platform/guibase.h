// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/platformexport.h"

#include <QPointer>
#include <QWidget>

/// Holds the product's main widget and stores where windows are. GUI thread only.
class VEXELPLATFORM_EXPORT GuiBase
{
public:
    GuiBase(const GuiBase&) = delete;
    GuiBase& operator=(const GuiBase&) = delete;

    /// Returns the one instance of the process.
    static GuiBase& Instance();

    /// Returns the main widget; null until one is set and after it has been destroyed. Not owned.
    QWidget* GetMainWidget() const;
    /// Sets the main widget; null for none. Not owned.
    void SetMainWidget(QWidget* widget);

    /// Gives `widget` the size and the position stored under its object name. Keeps it whole on a screen from now on,
    /// whenever it is shown: a stored place on a screen that is gone or smaller is fitted to one that exists. Changes
    /// nothing if no valid size is stored, or if the widget is null or has no object name.
    void RestoreWidgetSize(QWidget* widget);
    /// Host side, before saving the configuration: stores the size and the position of `widget` under its object name
    /// in the user's configuration. For a maximised or full-screen window these are its normal ones. Wayland knows no
    /// positions.
    void StoreWidgetSize(QWidget* widget);

private:
    GuiBase() = default;

    QPointer<QWidget> m_pMainWidget;
};
