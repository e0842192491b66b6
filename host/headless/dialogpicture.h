#pragma once

#include <QString>

class ConnectDialog;

/// Shows the dialog, wide and high enough for what its views hold (within reason), and writes it as PNG to `fileName`.
/// The dialog is afterwards hidden or shown as before. Returns an empty text, or why the file could not be written; a
/// file that was there then stays as it was.
QString WriteDialogPicture(const ConnectDialog& dialog, const QString& fileName);
