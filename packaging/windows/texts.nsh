; SPDX-FileCopyrightText: 2026 Vexel
; SPDX-License-Identifier: LicenseRef-Vexel

; What the installer says.
!macro Text NAME ENGLISH GERMAN
    LangString ${NAME} ${LANG_ENGLISH} "${ENGLISH}"
    LangString ${NAME} ${LANG_GERMAN} "${GERMAN}"
!macroend

!insertmacro Text Program "Connect dialog" "Verbindungsdialog"
!insertmacro Text ProgramDescription "The dialog, the command-line program and the starter." \
    "Der Dialog, das Kommandozeilenprogramm und der Starter."
!insertmacro Text Samples "Samples" "Beispiele"
!insertmacro Text SamplesDescription "Sample entries and the applications that they start." \
    "Beispieleinträge und die Anwendungen, die sie starten."
!insertmacro Text Development "Development files" "Dateien für Entwickler"
!insertmacro Text DevelopmentDescription "Headers and libraries to load the dialog into your own program." \
    "Header und Bibliotheken, um den Dialog in ein eigenes Programm zu laden."
!insertmacro Text Guide "Operator's guide" "Bedienungsanleitung"
!insertmacro Text GuideFile "guide_en.html" "guide_de.html"

!insertmacro Text HostIsRunning "The connect dialog is running. It will save its list and end." \
    "Der Verbindungsdialog läuft. Er speichert seine Liste und wird beendet."
!insertmacro Text HostIsBusy \
    "The connect dialog cannot end now: entries are in use, or it is asking a question.$\r$\n$\r$\nEnd the applications of \
the entries, answer the question, and try again. Nothing has been changed." \
    "Der Verbindungsdialog kann jetzt nicht beendet werden: Einträge sind in Benutzung, oder er stellt eine \
Frage.$\r$\n$\r$\nBeenden Sie die Anwendungen der Einträge, beantworten Sie die Frage und versuchen Sie es noch einmal. \
Es wurde nichts verändert."
!insertmacro Text FileInUse \
    "This file cannot be replaced or removed, because a program uses it, you may not change it, or it is not part of the product:$\r$\n$Problem$\r$\n\
$\r$\nEnd the programs of the connect dialog, also those of other users, and try again. Nothing has been changed." \
    "Diese Datei kann nicht ersetzt oder entfernt werden, weil ein Programm sie benutzt, Sie sie nicht ändern \
dürfen oder sie nicht zum Produkt gehört:$\r$\n$Problem$\r$\n$\r$\nBeenden Sie die Programme des Verbindungsdialogs, auch die anderer Benutzer, und \
versuchen Sie es noch einmal. Es wurde nichts verändert."
!insertmacro Text NewerInstalled \
    "Version $0 is installed, which is newer than ${VERSION}. It may have stored settings that this version cannot \
read.$\r$\n$\r$\nInstall the older version?" \
    "Version $0 ist installiert und neuer als ${VERSION}. Diese Version kann deren gespeicherte Einstellungen vielleicht \
nicht lesen.$\r$\n$\r$\nDie ältere Version installieren?"
!insertmacro Text CannotWrite \
    "The files cannot be written to$\r$\n$INSTDIR$\r$\n$\r$\nYou may not change this folder, or the disk is full. Nothing \
has been changed." \
    "Die Dateien können nicht nach$\r$\n$INSTDIR$\r$\ngeschrieben werden.$\r$\n$\r$\nSie dürfen diesen Ordner nicht ändern, \
oder der Datenträger ist voll. Es wurde nichts verändert."
!insertmacro Text NotInstalled "The list of installed files is missing in $INSTDIR. Install again, then uninstall." \
    "In $INSTDIR fehlt die Liste der installierten Dateien. Installieren Sie noch einmal, bevor Sie deinstallieren."
!insertmacro Text NotAllUsers "Only an administrator can install for all users." \
    "Nur ein Administrator kann für alle Benutzer installieren."
