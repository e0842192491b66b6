#include "host/options/helptext.h"

namespace HelpText {

// Both broken by hand at the width that QCommandLineParser uses for the options.
QString Description()
{
    return QStringLiteral(R"(
Shows the connect dialog: a list of connection entries, of which the ticked
ones are connected by starting the user-interface application that serves each
of them.)");
}

QString Notes()
{
    return QStringLiteral(R"(
With a person at the dialog:
  Where there is a system tray, the host has an icon there: it says how many
  entries are in use, shows the dialog, saves and quits. "Close" then hides the
  dialog until it is called. Quitting asks first while an entry is in use.
  Without a tray "Close" ends the host while no entry is in use. While one is,
  the host keeps running, says so, and shows the dialog again when the last
  application has ended. Where the configuration cannot be saved, it asks
  before it ends.
  "Connect" hides the dialog until the last application has ended, too; when it
  could start nothing, the dialog is back at once. kitestarter brings a hidden
  dialog back at any time.
  What it has to say goes to standard error. Where that leads to no terminal,
  pipe or file, as when kitestarter started the host, it is shown in the tray,
  or without one in a box.
  SIGINT, SIGTERM and the end of the session end the host at any time, without
  a question. Whichever way it ends, it saves the list, the filter and the
  window's size first; applications that it started end with it.

Without a person (headless):
  --import, --add, --export, --list, --connect, --connect-selected, --wait and
  the --screenshot options need no display (without one,
  QT_QPA_PLATFORM=offscreen is set for what they start, too) and are done in
  this order: import, add, export, list, picture before, connect, picture
  during, wait, picture at the end. Then the host saves and ends, and the
  applications that it started end with it: use --wait to let them live.
  Such a host shows no dialog, and kitestarter does not find it.
  All files to import and to add are taken, or none of them. A file without
  any entry is not taken, as in the dialog.
  What the dialog would say in a box is written to standard error.
  Where nothing can be written to the configuration directory, --list, --export
  and the pictures alone still work on what is stored there.

For the support desk:
  --backups, --restore and --diagnose look at the configuration only. They load
  no entries, start nothing, and need no display. --backups and --diagnose
  work while a host runs, and change nothing; to see whether the directory can
  be written, --diagnose makes a file in it for a moment. --restore does not
  work while a host runs. Every save that changes the stored list keeps the
  version before, ten of them. --restore brings back what is stored with the
  list as well.
  --diagnose says what it found whatever that is; its exit code is 0 where that
  could be printed. With --data it looks at that directory and stores nothing.

Environment:
  The host looks for programs in its own folder first, and tells the
  applications that it starts where the configuration is: VEXEL_CONFIG_DIR.

Exit codes:
  0  done
  1  the command line is wrong, what it asks for cannot be written, to a file
     or to standard output, or there is no version of the number to restore
  2  the plug-in, the configuration, a file to import or add, or the version to
     restore cannot be used, the configuration could not be saved, or there is
     no display to show the dialog on
  3  something asked for could not be connected
  4  another host works on the same configuration directory
)");
}

} // namespace HelpText
