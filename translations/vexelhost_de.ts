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
        <source>The configuration could not be saved.</source>
        <translation>Die Konfiguration konnte nicht gespeichert werden.</translation>
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
        <source>The connect dialog comes back when the last application has ended; kitestarter brings it back at once.</source>
        <translation>Der Verbindungsdialog kommt zurück, wenn die letzte Anwendung geendet hat; kitestarter bringt ihn sofort zurück.</translation>
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
        <source>Applications that were started from the connect dialog end with it.</source>
        <translation>Anwendungen, die aus dem Verbindungsdialog gestartet wurden, enden mit ihm.</translation>
    </message>
    <message>
        <source>The configuration could not be saved.</source>
        <translation>Die Konfiguration konnte nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>What was changed since it was last saved is lost when the connect dialog ends now.</source>
        <translation>Was seit dem letzten Speichern geändert wurde, geht verloren, wenn der Verbindungsdialog jetzt endet.</translation>
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
        <translation>Verbindungsdialog zeigen</translation>
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
</TS>
