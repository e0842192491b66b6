; SPDX-FileCopyrightText: 2026 Vexel
; SPDX-License-Identifier: LicenseRef-Vexel

; The installer. windows/package compiles it with these definitions:
;
;   VERSION   the version to show
;   NUMBER    the version of the project, as in 1.0.0
;   STAGE     folder with the components application, samples and development, and with uninstall.lst
;   OUTPUT    the installer's file
;   SIGN      command that signs a file
;
; Options: /S installs silently, /AllUsers and /CurrentUser choose for whom, /D=FOLDER (the last one, without quotes) the
; folder. Exit codes other than 0: 1 cancelled, 2 failed, and the following.
!define EXIT_IN_USE 3 ; the product is running
!define EXIT_NEWER 4  ; a newer version is installed
!define EXIT_WRITE 5  ; files cannot be written: no rights, or the disk is full

; Everything is first written to a folder next to the installed files. The old files are moved aside and the new ones
; into place at the end, so whatever goes wrong leaves the old version as it was.

!define PRODUCT "Vexel connect dialog"
!define PUBLISHER "Vexel"
!define RUN_KEY "Software\Microsoft\Windows\CurrentVersion\Run"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\VexelConnectDialog"

Name "${PRODUCT}"
OutFile "${OUTPUT}"
SetCompressor /SOLID lzma
ManifestDPIAware true
AllowSkipFiles off
BrandingText "${PRODUCT} ${VERSION}"
!finalize '"${SIGN}" "%1"'
!uninstfinalize '"${SIGN}" "%1"'

VIProductVersion "${NUMBER}.0"
VIAddVersionKey /LANG=0 "ProductName" "${PRODUCT}"
VIAddVersionKey /LANG=0 "ProductVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "FileDescription" "Setup of the ${PRODUCT}"
VIAddVersionKey /LANG=0 "CompanyName" "${PUBLISHER}"
VIAddVersionKey /LANG=0 "LegalCopyright" "Copyright (C) 2026 ${PUBLISHER}"

!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_USE_PROGRAMFILES64
!define MULTIUSER_INSTALLMODE_INSTDIR "${PRODUCT}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_KEY "${UNINSTALL_KEY}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_VALUENAME "InstallLocation"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_KEY "${UNINSTALL_KEY}"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_VALUENAME "InstallLocation"
!define MULTIUSER_INIT_TEXT_ALLUSERSNOTPOSSIBLE "$(NotAllUsers)"
!include MultiUser.nsh
!include MUI2.nsh
!include WordFunc.nsh

!define MUI_ICON "../../windows/program.ico"
!define MUI_UNICON "../../windows/program.ico"
!define MUI_ABORTWARNING
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_FUNCTION StartHost
!insertmacro MUI_PAGE_WELCOME
!insertmacro MULTIUSER_PAGE_INSTALLMODE
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "German"
!include texts.nsh

Var New     ; where the new files are written
Var Old     ; where the old files are moved
Var Problem ; why the installation stops; empty: the reason has been shown

; Stops the installation or removal. The message tells a person why, and the exit code a program.
!macro Stop CODE TEXT
    SetErrorLevel ${CODE}
    DetailPrint "${TEXT}"
    MessageBox MB_OK|MB_ICONSTOP "${TEXT}" /SD IDOK
    Abort
!macroend

; The functions that installer and uninstaller share.
!macro Functions UN
    ; Asks a running host of this user to save and to end, as "vexelctl quit" does: it refuses while entries are in use
    ; or a box is open. Stops if anything in the folder is still in use then.
    Function ${UN}EndHost
        ${IfNot} ${FileExists} "$INSTDIR\bin\vexelctl.exe"
            Return
        ${EndIf}
        FindWindow $0 "VexelHostRequests"
        ${If} $0 <> 0
            MessageBox MB_OKCANCEL|MB_ICONINFORMATION "$(HostIsRunning)" /SD IDOK IDOK +3
            SetErrorLevel 1
            Abort
        ${EndIf}
    ask:
        DetailPrint "vexelctl quit"
        nsExec::ExecToStack '"$INSTDIR\bin\vexelctl.exe" quit'
        Pop $0
        Pop $1
        ${If} $0 == 4
            MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(HostIsBusy)" /SD IDCANCEL IDRETRY ask
            SetErrorLevel ${EXIT_IN_USE}
            Abort
        ${EndIf}
        StrCpy $2 0
    look:
        Call ${UN}FindUsedFile
        ${If} $Problem != ""
            ; A program that has just ended, or a virus scanner, may keep a file for a moment.
            IntOp $2 $2 + 1
            ${If} $2 < 20
                Sleep 250
                Goto look
            ${EndIf}
            MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(FileInUse)" /SD IDCANCEL IDRETRY ask
            SetErrorLevel ${EXIT_IN_USE}
            Abort
        ${EndIf}
    FunctionEnd

    ; Sets $Problem to a program or library that cannot be replaced now; empty if there is none.
    Function ${UN}FindUsedFile
        StrCpy $Problem ""
        FindFirst $0 $1 "$INSTDIR\bin\*.*"
        ${DoWhile} $1 != ""
            StrCpy $3 $1 4 -4
            ${If} $3 == ".exe"
            ${OrIf} $3 == ".dll"
                ClearErrors
                FileOpen $3 "$INSTDIR\bin\$1" a
                ${If} ${Errors}
                    StrCpy $Problem "$INSTDIR\bin\$1"
                    ${ExitDo}
                ${EndIf}
                FileClose $3
            ${EndIf}
            FindNext $0 $1
        ${Loop}
        FindClose $0
    FunctionEnd

    ; Removes the files in $R1 that the list $R0 names, and the folders that are empty then.
    Function ${UN}RemoveListed
        FileOpen $0 $R0 r
        ${Do}
            ClearErrors
            FileRead $0 $1
            ${If} ${Errors}
                ${ExitDo}
            ${EndIf}
            StrCpy $1 $1 -2 ; without the end of the line
            StrCpy $2 $1 1
            StrCpy $3 $1 1 -1
            ${If} $2 == "*"
                ${Continue}
            ${ElseIf} $3 == "\"
                RMDir "$R1\$1"
            ${Else}
                Delete "$R1\$1"
            ${EndIf}
        ${Loop}
        FileClose $0
    FunctionEnd
!macroend
!insertmacro Functions ""
!insertmacro Functions "un."

; Moves the top-level files and folders that the list $R0 names from $R1 to $R2, as far as they are there. Sets the error
; flag if one cannot be moved.
Function MoveListed
    FileOpen $0 $R0 r
    StrCpy $4 ""
    ${Do}
        ClearErrors
        FileRead $0 $1
        ${If} ${Errors}
            ${ExitDo}
        ${EndIf}
        StrCpy $1 $1 -2 ; without the end of the line
        StrCpy $2 $1 1
        ${If} $2 != "*"
            ${ExitDo}
        ${EndIf}
        StrCpy $1 $1 "" 1
        ${IfNot} ${FileExists} "$R1\$1"
            ${Continue}
        ${EndIf}
        StrCpy $3 0
    move:
        ClearErrors
        Rename "$R1\$1" "$R2\$1"
        ${If} ${Errors}
            IntOp $3 $3 + 1
            ${If} $3 < 10
                Sleep 250
                Goto move
            ${EndIf}
            StrCpy $4 "$R1\$1"
        ${EndIf}
    ${LoopUntil} $4 != ""
    FileClose $0
    ClearErrors
    ${If} $4 != ""
        StrCpy $Problem $4
        SetErrors
    ${EndIf}
FunctionEnd

; Only with the person's consent over a newer version.
Function CheckVersion
    ReadRegStr $0 SHCTX "${UNINSTALL_KEY}" "DisplayVersion"
    ReadRegStr $1 SHCTX "${UNINSTALL_KEY}" "VersionNumber"
    ${If} $1 == ""
        Return
    ${EndIf}
    ${VersionCompare} $1 "${NUMBER}" $2
    ${If} $2 == 1
        MessageBox MB_YESNO|MB_ICONEXCLAMATION|MB_DEFBUTTON2 "$(NewerInstalled)" /SD IDNO IDYES +3
        SetErrorLevel ${EXIT_NEWER}
        Abort
    ${EndIf}
FunctionEnd

Section "-Start"
    InitPluginsDir
    StrCpy $New "$INSTDIR\vexel-setup.new"
    StrCpy $Old "$INSTDIR\vexel-setup.old"
    Call CheckVersion
    Call EndHost
    RMDir /r "$New" ; of an interrupted installation
    ClearErrors
    CreateDirectory "$New"
    ${If} ${Errors}
        !insertmacro Stop ${EXIT_WRITE} "$(CannotWrite)"
    ${EndIf}
SectionEnd

Section "$(Program)" Program
    SectionIn RO
    SetOutPath "$New"
    File /r "${STAGE}/application/*"
    File "${STAGE}/uninstall.lst"
    ClearErrors
    WriteUninstaller "$New\uninstall.exe"
    ${If} ${Errors}
        !insertmacro Stop ${EXIT_WRITE} "$(CannotWrite)"
    ${EndIf}
SectionEnd

Section "$(Samples)" Samples
    SetOutPath "$New"
    File /r "${STAGE}/samples/*"
SectionEnd

Section /o "$(Development)" Development
    SetOutPath "$New"
    File /r "${STAGE}/development/*"
SectionEnd

Section "-Finish"
    ; The current folder cannot be moved.
    SetOutPath "$PLUGINSDIR"
    ; Only what is there now: the folder may have somebody's files with the names of components that are not selected.
    FileOpen $0 "$PLUGINSDIR\new.lst" w
    FindFirst $1 $2 "$New\*.*"
    ${DoWhile} $2 != ""
        ${If} $2 != "."
        ${AndIf} $2 != ".."
            FileWrite $0 "*$2$\r$\n"
        ${EndIf}
        FindNext $1 $2
    ${Loop}
    FindClose $1
    FileClose $0
    ; What an earlier installation has left is somebody's.
    ${DoWhile} ${FileExists} "$Old"
        StrCpy $Old "$Old~"
    ${Loop}
    CreateDirectory "$Old"
    ${If} ${FileExists} "$INSTDIR\uninstall.lst"
        CopyFiles /SILENT "$INSTDIR\uninstall.lst" "$PLUGINSDIR\old.lst"
        StrCpy $R0 "$PLUGINSDIR\old.lst"
        StrCpy $R1 "$INSTDIR"
        StrCpy $R2 "$Old"
        Call MoveListed
        IfErrors back
    ${EndIf}
    StrCpy $R0 "$PLUGINSDIR\new.lst"
    StrCpy $R1 "$New"
    StrCpy $R2 "$INSTDIR"
    Call MoveListed
    IfErrors 0 moved
    StrCpy $5 $Problem
    StrCpy $R1 "$INSTDIR"
    StrCpy $R2 "$New"
    Call MoveListed
    StrCpy $Problem $5
back:
    ${If} ${FileExists} "$PLUGINSDIR\old.lst"
        StrCpy $5 $Problem
        StrCpy $R0 "$PLUGINSDIR\old.lst"
        StrCpy $R1 "$Old"
        StrCpy $R2 "$INSTDIR"
        Call MoveListed
        StrCpy $Problem $5
    ${EndIf}
    RMDir "$Old"
    !insertmacro Stop ${EXIT_IN_USE} "$(FileInUse)"
moved:
    RMDir "$New"
    ${If} ${FileExists} "$PLUGINSDIR\old.lst"
        StrCpy $R0 "$PLUGINSDIR\old.lst"
        StrCpy $R1 "$Old"
        Call RemoveListed
        Delete "$Old\uninstall.lst"
        Delete "$Old\uninstall.exe"
    ${EndIf}
    ; Keeps files that were not installed.
    RMDir "$Old"

    SetOutPath "$INSTDIR\bin"
    CreateDirectory "$SMPROGRAMS\Vexel"
    CreateShortcut "$SMPROGRAMS\Vexel\${PRODUCT}.lnk" "$INSTDIR\bin\vexelhost.exe"
    ${If} ${FileExists} "$INSTDIR\share\vexel\guide\$(GuideFile)"
        CreateShortcut "$SMPROGRAMS\Vexel\$(Guide).lnk" "$INSTDIR\share\vexel\guide\$(GuideFile)"
    ${EndIf}

    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "VersionNumber" "${NUMBER}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\bin\vexelhost.exe"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "Publisher" "${PUBLISHER}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode /S'
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoRepair" 1
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "EstimatedSize" $0
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "Samples" ${SF_SELECTED}
    ${IfNot} ${SectionIsSelected} ${Samples}
        WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "Samples" 0
    ${EndIf}
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "Development" 0
    ${If} ${SectionIsSelected} ${Development}
        WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "Development" ${SF_SELECTED}
    ${EndIf}
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
    !insertmacro MUI_DESCRIPTION_TEXT ${Program} "$(ProgramDescription)"
    !insertmacro MUI_DESCRIPTION_TEXT ${Samples} "$(SamplesDescription)"
    !insertmacro MUI_DESCRIPTION_TEXT ${Development} "$(DevelopmentDescription)"
!insertmacro MUI_FUNCTION_DESCRIPTION_END

Function .onInit
    ; MultiUser replaces the folder of /D, and shows a message even in a silent installation.
    StrCpy $R9 $INSTDIR
    ${If} ${Silent}
        ${GetParameters} $0
        ClearErrors
        ${GetOptions} $0 "/AllUsers" $1
        ${IfNot} ${Errors}
            UserInfo::GetAccountType
            Pop $1
            ${If} $1 != "Admin"
                SetErrorLevel ${EXIT_WRITE}
                Quit
            ${EndIf}
        ${EndIf}
    ${EndIf}
    !insertmacro MULTIUSER_INIT
    ${If} $R9 != ""
        StrCpy $INSTDIR $R9
    ${EndIf}

    ; The same selection as last time.
    ClearErrors
    ReadRegDWORD $0 SHCTX "${UNINSTALL_KEY}" "Samples"
    ${IfNot} ${Errors}
        SectionSetFlags ${Samples} $0
        ReadRegDWORD $0 SHCTX "${UNINSTALL_KEY}" "Development"
        SectionSetFlags ${Development} $0
    ${EndIf}
FunctionEnd

; Not with the installer's rights.
Function StartHost
    Exec '"$WINDIR\explorer.exe" "$SMPROGRAMS\Vexel\${PRODUCT}.lnk"'
FunctionEnd

Function .onInstFailed
    ${If} $New != ""
        SetOutPath "$TEMP"
        RMDir /r "$New"
        RMDir "$INSTDIR"
    ${EndIf}
    GetErrorLevel $0
    ${If} $0 == -1
        SetErrorLevel ${EXIT_WRITE} ; a file could not be written
    ${EndIf}
FunctionEnd

Function un.onInit
    StrCpy $R9 $INSTDIR
    ${If} ${Silent}
        ${un.GetParameters} $0
        ClearErrors
        ${un.GetOptions} $0 "/AllUsers" $1
        ${IfNot} ${Errors}
            UserInfo::GetAccountType
            Pop $1
            ${If} $1 != "Admin"
                SetErrorLevel ${EXIT_WRITE}
                Quit
            ${EndIf}
        ${EndIf}
    ${EndIf}
    !insertmacro MULTIUSER_UNINIT
    StrCpy $INSTDIR $R9
FunctionEnd

; Removes only what was installed. The users' settings stay.
Section "Uninstall"
    ${IfNot} ${FileExists} "$INSTDIR\uninstall.lst"
        !insertmacro Stop 2 "$(NotInstalled)"
    ${EndIf}
    Call un.EndHost
    InitPluginsDir
    CopyFiles /SILENT "$INSTDIR\uninstall.lst" "$PLUGINSDIR\old.lst"
    StrCpy $R0 "$PLUGINSDIR\old.lst"
    StrCpy $R1 "$INSTDIR"
    Call un.RemoveListed
    Delete "$INSTDIR\uninstall.lst"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"

    Delete "$SMPROGRAMS\Vexel\${PRODUCT}.lnk"
    Delete "$SMPROGRAMS\Vexel\$(Guide).lnk"
    RMDir "$SMPROGRAMS\Vexel"
    ; The host starts at this user's login, if the user wants that.
    ReadRegStr $0 HKCU "${RUN_KEY}" "vexelhost"
    ${un.WordFind} '"$0' "$INSTDIR\bin\vexelhost.exe" "E+1{" $1
    ${IfNot} ${Errors}
        DeleteRegValue HKCU "${RUN_KEY}" "vexelhost"
    ${EndIf}
    DeleteRegKey SHCTX "${UNINSTALL_KEY}"
SectionEnd
