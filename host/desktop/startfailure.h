// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/output/failurekind.h"

#include <QCoreApplication>
#include <QLocale>
#include <QString>

#include <optional>

/// Tells the user why the host cannot start, if nobody reads standard error: as after a double click or a start by
/// kitestarter.
class StartFailure
{
    Q_DECLARE_TR_FUNCTIONS(StartFailure)

public:
    using Kind = FailureKind;

    /// Remembers the file that the starter named, and takes its name out of the environment, which applications
    /// inherit. Call this once at the beginning.
    static void TakeErrorFile();

    /// Passes `line` on, which has already been printed: to the starter if it waits for it, or else in a message box if
    /// standard error has no reader and there is a display. Waits until the box is closed. GUI thread only; needs no
    /// application object.
    static void Report(Kind kind, const QString& line, const std::optional<QLocale>& language);

    /// Shows the message box: what failed, `line`, and what to do next. Creates a QApplication if there is none.
    /// `language` is the system's if it is not set.
    static void ShowBox(Kind kind, const QString& line, const std::optional<QLocale>& language);

private:
    static QString Reason(Kind kind);
    static QString Advice(Kind kind);
};
