// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/unsavedtext.h"

#include <QCoreApplication>

QString UnsavedText(const QString& error)
{
    return QStringLiteral("%1\n\n%2\n\n%3")
        .arg(QCoreApplication::translate("UnsavedText", "The configuration could not be saved."), error,
             QCoreApplication::translate("UnsavedText",
                                         "Saving is tried again after the next change and when the dialog is closed. "
                                         "Until it works, keep the list with \"Export...\" in another folder."));
}
