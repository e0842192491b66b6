<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>AppCounter</name>
    <message>
        <source>Problem</source>
        <translation>Problem</translation>
    </message>
    <message>
        <source>Could not connect to &quot;%1&quot;.

There is no free userinterface available to connect to this type of hardware.

Device type: %2
Number of installed applications for this type: %3
Number of running applications for this type: %4</source>
        <translation>Verbindung zu „%1“ nicht möglich.

Für diese Art von Gerät ist keine Bedienoberfläche frei.

Gerätetyp: %2
Anzahl installierter Anwendungen für diesen Typ: %3
Anzahl laufender Anwendungen für diesen Typ: %4</translation>
    </message>
</context>
<context>
    <name>ApplicationInstance</name>
    <message>
        <source>Free</source>
        <translation>Free</translation>
    </message>
    <message>
        <source>Started</source>
        <translation>Started</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Error</translation>
    </message>
</context>
<context>
    <name>Connection</name>
    <message>
        <source>No string representation for ID %1</source>
        <translation>Keine Textdarstellung für ID %1</translation>
    </message>
    <message>
        <source>Direct Connection</source>
        <translation>Direktverbindung</translation>
    </message>
    <message>
        <source>Remote Connection</source>
        <translation>Fernverbindung</translation>
    </message>
    <message>
        <source>MultiChannel Server</source>
        <translation>MultiChannel-Server</translation>
    </message>
    <message>
        <source>LAN</source>
        <translation>LAN</translation>
    </message>
    <message>
        <source>ISDN</source>
        <translation>ISDN</translation>
    </message>
    <message>
        <source>Fast Modem</source>
        <translation>Schnelles Modem</translation>
    </message>
    <message>
        <source>Slow Modem</source>
        <translation>Langsames Modem</translation>
    </message>
    <message>
        <source>GSM</source>
        <translation>GSM</translation>
    </message>
    <message>
        <source>UMTS</source>
        <translation>UMTS</translation>
    </message>
    <message>
        <source>Radio Link</source>
        <translation>Funkstrecke</translation>
    </message>
    <message>
        <source>Free</source>
        <translation>Frei</translation>
    </message>
    <message>
        <source>In Use</source>
        <translation>In Benutzung</translation>
    </message>
    <message>
        <source>enter connection name here</source>
        <translation>Name der Verbindung eingeben</translation>
    </message>
</context>
<context>
    <name>ConnectionFilterModel</name>
    <message>
        <source>selected</source>
        <translation>ausgewählt</translation>
    </message>
    <message>
        <source>not selected</source>
        <translation>nicht ausgewählt</translation>
    </message>
    <message>
        <source>Selected</source>
        <translation>Ausgewählt</translation>
    </message>
</context>
<context>
    <name>ConnectionsDelegate</name>
    <message>
        <source>No Timeout</source>
        <translation>Keine Zeitgrenze</translation>
    </message>
</context>
<context>
    <name>ConnectionsModel</name>
    <message>
        <source>userinterface does directly connect to the resource</source>
        <translation>die Bedienoberfläche verbindet sich direkt mit dem Gerät</translation>
    </message>
    <message>
        <source>userinterface does connect to a driver application; driver application is connected to resource</source>
        <translation>die Bedienoberfläche verbindet sich mit einer Treiberanwendung; diese ist mit dem Gerät verbunden</translation>
    </message>
    <message>
        <source>KiteControl-specific connection type (see respective manual)</source>
        <translation>Verbindungsart, die nur KiteControl kennt (siehe dessen Handbuch)</translation>
    </message>
    <message>
        <source>The connection type can be one of the following:
</source>
        <translation>Folgende Verbindungsarten gibt es:
</translation>
    </message>
    <message>
        <source>Select the connections you want to establish via clicking onto the square.

Selected entries show a green check indicator.

Connections that have yet been established show a gray check indicator.</source>
        <translation>Wählen Sie die gewünschten Verbindungen mit einem Klick auf das Kästchen aus.

Ausgewählte Einträge zeigen einen grünen Haken.

Bereits aufgebaute Verbindungen zeigen einen grauen Haken.</translation>
    </message>
    <message>
        <source>The connection name is for operator information only.
Enter what ever you want in this field.</source>
        <translation>Der Name der Verbindung dient nur zur Information.
Geben Sie ein, was Sie möchten.</translation>
    </message>
    <message>
        <source>The status of the connection tells if the connection has yet been established or not.</source>
        <translation>Der Status zeigt, ob die Verbindung bereits aufgebaut ist.</translation>
    </message>
    <message>
        <source>A major setting of a conneciton entry is the type of hardware to which we want to connect to.

Enter the appropriate type here.</source>
        <translation>Eine wichtige Angabe eines Eintrags ist die Art des Geräts, zu dem verbunden werden soll.

Geben Sie hier den passenden Typ an.</translation>
    </message>
    <message>
        <source>If the userinterface directly connects to the hardware resource
(does not use a remote connection via a driver application)
enter the IP-address of the hardware resource here.</source>
        <translation>Wenn sich die Bedienoberfläche direkt mit dem Gerät verbindet
(also nicht über eine Treiberanwendung),
geben Sie hier die IP-Adresse des Geräts ein.</translation>
    </message>
    <message>
        <source>If the userinterface does not directly connect to the hardware resource
but connects to a driver application (which is connected to the resource)
enter the IP-address of the driver&apos;s host here.</source>
        <translation>Wenn sich die Bedienoberfläche nicht direkt mit dem Gerät verbindet,
sondern mit einer Treiberanwendung (die mit dem Gerät verbunden ist),
geben Sie hier die IP-Adresse des Treiberrechners ein.</translation>
    </message>
    <message>
        <source>Select the entry that describes the data link between this computer and the computer hosting the KiteServer best.
The strength of the data compression between userinterface and server will be applied according to this setting.</source>
        <translation>Wählen Sie den Eintrag, der die Datenstrecke zwischen diesem Rechner und dem Rechner des KiteServers am besten beschreibt.
Danach richtet sich, wie stark die Daten zwischen Bedienoberfläche und Server komprimiert werden.</translation>
    </message>
    <message>
        <source>If the timeout time is set to a value greater than 0 seconds KiteControl will request user input (mouse clicks or keyboard strokes) within the specified time.
If this does not happen the program will terminate and release the directionfinder.</source>
        <translation>Ist die Zeitgrenze größer als 0 Sekunden, verlangt KiteControl innerhalb dieser Zeit eine Eingabe (Mausklick oder Tastendruck).
Bleibt sie aus, beendet sich das Programm und gibt den Peiler frei.</translation>
    </message>
    <message>
        <source>The Corvus subsystem is only used in connection with the Tally toolbar.
Enter the subsystem to which the Tally belongs to here.

If you have no idea about what is meant with Corvus or Tally just leave this field empty.</source>
        <translation>Das Corvus-Teilsystem wird nur zusammen mit der Tally-Werkzeugleiste benutzt.
Geben Sie hier das Teilsystem an, zu dem Tally gehört.

Wenn Ihnen Corvus oder Tally nichts sagen, lassen Sie das Feld leer.</translation>
    </message>
    <message>
        <source>No Timeout</source>
        <translation>Keine Zeitgrenze</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Device Type</source>
        <translation>Gerätetyp</translation>
    </message>
    <message>
        <source>Connection Type</source>
        <translation>Verbindungsart</translation>
    </message>
    <message>
        <source>Device Address</source>
        <translation>Geräteadresse</translation>
    </message>
    <message>
        <source>Driver Address</source>
        <translation>Treiberadresse</translation>
    </message>
    <message>
        <source>Link Speed</source>
        <translation>Datenstrecke</translation>
    </message>
    <message>
        <source>Timeout Time</source>
        <translation>Zeitgrenze</translation>
    </message>
    <message>
        <source>Subsystem</source>
        <translation>Teilsystem</translation>
    </message>
</context>
<context>
    <name>ListImport</name>
    <message>
        <source>Import Connection Settings</source>
        <translation>Verbindungen importieren</translation>
    </message>
    <message>
        <source>Importing connection entries...</source>
        <translation>Verbindungen werden importiert...</translation>
    </message>
</context>
<context>
    <name>VexelConnectDlg</name>
    <message>
        <source>Vexel - Connect Dialog</source>
        <translation>Vexel - Verbinden</translation>
    </message>
    <message>
        <source>Use the &quot;?&quot; button at the upper right corner to get more information.

Right-click to get a menu with additional actions.</source>
        <translation>Der Knopf „?“ in der rechten oberen Ecke zeigt weitere Informationen.

Ein Rechtsklick öffnet ein Menü mit weiteren Aktionen.</translation>
    </message>
    <message>
        <source>The column selection defines in which column the filter searches for the given filter pattern.</source>
        <translation>Die Spaltenauswahl bestimmt, in welcher Spalte nach dem Filtermuster gesucht wird.</translation>
    </message>
    <message>
        <source>C&amp;olumn</source>
        <translation>&amp;Spalte</translation>
    </message>
    <message>
        <source>Connection entries that do not match to the filter pattern (case-insensitive) are filtered out.</source>
        <translation>Einträge, die nicht zum Filtermuster passen, werden ausgeblendet (Groß- und Kleinschreibung ist gleich).</translation>
    </message>
    <message>
        <source>Filter &amp;Pattern</source>
        <translation>Filter&amp;muster</translation>
    </message>
    <message>
        <source>The search mode defines in which way the filter searches for the filter pattern.

&quot;plain text&quot; - only those entries are shown that include the text of the filter pattern

&quot;wildcard&quot; - &quot;*&quot; is interpreted as one or zero of any character and &quot;?&quot; as one of any single character. &quot;[&quot; and &quot;]&quot; are used similar to &quot;regular expression&quot; mode (see below)

&quot;regular expression&quot; - only for those users that are familiar with regular expressions (Perl-like syntax)</source>
        <translation>Der Suchmodus bestimmt, wie nach dem Filtermuster gesucht wird.

„einfacher Text“ - es werden nur Einträge gezeigt, die den Text des Musters enthalten

„Platzhalter“ - „*“ steht für beliebig viele Zeichen und „?“ für ein einzelnes. „[“ und „]“ wirken wie bei „regulärer Ausdruck“ (siehe unten)

„regulärer Ausdruck“ - nur für Benutzer, die mit regulären Ausdrücken vertraut sind (ähnlich Perl)</translation>
    </message>
    <message>
        <source>Search &amp;Mode</source>
        <translation>S&amp;uchmodus</translation>
    </message>
    <message>
        <source>plain text</source>
        <translation>einfacher Text</translation>
    </message>
    <message>
        <source>wildcard</source>
        <translation>Platzhalter</translation>
    </message>
    <message>
        <source>regular expression</source>
        <translation>regulärer Ausdruck</translation>
    </message>
    <message>
        <source>Click here to connect to the selected device(s).</source>
        <translation>Verbindet zu den ausgewählten Geräten.</translation>
    </message>
    <message>
        <source>&amp;Connect</source>
        <translation>&amp;Verbinden</translation>
    </message>
    <message>
        <source>Click here to close the dialog without establishing any connection.</source>
        <translation>Schließt den Dialog, ohne eine Verbindung aufzubauen.</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>filter is active</source>
        <translation>Filter ist aktiv</translation>
    </message>
    <message>
        <source>&lt;!DOCTYPE HTML PUBLIC &quot;-//W3C//DTD HTML 4.0//EN&quot; &quot;http://www.w3.org/TR/REC-html40/strict.dtd&quot;&gt;
&lt;html&gt;&lt;head&gt;&lt;meta name=&quot;qrichtext&quot; content=&quot;1&quot; /&gt;&lt;style type=&quot;text/css&quot;&gt;
p, li { white-space: pre-wrap; }
&lt;/style&gt;&lt;/head&gt;&lt;body style=&quot; font-family:&apos;MS Shell Dlg 2&apos;; font-size:8.25pt; font-weight:400; font-style:normal;&quot;&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;If this icon is shown it means that a filter is active and you can not see all connection entries that exist. &lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot;-qt-paragraph-type:empty; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px; font-size:8pt;&quot;&gt;&lt;br /&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;Open the context menu (via right-click) and select &amp;quot;&lt;/span&gt;&lt;img src=&quot;:/filter.png&quot; /&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt; Filter&amp;quot; to edit the filter settings.&lt;/span&gt;&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>&lt;!DOCTYPE HTML PUBLIC &quot;-//W3C//DTD HTML 4.0//EN&quot; &quot;http://www.w3.org/TR/REC-html40/strict.dtd&quot;&gt;
&lt;html&gt;&lt;head&gt;&lt;meta name=&quot;qrichtext&quot; content=&quot;1&quot; /&gt;&lt;style type=&quot;text/css&quot;&gt;
p, li { white-space: pre-wrap; }
&lt;/style&gt;&lt;/head&gt;&lt;body style=&quot; font-family:&apos;MS Shell Dlg 2&apos;; font-size:8.25pt; font-weight:400; font-style:normal;&quot;&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;Dieses Zeichen bedeutet, dass ein Filter aktiv ist und nicht alle vorhandenen Einträge zu sehen sind. &lt;/span&gt;&lt;/p&gt;
&lt;p style=&quot;-qt-paragraph-type:empty; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px; font-size:8pt;&quot;&gt;&lt;br /&gt;&lt;/p&gt;
&lt;p style=&quot; margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; -qt-block-indent:0; text-indent:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;Öffnen Sie das Kontextmenü (Rechtsklick) und wählen Sie &amp;quot;&lt;/span&gt;&lt;img src=&quot;:/filter.png&quot; /&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt; Filter&amp;quot;, um den Filter zu ändern.&lt;/span&gt;&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</translation>
    </message>
    <message>
        <source>Import...</source>
        <translation>Importieren...</translation>
    </message>
    <message>
        <source>Import set of connections from a file.</source>
        <translation>Verbindungen aus einer Datei importieren.</translation>
    </message>
    <message>
        <source>Export...</source>
        <translation>Exportieren...</translation>
    </message>
    <message>
        <source>Export current set of connections to a file.</source>
        <translation>Die Verbindungen in eine Datei exportieren.</translation>
    </message>
    <message>
        <source>New</source>
        <translation>Neu</translation>
    </message>
    <message>
        <source>Add a new connection entry.</source>
        <translation>Eine neue Verbindung hinzufügen.</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Delete currently selected entries. </source>
        <translation>Die markierten Einträge löschen. </translation>
    </message>
    <message>
        <source>Details</source>
        <translation>Einzelheiten</translation>
    </message>
    <message>
        <source>Switch display of connection details on/off.</source>
        <translation>Einzelheiten der Verbindungen ein- und ausblenden.</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Bearbeiten</translation>
    </message>
    <message>
        <source>Edit currently selected entry.</source>
        <translation>Den markierten Eintrag bearbeiten.</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>Switch display of filter on/off.</source>
        <translation>Filter ein- und ausblenden.</translation>
    </message>
</context>
<context>
    <name>VexelConnectDlgGUI</name>
    <message>
        <source>Not yet implemented.</source>
        <translation>Noch nicht vorhanden.</translation>
    </message>
    <message>
        <source>The list is full.

Please delete entries before you add a new one.</source>
        <translation>Die Liste ist voll.

Bitte löschen Sie Einträge, bevor Sie einen neuen anlegen.</translation>
    </message>
    <message>
        <source>No entry selected!

Please select the entries you want to delete.</source>
        <translation>Kein Eintrag markiert!

Bitte markieren Sie die Einträge, die gelöscht werden sollen.</translation>
    </message>
    <message>
        <source>Import Connection Settings</source>
        <translation>Verbindungen importieren</translation>
    </message>
    <message>
        <source>Export Connection Settings</source>
        <translation>Verbindungen exportieren</translation>
    </message>
    <message>
        <source>Could not import connection entries from file
&quot;%1&quot;

Probably the file does not include proper connection data.

Will keep old connections.</source>
        <translation>Aus der Datei
„%1“
konnten keine Verbindungen importiert werden.

Vermutlich enthält sie keine Verbindungsdaten.

Die bisherigen Verbindungen bleiben erhalten.</translation>
    </message>
    <message>
        <source>Not enough files dropped.

Please drop at least one file.</source>
        <translation>Zu wenige Dateien.

Bitte ziehen Sie mindestens eine Datei hierher.</translation>
    </message>
    <message>
        <source>Too much files dropped (%1 files).

Please drop at most one file.</source>
        <translation>Zu viele Dateien (%1 Dateien).

Bitte ziehen Sie höchstens eine Datei hierher.</translation>
    </message>
    <message>
        <source>Info</source>
        <translation>Info</translation>
    </message>
    <message>
        <source>Connections</source>
        <translation>Verbindungen</translation>
    </message>
    <message>
        <source>Connection Details</source>
        <translation>Verbindungsdetails</translation>
    </message>
</context>
</TS>
