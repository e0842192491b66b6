#pragma once

#include <QString>

class ConnectDialog;

/// Writes a screenshot of the dialog as PNG to `fileName`. The dialog is enlarged to fit its contents, within limits;
/// its visibility is restored afterwards. Returns why the file could not be written, in which case an existing file is
/// unchanged; empty on success.
QString WriteDialogPicture(const ConnectDialog& dialog, const QString& fileName);
