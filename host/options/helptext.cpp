// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/options/helptext.h"

namespace HelpText {

// Wrapped by hand at the width that QCommandLineParser uses for the options.
QString Description()
{
    return QStringLiteral(R"(
Shows the connect dialog: a list of connection entries. Connecting starts the
user-interface application that serves each ticked entry. vexelctl does the
same, and more, from the command line.)");
}

QString Notes()
{
    return QStringLiteral(R"(
The host:
  A host that already runs on the same configuration is brought to the front
  instead.
  If there is a system tray, the host has an icon there. It shows how many
  entries are in use; its menu shows the dialog, saves, switches the start at
  login on and off, opens the operator's guide (F1) and quits. "Close" then
  hides the dialog. Quitting asks first while an entry is in use.
  Without a tray, "Close" ends the host if no entry is in use. Otherwise the
  host prints a notice, keeps running, and shows the dialog again when the last
  application has ended. If the configuration cannot be saved, it asks before
  it ends.
  "Connect" also hides the dialog until the last application has ended. If
  nothing could be started, the dialog reappears at once. kitestarter shows a
  hidden dialog at any time.
  Messages go to standard error. If that is not a terminal, pipe or file, for
  example when kitestarter started the host, they are also shown in the tray,
  or without a tray in a message box.
  SIGINT, SIGTERM and the end of the session end the host at any time, without
  a question. The host always saves the list, the filter, and where the window
  is, before it ends. Applications that it started end with it.

Settings files:
  Settings that the command line does not contain are read from the files
  Vexel/vexelhost.ini in this user's configuration folder and then in the
  system's, such as /etc/xdg. On Windows, these folders are %LOCALAPPDATA% and
  %PROGRAMDATA%. The first file that sets a key decides. A line is KEY=VALUE;
  the keys are data, language, trace (true or false) and trace-file. vexelctl
  uses data and language. Paths are absolute, with slashes; "~/" is the user's
  home folder. A value with a comma or semicolon is in quotation marks.
  "vexelctl diagnose" says which file has set what, and what is wrong in the
  files.

Trace files:
  On Unix, only the user can access the files that --trace-file creates. In a
  folder in which other users can create files, such as /tmp, FILE must be a
  regular file of the user, not a link.

Environment:
  The host looks for programs in its own folder first. It sets VEXEL_CONFIG_DIR
  to the configuration directory for the applications it starts.
  On Unix, the default configuration directory is in XDG_CONFIG_HOME, or else
  in .config in HOME, or else in the home directory of the user database.

Exit codes:
  0  the host has been closed, the running one has been brought to the front,
     or the start at login has been switched
  1  the command line is invalid or not UTF-8
  2  the plug-in, the configuration or the trace file cannot be used, the
     configuration could not be saved, there is no display, or the start at
     login could not be switched
  4  the configuration directory is in use by a program that shows no dialog or
     does not answer
)");
}

} // namespace HelpText
