; What is installed, file by file, and what installer and uninstaller both do with it: refuse, tell, register, move.

; Each module: its part, the folder of its bits, its name.
!macro EachModule do
    !insertmacro ${do} plugin x86 WMP_CVX.dll
    !insertmacro ${do} plugin x64 WMP_CVX.dll
    !insertmacro ${do} effect x86 clarivex_video.dll
    !insertmacro ${do} effect x64 clarivex_video.dll
!macroend

; Each file, whether it was chosen or not, and whichever version brought it.
!macro EachFile do
    !insertmacro ${do} x86\WMP_CVX.dll
    !insertmacro ${do} x64\WMP_CVX.dll
    !insertmacro ${do} x86\clarivex_video.dll
    !insertmacro ${do} x64\clarivex_video.dll
    !insertmacro ${do} bin\clarivex.exe
    !insertmacro ${do} uninstall.exe
!macroend

; $1 grows by the bytes of an installed file.
!macro AddSize name
    ${If} ${FileExists} "$INSTDIR\${name}"
        FileOpen $2 "$INSTDIR\${name}" r
        FileSeek $2 0 END $3
        FileClose $2
        IntOp $1 $1 + $3
    ${EndIf}
!macroend

; Calls a function of installer or uninstaller, whichever this stands in.
!macro CallOwn function
    !ifdef __UNINSTALL__
        Call un.${function}
    !else
        Call ${function}
    !endif
!macroend
!define Own "!insertmacro CallOwn"

; Registers an installed module: the plug-in where there is a player of its bits, the effect everywhere. Notes what fails.
!macro Register part bits name
    StrCpy $1 ${bits}
    StrCpy $0 "wanted"
    !if ${part} == plugin
        Call FindPlayer
    !endif
    ${If} $0 != ""
    ${AndIf} ${FileExists} "$INSTDIR\${bits}\${name}"
        StrCpy $2 '"$INSTDIR\${bits}\${name}"'
        Call Regsvr32
        !insertmacro NoteCode registered ${bits}\${name}
    ${EndIf}
!macroend

; Unregisters a module in the folder $R0. A plug-in cannot do that where the player is gone, so its classes go in any case.
!macro Unregister part bits name
    ${If} ${FileExists} "$R0\${bits}\${name}"
        StrCpy $1 ${bits}
        StrCpy $2 '/u "$R0\${bits}\${name}"'
        ${Own} Regsvr32
        !if ${part} == plugin
            ${Own} ForgetPlugin
            ${Own} FindPlayer
            StrCpy $4 $0
            ${If} $4 == ""
                StrCpy $3 0
            ${EndIf}
        !endif
        !insertmacro NoteCode unregistered ${bits}\${name}
    ${EndIf}
!macroend

; The exit code $3 of regsvr32 in words, unless it is 0 or there is a problem already.
!macro NoteCode done name
    ${If} $3 != 0
    ${AndIf} $problem == ""
        StrCpy $problem "${name} could not be ${done}: regsvr32 ended with code $3."
    ${EndIf}
!macroend

!macro MoveFile name
    ${If} $problem == ""
    ${AndIf} ${FileExists} "$R0\${name}"
        ClearErrors
        Rename "$R0\${name}" "$R1\${name}"
        ${If} ${Errors}
            StrCpy $problem "$R0\${name} cannot be moved."
        ${EndIf}
    ${EndIf}
!macroend

!macro ViewOfBits
    ${If} $1 == x64
        SetRegView 64
    ${Else}
        SetRegView 32
    ${EndIf}
!macroend

!macro RemoveFolders folder
    RMDir "${folder}\x86"
    RMDir "${folder}\x64"
    RMDir "${folder}\bin"
    RMDir "${folder}"
!macroend

!macro FileFunctions un
; Both start here: what must be so before anything is changed.
Function ${un}Begin
    SetShellVarContext all
    ${If} ${RunningX64}
        SetRegView 64
    ${EndIf}
    UserInfo::GetAccountType
    Pop $0
    ${If} $0 != "Admin"
        StrCpy $0 "Clarivex needs administrator rights to be installed or removed. Right-click this program and choose $\"Run as administrator$\"."
        Push 5
        Call ${un}Refuse
    ${EndIf}
    System::Call 'kernel32::IsProcessorFeaturePresent(i 10) i .r0'  ; PF_XMMI64_INSTRUCTIONS_AVAILABLE
    ${If} $0 = 0
        StrCpy $0 "Clarivex needs a processor with SSE2, which this one does not have."
        Push 1603
        Call ${un}Refuse
    ${EndIf}
    System::Call 'kernel32::CreateMutexW(p 0, i 0, w "Global\Clarivex Setup") p .r1 ?e'
    Pop $0
    ${If} $0 = 183  ; ERROR_ALREADY_EXISTS
        StrCpy $0 "Clarivex is being installed or removed already; wait for the end of that."
        Push 1618
        Call ${un}Refuse
    ${EndIf}
FunctionEnd

; Says $0 and ends with the exit code on the stack.
Function ${un}Refuse
    Call ${un}Say
    Pop $0
    SetErrorLevel $0
    Quit
FunctionEnd

; Says $0: in a window, or silently to whoever reads standard output.
Function ${un}Say
    DetailPrint $0
    ${If} ${Silent}
        System::Call 'kernel32::AttachConsole(i -1)'
        System::Call 'kernel32::GetStdHandle(i -11) p .r1'
        FileWrite $1 "$0$\r$\n"
    ${Else}
        MessageBox MB_OK|MB_ICONEXCLAMATION $0
    ${EndIf}
FunctionEnd

; Runs the regsvr32 of the bits $1 (x86 or x64) with the arguments $2; $3 is its exit code.
Function ${un}Regsvr32
    StrCpy $3 "$SYSDIR\regsvr32.exe"
    ${If} $1 == x64
        StrCpy $3 "$WINDIR\Sysnative\regsvr32.exe"
    ${EndIf}
    DetailPrint "$3 $2"
    ExecWait '"$3" /s $2' $3
    ClearErrors
FunctionEnd

; $0 is where the plug-in registrar of the player of the bits $1 is; empty where there is no such player.
Function ${un}FindPlayer
    !insertmacro ViewOfBits
    ReadRegStr $0 HKCR "${playersRegistrar}\InprocServer32" ""
    SetRegView lastused
    ClearErrors
FunctionEnd

Function ${un}ForgetPlugin
    !insertmacro ViewOfBits
    DeleteRegKey HKLM "Software\Classes\CLSID\{5C1E8A47-93D2-4B06-B7F1-2A6D90CE3F18}"
    DeleteRegKey HKLM "Software\Classes\CLSID\{7F40B2D9-18A6-4E5C-9C33-D1E07A5B6C42}"
    SetRegView lastused
    ClearErrors
FunctionEnd

; A folder that is not there yet. What waits in another one for the next restart must not meet a file of today.
Function ${un}FindAside
    StrCpy $0 0
    ${Do}
        IntOp $0 $0 + 1
        StrCpy $aside "$INSTDIR\clarivex-old$0"
    ${LoopWhile} ${FileExists} "$aside\*.*"
FunctionEnd

; Moves each file from the folder $R0 to the folder $R1, up to the first that cannot be moved.
Function ${un}MoveFiles
    CreateDirectory "$R1\x86"
    CreateDirectory "$R1\x64"
    CreateDirectory "$R1\bin"
    !insertmacro EachFile MoveFile
    Call ${un}RemoveFolders
FunctionEnd

; Deletes all that was moved aside, now or earlier, at the next restart where a program still holds it.
Function ${un}RemoveAside
    FindFirst $0 $1 "$INSTDIR\clarivex-old*"
    ${DoWhile} $1 != ""
        RMDir /r /REBOOTOK "$INSTDIR\$1"
        FindNext $0 $1
    ${Loop}
    FindClose $0
    Call ${un}RemoveFolders
FunctionEnd

; Deletes folders that are empty.
Function ${un}RemoveFolders
    !insertmacro RemoveFolders $aside
    !insertmacro RemoveFolders $INSTDIR\clarivex-new
    !insertmacro RemoveFolders $INSTDIR
FunctionEnd
!macroend

!insertmacro FileFunctions ""
!insertmacro FileFunctions "un."
