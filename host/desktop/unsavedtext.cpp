#include "host/desktop/unsavedtext.h"

#include <QCoreApplication>

QString UnsavedText(const QString& error)
{
    const auto tr = [](const char* text) {
        return QCoreApplication::translate("UnsavedText", text);
    };
    return tr("The configuration could not be saved.") + QStringLiteral("\n\n") + error + QStringLiteral("\n\n") +
           tr("Saving is tried again after the next change and when the dialog is closed. Until it works, keep the "
              "list with \"Export...\" in another folder.");
}
