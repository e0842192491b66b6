<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>DialogSession</name>
    <message>
        <source>The connect dialog stays here until you choose &quot;Quit&quot;.</source>
        <translation>Der Verbindungsdialog bleibt hier, bis Sie &quot;Beenden&quot; wählen.</translation>
    </message>
    <message>
        <source>1 entry is still in use.</source>
        <translation>1 Eintrag ist noch in Benutzung.</translation>
    </message>
    <message numerus="yes">
        <source>%n entries are still in use.</source>
        <translation>
            <numerusform>%n Eintrag ist noch in Benutzung.</numerusform>
            <numerusform>%n Einträge sind noch in Benutzung.</numerusform>
        </translation>
    </message>
    <message>
        <source>The connect dialog reappears when the last application has ended. Run kitestarter to show it now.</source>
        <translation>Der Verbindungsdialog erscheint wieder, sobald die letzte Anwendung beendet ist. Mit kitestarter wird er sofort angezeigt.</translation>
    </message>
    <message>
        <source>The start at login could not be switched on.</source>
        <translation>Der Start beim Anmelden konnte nicht eingeschaltet werden.</translation>
    </message>
    <message>
        <source>The start at login could not be switched off.</source>
        <translation>Der Start beim Anmelden konnte nicht ausgeschaltet werden.</translation>
    </message>
    <message>
        <source>The guide could not be opened. It is in the file %1.</source>
        <translation>Die Anleitung konnte nicht geöffnet werden. Sie steht in der Datei %1.</translation>
    </message>
    <message>
        <source>No data directory is set, so the dialog uses the sample applications. Set the directory that contains your CfgVEXEL.xml with the option --data, or have your administrator set it for everybody.</source>
        <translation>Es ist kein Datenverzeichnis festgelegt, daher verwendet der Dialog die Beispielanwendungen. Legen Sie das Verzeichnis mit Ihrer CfgVEXEL.xml mit der Option --data fest, oder lassen Sie es von der Administration für alle festlegen.</translation>
    </message>
</context>
<context>
    <name>NoticeBox</name>
    <message>
        <source>Vexel - Connect Dialog</source>
        <translation>Vexel - Verbinden</translation>
    </message>
</context>
<context>
    <name>OperatorGuide</name>
    <message>
        <source>guide_en.html</source>
        <extracomment>The file of the guide in this language.</extracomment>
        <translation>guide_de.html</translation>
    </message>
</context>
<context>
    <name>QuitQuestion</name>
    <message>
        <source>1 entry is in use.</source>
        <translation>1 Eintrag ist in Benutzung.</translation>
    </message>
    <message numerus="yes">
        <source>%n entries are in use.</source>
        <translation>
            <numerusform>%n Eintrag ist in Benutzung.</numerusform>
            <numerusform>%n Einträge sind in Benutzung.</numerusform>
        </translation>
    </message>
    <message>
        <source>Vexel - Connect Dialog</source>
        <translation>Vexel - Verbinden</translation>
    </message>
    <message>
        <source>Applications started from the connect dialog will be closed.</source>
        <translation>Aus dem Verbindungsdialog gestartete Anwendungen werden beendet.</translation>
    </message>
    <message>
        <source>Changes since the last save will be lost if you quit now.</source>
        <translation>Änderungen seit dem letzten Speichern gehen verloren, wenn Sie jetzt beenden.</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>StartFailure</name>
    <message>
        <source>Vexel - Connect Dialog</source>
        <translation>Vexel - Verbinden</translation>
    </message>
    <message>
        <source>The connect dialog cannot be started.</source>
        <translation>Der Verbindungsdialog kann nicht gestartet werden.</translation>
    </message>
    <message>
        <source>The options it was started with are not valid.</source>
        <translation>Die Optionen, mit denen er gestartet wurde, sind ungültig.</translation>
    </message>
    <message>
        <source>The trace file cannot be written.</source>
        <translation>Die Trace-Datei kann nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>There is no folder for the configuration.</source>
        <translation>Es gibt keinen Ordner für die Konfiguration.</translation>
    </message>
    <message>
        <source>There is no display to show it on.</source>
        <translation>Es gibt keinen Bildschirm, auf dem er angezeigt werden kann.</translation>
    </message>
    <message>
        <source>The configuration cannot be used.</source>
        <translation>Die Konfiguration kann nicht benutzt werden.</translation>
    </message>
    <message>
        <source>Another program is using the configuration.</source>
        <translation>Ein anderes Programm benutzt die Konfiguration.</translation>
    </message>
    <message>
        <source>The stored list cannot be read.</source>
        <translation>Die gespeicherte Liste kann nicht gelesen werden.</translation>
    </message>
    <message>
        <source>The data directory does not name the applications of this machine.</source>
        <translation>Das Datenverzeichnis nennt nicht die Anwendungen dieses Rechners.</translation>
    </message>
    <message>
        <source>The plug-in cannot be loaded.</source>
        <translation>Das Plug-in kann nicht geladen werden.</translation>
    </message>
    <message>
        <source>The plug-in does not work.</source>
        <translation>Das Plug-in funktioniert nicht.</translation>
    </message>
    <message>
        <source>Correct the options in the shortcut or the script that starts it. &quot;vexelhost --help&quot; lists them.</source>
        <translation>Berichtigen Sie die Optionen in der Verknüpfung oder im Skript, mit dem er gestartet wird. &quot;vexelhost --help&quot; zeigt alle Optionen.</translation>
    </message>
    <message>
        <source>Choose another file with the option --trace-file, or start it without this option.</source>
        <translation>Wählen Sie mit der Option --trace-file eine andere Datei, oder starten Sie ihn ohne diese Option.</translation>
    </message>
    <message>
        <source>Choose a folder with the option --config, or have your home folder set up.</source>
        <translation>Wählen Sie mit der Option --config einen Ordner, oder lassen Sie Ihr Benutzerverzeichnis einrichten.</translation>
    </message>
    <message>
        <source>Start it in a desktop session.</source>
        <translation>Starten Sie ihn in einer Desktop-Sitzung.</translation>
    </message>
    <message>
        <source>Make sure that you may write to the folder and that the disk is not full, or choose another folder with the option --config.</source>
        <translation>Vergewissern Sie sich, dass Sie in den Ordner schreiben dürfen und dass der Datenträger nicht voll ist, oder wählen Sie mit der Option --config einen anderen Ordner.</translation>
    </message>
    <message>
        <source>Wait until that program has finished, and try again.</source>
        <translation>Warten Sie, bis dieses Programm fertig ist, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>Nothing has been changed. Make sure that you may read the files in the configuration folder. &quot;vexelctl backups&quot; shows the earlier versions of the list.</source>
        <translation>Es wurde nichts geändert. Vergewissern Sie sich, dass Sie die Dateien im Konfigurationsordner lesen dürfen. &quot;vexelctl backups&quot; zeigt die früheren Versionen der Liste.</translation>
    </message>
    <message>
        <source>Choose the directory that contains CfgVEXEL.xml with the option --data.</source>
        <translation>Wählen Sie mit der Option --data das Verzeichnis, in dem CfgVEXEL.xml liegt.</translation>
    </message>
    <message>
        <source>Install the program again. If it is started with the option --plugin, check the file given there.</source>
        <translation>Installieren Sie das Programm erneut. Wird es mit der Option --plugin gestartet, prüfen Sie die dort angegebene Datei.</translation>
    </message>
    <message>
        <source>Make sure that the plug-in and the program have the same version, or install both again.</source>
        <translation>Vergewissern Sie sich, dass Plug-in und Programm dieselbe Version haben, oder installieren Sie beide erneut.</translation>
    </message>
</context>
<context>
    <name>TrayIcon</name>
    <message>
        <source>Show connect dialog</source>
        <translation>Verbindungsdialog anzeigen</translation>
    </message>
    <message>
        <source>Save now</source>
        <translation>Jetzt speichern</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Vexel - Connect Dialog</source>
        <translation>Vexel - Verbinden</translation>
    </message>
    <message numerus="yes">
        <source>%n entries in use</source>
        <translation>
            <numerusform>%n Eintrag in Benutzung</numerusform>
            <numerusform>%n Einträge in Benutzung</numerusform>
        </translation>
    </message>
    <message>
        <source>no entry in use</source>
        <translation>kein Eintrag in Benutzung</translation>
    </message>
    <message>
        <source>1 entry in use</source>
        <translation>1 Eintrag in Benutzung</translation>
    </message>
    <message>
        <source>Start at login</source>
        <translation>Beim Anmelden starten</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
</context>
<context>
    <name>UnsavedText</name>
    <message>
        <source>The configuration could not be saved.</source>
        <translation>Die Konfiguration konnte nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>Saving is tried again after the next change and when the dialog is closed. Until it works, keep the list with &quot;Export...&quot; in another folder.</source>
        <translation>Das Speichern wird nach der nächsten Änderung und beim Schließen des Dialogs erneut versucht. Sichern Sie die Liste bis dahin mit &quot;Exportieren...&quot; in einem anderen Ordner.</translation>
    </message>
</context>
</TS>
