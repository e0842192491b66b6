#pragma once

#include <QString>
#include <QStringList>

/// The one text in which Windows passes arguments to a program, written so that the program's start-up takes it apart
/// into `arguments` again: backslashes count as themselves but before a double quote.
QString WindowsCommandLine(const QStringList& arguments);
