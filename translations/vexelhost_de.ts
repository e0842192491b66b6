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
</context>
<context>
    <name>NoticeBox</name>
    <message>
        <source>Vexel - Connect Dialog</source>
        <translation>Vexel - Verbinden</translation>
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
