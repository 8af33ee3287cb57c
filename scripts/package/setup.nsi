; The Windows installer. What it does to a system is done whole or not at all: new files are laid beside the old ones, the old
; ones moved aside (which Windows allows while a player holds them), the new ones moved in and registered; whatever fails until
; then is taken back. Defines: VERSION, FILES (folder with what to install), OUTPUT.
;
; /S installs silently, /PARTS=plugin,effect,program chooses. Exit codes are Windows' own: 0 done, 3010 done and a file in use goes
; at the next restart, 5 no administrator, 87 unknown part, 1603 failed and taken back, 1618 a setup is running.
Unicode true
SetCompressor /SOLID lzma
RequestExecutionLevel admin
ManifestDPIAware true
Name "Clarivex ${VERSION}"
OutFile "${OUTPUT}"
BrandingText " "

!include MUI2.nsh
!include FileFunc.nsh
!include Sections.nsh
!include WordFunc.nsh
!include x64.nsh
!define uninstallKey "Software\Microsoft\Windows\CurrentVersion\Uninstall\Clarivex"
!define playersRegistrar "CLSID\{5569E7F5-424B-4B93-89CA-79D17924689A}"

Var aside    ; the folder that takes the old files
Var step     ; how far the exchange of files has come: 0, 1 old ones move out, 2 new ones move in
Var problem  ; the first one, in words
Var given    ; of this /PARTS= tells; empty without it

VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "Clarivex"
VIAddVersionKey CompanyName "Tessel Works"
VIAddVersionKey FileDescription "Clarivex Setup"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey LegalCopyright ""

!define pictures "${NSISDIR}/Contrib/Graphics"
!define MUI_ICON "${pictures}/Icons/orange-install.ico"
!define MUI_UNICON "${pictures}/Icons/orange-uninstall.ico"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${pictures}/Wizard/orange.bmp"
!define MUI_COMPONENTSPAGE_SMALLDESC
!define MUI_PAGE_HEADER_TEXT "Choose parts"
!define MUI_PAGE_HEADER_SUBTEXT "What Clarivex ${VERSION} brings to this machine."
!define MUI_COMPONENTSPAGE_TEXT_TOP "What is not ticked is left out, or taken out where it is there already."
!define MUI_COMPONENTSPAGE_TEXT_COMPLIST "Parts:"
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE RefuseNoPart
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_TITLE "Clarivex is installed"
!define MUI_FINISHPAGE_TEXT "In Windows Media Player: Tools > Plug-ins > Clarivex Plugin.$\r$\n$\r$\nIn a new command prompt: clarivex help.$\r$\n$\r$\nA player that is open goes on as it was: close it and start it again."
!define MUI_FINISHPAGE_TEXT_REBOOT "A program still uses the version that was there before. Close it and start it again to get the new one; the old file goes when Windows starts again."
!define MUI_FINISHPAGE_REBOOTLATER_DEFAULT
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

!include "setup_path.nsh"
!include "setup_files.nsh"

; --- Parts: each lays its files into $INSTDIR\clarivex-new -------------------------------------------------------------------------

Section "-Begin"
    SetRebootFlag false
    RMDir /r "$INSTDIR\clarivex-new"  ; what was cut short
    ClearErrors  ; from here on until the files are exchanged, each error counts
SectionEnd

!macro LayModule name
    SetOutPath "$INSTDIR\clarivex-new\x86"
    File "${FILES}\x86\${name}"
    ${If} ${IsNativeAMD64}
        SetOutPath "$INSTDIR\clarivex-new\x64"
        File "${FILES}\x64\${name}"
    ${EndIf}
!macroend

Section "Player plug-in" plugin
    !insertmacro LayModule WMP_CVX.dll
SectionEnd

Section "Video effect" effect
    !insertmacro LayModule clarivex_video.dll
SectionEnd

Section "Command line" program
    SetOutPath "$INSTDIR\clarivex-new\bin"
    File "${FILES}\clarivex.exe"
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
    !insertmacro MUI_DESCRIPTION_TEXT ${plugin} "Enhances video in Windows Media Player, which must be turned on in Windows' features."
    !insertmacro MUI_DESCRIPTION_TEXT ${effect} "Enhances video in players that list DirectShow's video effects."
    !insertmacro MUI_DESCRIPTION_TEXT ${program} "clarivex.exe, in every command prompt: its folder is added to this machine's PATH."
!insertmacro MUI_FUNCTION_DESCRIPTION_END

; --- What is laid takes effect --------------------------------------------------------------------------------------------

!macro RegisterOrStop part bits name
    ${If} $problem == ""
        !insertmacro Register ${part} ${bits} ${name}
    ${EndIf}
!macroend

Section "-Exchange"
    ${If} ${Errors}
        StrCpy $problem "Not all files can be written to $INSTDIR."
    ${EndIf}
    SetOutPath "$INSTDIR"
    ${If} $problem == ""
        WriteUninstaller "$INSTDIR\clarivex-new\uninstall.exe"
        Call ExchangeFiles
        !insertmacro EachModule RegisterOrStop
        Call UnregisterLeftOut
        Call EnterPath
    ${EndIf}
    ${If} $problem != ""
        Abort "$problem"
    ${EndIf}
    Call WriteUninstallKey
    SetOutPath "$TEMP"
    RMDir /r "$INSTDIR\clarivex-new"
    Call RemoveAside
    ${If} ${RebootFlag}
        SetErrorLevel 3010
    ${EndIf}
SectionEnd

Function ExchangeFiles
    Call FindAside
    StrCpy $step 1
    StrCpy $R0 "$INSTDIR"
    StrCpy $R1 "$aside"
    Call MoveFiles
    ${If} $problem == ""
        StrCpy $step 2
        StrCpy $R0 "$INSTDIR\clarivex-new"
        StrCpy $R1 "$INSTDIR"
        Call MoveFiles
    ${EndIf}
FunctionEnd

; A module that was there and was not chosen again.
!macro UnregisterIfLeftOut part bits name
    ${IfNot} ${FileExists} "$INSTDIR\${bits}\${name}"
        !insertmacro Unregister ${part} ${bits} ${name}
    ${EndIf}
!macroend
Function UnregisterLeftOut
    ${If} $problem == ""
        StrCpy $R0 "$aside"
        !insertmacro EachModule UnregisterIfLeftOut
    ${EndIf}
FunctionEnd

; The last step that can fail.
Function EnterPath
    ${If} $problem != ""
        Return
    ${EndIf}
    StrCpy $R0 "$INSTDIR\bin"
    StrCpy $R1 remove
    ${If} ${FileExists} "$R0\clarivex.exe"
        StrCpy $R1 add
    ${EndIf}
    Call ChangePath
    ${If} ${Errors}
        StrCpy $problem "This machine's PATH cannot be changed, or is too long to take $R0 as well. Leave out the command line or shorten PATH."
    ${EndIf}
FunctionEnd

Function .onInstFailed
    StrCpy $R9 $problem
    ${If} $R9 == ""
        StrCpy $R9 "Not all files can be written to $INSTDIR."
    ${EndIf}
    Call TakeBack
    StrCpy $0 "$R9 Nothing was changed."
    Call Say
    SetErrorLevel 1603
FunctionEnd

; A module that came in the place of nothing. What replaced another is registered as that one was, since its place is the same.
!macro UnregisterIfNew part bits name
    ${IfNot} ${FileExists} "$aside\${bits}\${name}"
        !insertmacro Unregister ${part} ${bits} ${name}
    ${EndIf}
!macroend

; New modules leave the registry, and the files and modules that stood there before come back.
Function TakeBack
    StrCpy $problem ""
    SetOutPath "$TEMP"
    ${If} $step = 2
        StrCpy $R0 "$INSTDIR"
        !insertmacro EachModule UnregisterIfNew
        StrCpy $R1 "$INSTDIR\clarivex-new"
        Call MoveFiles
    ${EndIf}
    ${If} $step > 0
        StrCpy $problem ""
        StrCpy $R0 "$aside"
        StrCpy $R1 "$INSTDIR"
        Call MoveFiles
        StrCpy $problem ""
        !insertmacro EachModule Register
    ${EndIf}
    RMDir /r /REBOOTOK "$INSTDIR\clarivex-new"
    Call RemoveFolders
FunctionEnd

Function WriteUninstallKey
    !define write "WriteRegStr HKLM '${uninstallKey}'"
    ${write} DisplayName "Clarivex"
    ${write} DisplayVersion "${VERSION}"
    ${write} DisplayIcon "$INSTDIR\uninstall.exe"
    ${write} Publisher "Tessel Works"
    ${write} InstallLocation "$INSTDIR"
    ${write} UninstallString '"$INSTDIR\uninstall.exe"'
    ${write} QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKLM "${uninstallKey}" NoModify 1
    WriteRegDWORD HKLM "${uninstallKey}" NoRepair 1
    StrCpy $1 0
    !insertmacro EachFile AddSize
    IntOp $1 $1 / 1024
    WriteRegDWORD HKLM "${uninstallKey}" EstimatedSize $1
FunctionEnd

; --- Before the first page ------------------------------------------------------------------------------------------------

Function .onInit
    Call Begin
    ReadRegStr $0 HKLM "${uninstallKey}" InstallLocation
    ${If} $0 != ""
        StrCpy $INSTDIR $0  ; one place a machine, whatever /D= says
    ${ElseIf} $INSTDIR == ""
        StrCpy $INSTDIR "$PROGRAMFILES\Clarivex"
        ${If} ${RunningX64}
            StrCpy $INSTDIR "$PROGRAMFILES64\Clarivex"
        ${EndIf}
    ${EndIf}
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/PARTS=" $given
    ${If} ${Errors}
        Call ChooseInstalled
    ${Else}
        Call ChooseGiven
    ${EndIf}
    Call RefusePluginWithoutPlayer
FunctionEnd

; Where there is a Clarivex already its parts are chosen, else all.
!macro ChooseIfThere part file
    ${IfNot} ${FileExists} "$INSTDIR\${file}"
        !insertmacro UnselectSection ${${part}}
    ${EndIf}
!macroend
Function ChooseInstalled
    ${If} ${FileExists} "$INSTDIR\uninstall.exe"
        !insertmacro ChooseIfThere plugin x86\WMP_CVX.dll
        !insertmacro ChooseIfThere effect x86\clarivex_video.dll
        !insertmacro ChooseIfThere program bin\clarivex.exe
    ${EndIf}
FunctionEnd

Function ChooseGiven
    !insertmacro UnselectSection ${plugin}
    !insertmacro UnselectSection ${effect}
    !insertmacro UnselectSection ${program}
    StrCpy $1 0
    ${Do}
        IntOp $1 $1 + 1
        ClearErrors
        ${WordFind} "$given," "," "E+$1" $2
        ${If} ${Errors}
            ${ExitDo}
        ${EndIf}
        Call ChooseOne
    ${Loop}
    ${If} $1 = 1
        StrCpy $2 ""
        Call ChooseOne
    ${EndIf}
FunctionEnd

; $2 is a part's name, or something else.
Function ChooseOne
    ${Select} $2
    ${Case} plugin
        !insertmacro SelectSection ${plugin}
    ${Case} effect
        !insertmacro SelectSection ${effect}
    ${Case} program
        !insertmacro SelectSection ${program}
    ${Default}
        StrCpy $0 "/PARTS=$given has '$2', which is no part; the parts are plugin, effect, program, with commas between them."
        Call Say
        SetErrorLevel 87
        Quit
    ${EndSelect}
FunctionEnd

; Without a player the plug-in is left out, and refused when it was asked for.
Function RefusePluginWithoutPlayer
    StrCpy $1 x86
    Call FindPlayer
    ${If} $0 == ""
    ${AndIf} ${IsNativeAMD64}
        StrCpy $1 x64
        Call FindPlayer
    ${EndIf}
    ${If} $0 != ""
        Return
    ${EndIf}
    ${If} $given != ""
    ${AndIf} ${SectionIsSelected} ${plugin}
        StrCpy $0 "Windows Media Player is not installed: its plug-in registrar is missing. Turn it on under $\"Turn Windows features on or off$\" > $\"Media Features$\", or leave out the player plug-in."
        Call Say
        SetErrorLevel 1603
        Quit
    ${EndIf}
    !insertmacro UnselectSection ${plugin}
    !insertmacro SetSectionFlag ${plugin} ${SF_RO}
    SectionSetText ${plugin} "Player plug-in (there is no player)"
FunctionEnd

Function RefuseNoPart
    ${IfNot} ${SectionIsSelected} ${plugin}
    ${AndIfNot} ${SectionIsSelected} ${effect}
    ${AndIfNot} ${SectionIsSelected} ${program}
        StrCpy $0 "Choose at least one part."
        Call Say
        Abort
    ${EndIf}
FunctionEnd

; --- Taking it out --------------------------------------------------------------------------------------------------------

Function un.onInit
    Call un.Begin
FunctionEnd

Section un.Install
    SetRebootFlag false
    SetOutPath "$TEMP"
    StrCpy $R0 "$INSTDIR\bin"
    StrCpy $R1 remove
    Call un.ChangePath
    ${If} ${Errors}
        DetailPrint "This machine's PATH cannot be changed; take $R0 out of it by hand."
    ${EndIf}
    StrCpy $R0 "$INSTDIR"
    !insertmacro EachModule Unregister
    StrCpy $R9 $problem  ; a module that fails here goes with the others all the same
    StrCpy $problem ""
    Call un.FindAside
    StrCpy $R1 "$aside"  ; a file that is in use would stand in the way of what is installed next
    Call un.MoveFiles
    ${If} $problem != ""
        Abort "$problem"
    ${EndIf}
    DeleteRegKey HKLM "${uninstallKey}"
    Call un.RemoveAside
    ${If} ${RebootFlag}
        RMDir /REBOOTOK "$INSTDIR"
        StrCpy $0 "Clarivex is removed. A program still uses a file of it, which goes when Windows starts again."
        Call un.Say
        SetErrorLevel 3010
    ${EndIf}
    ${If} $R9 != ""
        StrCpy $0 "Clarivex's files are removed, but $R9"
        Call un.Say
        SetErrorLevel 1603
    ${EndIf}
SectionEnd

Function un.onUninstFailed
    StrCpy $0 "$problem Close what uses it and remove Clarivex again."
    Call un.Say
    SetErrorLevel 1603
FunctionEnd
