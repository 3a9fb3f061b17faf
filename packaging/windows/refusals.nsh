; What has to hold before the first byte is written or deleted.

; Says why and ends, with a code of its own for whoever called without a window.
!macro REFUSE CODE TEXT
  DetailPrint "${TEXT}"
  SetErrorLevel ${CODE}
  MessageBox MB_OK|MB_ICONSTOP "${TEXT}" /SD IDOK
  Abort
!macroend

; 0x400: a link or junction, which would lead an administrator's hand to somewhere else.
!macro REFUSE_LINK BASE NAME
  System::Call 'kernel32::GetFileAttributesW(w "${BASE}${NAME}") i .r0'
  ${If} $0 <> -1
    IntOp $0 $0 & 0x400
    ${If} $0 <> 0
      !insertmacro REFUSE 5 "$(LinkInTheWay)$\r$\n${BASE}${NAME}"
    ${EndIf}
  ${EndIf}
!macroend

; A library that a program has loaded cannot be opened for writing.
!macro REFUSE_FILE_IN_USE BASE NAME SOURCE
  ${If} ${FileExists} "${BASE}${NAME}"
    ClearErrors
    FileOpen $0 "${BASE}${NAME}" a
    ${If} ${Errors}
      !insertmacro REFUSE 3 "$(InUse)$\r$\n${BASE}${NAME}"
    ${EndIf}
    FileClose $0
  ${EndIf}
!macroend

; PROCESSENTRY32W, up to the name of the program.
!if ${NSIS_PTR_SIZE} == 8
  !define PROCESS_ENTRY_SIZE 568
  !define PROCESS_ENTRY "i, i, i, i, p, i, i, i, i, i"
!else
  !define PROCESS_ENTRY_SIZE 556
  !define PROCESS_ENTRY "i, i, i, p, i, i, i, i, i"
!endif

; A full path without a backslash at its end, so that one place has one record.
Function RefusePlace
  ${If} $Portable != ""
    ${If} ${FileExists} "$Portable\bin\64bit\obs64.exe"
      GetFullPathName $0 "$Portable\bin\64bit\obs64.exe"
      StrCpy $0 $0 -20
      StrCpy $Portable $0
    ${Else}
      !insertmacro REFUSE 4 "$(NoObsThere)$\r$\n$Portable"
    ${EndIf}
  ${EndIf}
FunctionEnd

!macro REFUSALS un
  ; Whoever is logged on: asks the list of processes, since OBS's windows have no name that stays.
  Function ${un}RefuseRunningObs
    StrCpy $4 0
    System::Call 'kernel32::CreateToolhelp32Snapshot(i 2, i 0) p .r0'
    System::Alloc ${PROCESS_ENTRY_SIZE}
    Pop $1
    System::Call '*$1(i ${PROCESS_ENTRY_SIZE})'
    System::Call 'kernel32::Process32FirstW(p r0, p r1) i .r2'
    ${While} $2 <> 0
      System::Call '*$1(${PROCESS_ENTRY}, &w260 .r3)'
      ${If} $3 == "obs64.exe"
        StrCpy $4 1
      ${EndIf}
      System::Call 'kernel32::Process32NextW(p r0, p r1) i .r2'
    ${EndWhile}
    System::Free $1
    System::Call 'kernel32::CloseHandle(p r0)'
    ${If} $4 = 1
      !insertmacro REFUSE 3 "$(ObsRuns)"
    ${EndIf}
  FunctionEnd
!macroend
!insertmacro REFUSALS ""
!insertmacro REFUSALS "un."

; The uninstaller knows from its own folder what it belongs to.
Function un.FindOwnPlace
  StrCpy $Portable ""
  ${If} $INSTDIR != "$PROGRAMFILES64\$(^Name)"
    StrLen $0 "\${PORTABLE_DATA}"
    IntOp $0 0 - $0
    StrCpy $1 $INSTDIR "" $0
    ${If} $1 != "\${PORTABLE_DATA}"
      !insertmacro REFUSE 4 "$(NoObsThere)$\r$\n$INSTDIR"
    ${EndIf}
    StrCpy $Portable $INSTDIR $0
  ${EndIf}
FunctionEnd
