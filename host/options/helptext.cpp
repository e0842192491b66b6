#include "host/options/helptext.h"

namespace HelpText {

// Wrapped by hand at the width that QCommandLineParser uses for the options.
QString Description()
{
    return QStringLiteral(R"(
Shows the connect dialog: a list of connection entries. Connecting starts the
user-interface application that serves each ticked entry.)");
}

QString Notes()
{
    return QStringLiteral(R"(
Interactive use:
  If there is a system tray, the host has an icon there. It shows how many
  entries are in use; its menu shows the dialog, saves and quits. "Close" then
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

Headless use:
  --import, --add, --export, --list, --connect, --connect-selected, --wait and
  the --screenshot options need no display. Without one, the host sets
  QT_QPA_PLATFORM=offscreen, also for the applications it starts.
  The order is always: import, add, export, list, screenshot before connecting,
  connect, screenshot after connecting, wait, screenshot at the end. Then the
  host saves and ends, and the applications it started end with it; --wait lets
  them run.
  A headless host shows no dialog, and kitestarter does not find it.
  Either all files to import and add are used, or none. As in the dialog, a
  file without entries is an error.
  The texts of message boxes are written to standard error.
  If the configuration directory is not writable, --list, --export and the
  screenshots still work, unless combined with other actions.

Support commands:
  --backups, --restore and --diagnose only access the configuration. They load
  no entries, start nothing, and need no display. --backups and --diagnose
  work while a host runs, and change nothing; --diagnose only creates a
  temporary file, to check whether the directory is writable. --restore does
  not work while a host runs. Every save that changes the stored list keeps the
  previous version, up to ten. --restore also restores what is stored together
  with the list.
  --diagnose returns 0 whatever it finds, unless its report cannot be printed.
  With --data it checks that directory and does not store it. On Unix it lists
  what other users can read, and warns where they can write or replace the
  configuration: it decides what programs are started.

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
  0  done
  1  the command line is invalid or not UTF-8, a file or standard output cannot
     be written, or there is no version with the number to restore
  2  the plug-in, the configuration, a file to import or add, or the version to
     restore cannot be used, the configuration could not be saved, there is no
     folder for it, or there is no display to show the dialog on
  3  an entry could not be connected
  4  another host uses the same configuration directory
)");
}

} // namespace HelpText
