// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QString>

/// What the commands need of the program around the dialog.
class DialogHost
{
public:
    virtual ~DialogHost() = default;

    /// Stores and saves everything. Returns why that failed; empty on success.
    virtual QString Save() = 0;
    /// Shows the dialog in front of other windows. Returns why it cannot be shown; empty on success.
    virtual QString ShowDialog() = 0;
    /// Returns a picture of the dialog as PNG; empty, with `error` set, if it cannot be painted.
    virtual QByteArray Picture(QString* error) = 0;
    /// Ends the program when its event loop runs again. Saving is the caller's.
    virtual void Quit() = 0;
};
