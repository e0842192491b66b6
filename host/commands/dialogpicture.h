// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QString>

class ConnectDialog;

/// Return a picture of the dialog as PNG; empty, with `error` set, if it cannot be painted.
///
/// As it is: the user sees nothing of it.
QByteArray DialogPicture(const ConnectDialog& dialog, QString* error);
/// Enlarged to fit its contents, within limits, for a dialog that is off screen. Its visibility is restored afterwards.
QByteArray EnlargedDialogPicture(const ConnectDialog& dialog, QString* error);
