; The machine's PATH. Its text is longer on many systems than a string can be here, so it never becomes one: it stays in memory
; that is as large as needed, and only the folder's own name is put to it or cut out of it. Every other character, and the type
; of the value, stay as they are.
!define environmentKey "SYSTEM\CurrentControlSet\Control\Session Manager\Environment"
!define longestPath 32760  ; of 32767 characters that Windows gives a variable

!macro PathFunctions un
; Adds the folder $R0 to PATH or takes it out, as $R1 says: add or remove. Nothing happens where it is as wanted already. With an
; error nothing has changed. Changes $0 to $9.
Function ${un}ChangePath
    System::Call 'advapi32::RegOpenKeyExW(p 0x80000002, w "${environmentKey}", i 0, i 3, *p .r1) i .r0'
    ${If} $0 <> 0
        SetErrors
        Return
    ${EndIf}
    Call ${un}ReadPath
    ClearErrors
    ${If} $0 = 0
        StrCpy $5 ";$R0;"
        System::Call 'shlwapi::StrStrIW(p r3, w r5) p .r4'
        ${If} $R1 == add
        ${AndIf} $4 = 0
            StrCpy $5 "$R0;"
            System::Call 'kernel32::lstrcatW(p r3, w r5)'
            Call ${un}WritePath
        ${ElseIf} $R1 == remove
        ${AndIf} $4 <> 0
            Call ${un}CutOut
            Call ${un}WritePath
        ${EndIf}
        System::Free $3
    ${EndIf}
    System::Call 'advapi32::RegCloseKey(p r1)'
    ${If} $0 <> 0
        SetErrors
    ${EndIf}
FunctionEnd

; From the open key $1: $2 is the type, $3 the text between semicolons, with room for one more folder. $0 is 0, or an error and
; then $3 is nothing.
Function ${un}ReadPath
    System::Call 'advapi32::RegQueryValueExW(p r1, w "Path", p 0, *i .r2, p 0, *i 0 r4) i .r0'
    ${If} $0 <> 0
        Return
    ${EndIf}
    ${If} $2 <> 1  ; REG_SZ
    ${AndIf} $2 <> 2  ; REG_EXPAND_SZ
        StrCpy $0 13  ; ERROR_INVALID_DATA
        Return
    ${EndIf}
    StrLen $5 $R0
    IntOp $5 $5 + 8
    IntOp $5 $5 * 2
    IntOp $5 $5 + $4
    System::Alloc $5  ; zeros
    Pop $3
    System::Call 'kernel32::lstrcatW(p r3, w ";")'
    IntOp $5 $3 + 2
    System::Call 'advapi32::RegQueryValueExW(p r1, w "Path", p 0, p 0, p r5, *i r4) i .r0'
    ${If} $0 <> 0
        System::Free $3
        Return
    ${EndIf}
    System::Call 'kernel32::lstrcatW(p r3, w ";")'
FunctionEnd

; Takes ";$R0" out at $4, which is where ";$R0;" stands.
Function ${un}CutOut
    StrLen $5 $R0
    IntOp $5 $5 + 1
    IntOp $5 $5 * 2
    IntOp $5 $4 + $5
    System::Call 'kernel32::lstrlenW(p r5) i .r6'
    IntOp $6 $6 + 1
    IntOp $6 $6 * 2
    System::Call 'kernel32::RtlMoveMemory(p r4, p r5, i r6)'
FunctionEnd

; Writes the text $3 without its outer semicolons as type $2 to the open key $1 and tells the programs that run. $0 is 0 or an error.
Function ${un}WritePath
    System::Call 'kernel32::lstrlenW(p r3) i .r5'
    ${If} $5 > ${longestPath}
        StrCpy $0 234  ; ERROR_MORE_DATA
        Return
    ${EndIf}
    IntOp $5 $5 - 1
    IntOp $5 $5 * 2
    IntOp $6 $3 + $5
    System::Call '*$6(&i2 0)'
    IntOp $6 $3 + 2
    System::Call 'advapi32::RegSetValueExW(p r1, w "Path", i 0, i r2, p r6, i r5) i .r0'
    SendMessage ${HWND_BROADCAST} ${WM_SETTINGCHANGE} 0 "STR:Environment" /TIMEOUT=5000
FunctionEnd
!macroend

!insertmacro PathFunctions ""
!insertmacro PathFunctions "un."
