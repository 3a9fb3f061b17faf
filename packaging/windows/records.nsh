; What was made is written down in the registry, where only administrators write: the files and folders of this place,
; by full path. An upgrade takes away what the previous version left, and nobody's folder but our own is ever deleted,
; and that only when it is empty.

!macro MAKE_FOLDER BASE NAME
  ${IfNot} ${FileExists} "${BASE}${NAME}\*.*"
    ClearErrors
    CreateDirectory "${BASE}${NAME}"
    ${If} ${Errors}
      !insertmacro REFUSE 6 "$(CannotWrite)$\r$\n${BASE}${NAME}"
    ${EndIf}
    WriteRegStr HKLM "$Record\Folders" "${BASE}${NAME}" made
  ${EndIf}
!macroend

; Deleted first: a link in its place goes, and what it leads to stays as it is.
!macro INSTALL_FILE BASE NAME SOURCE
  ClearErrors
  Delete "${BASE}${NAME}"
  ${If} ${Errors}
    !insertmacro REFUSE 6 "$(CannotWrite)$\r$\n${BASE}${NAME}"
  ${EndIf}
  WriteRegStr HKLM "$Record\Files" "${BASE}${NAME}" new
  File "/oname=${BASE}${NAME}" "${SOURCE}"
!macroend

!macro REMOVE_FILE BASE NAME SOURCE
  Delete "${BASE}${NAME}"
!macroend

!macro RECORDS_OF un
  ; Folders of the previous version, which this one may not know.
  Function ${un}RefuseLinksInRecords
    StrCpy $1 0
    ${Do}
      EnumRegValue $2 HKLM "$Record\Folders" $1
      ${If} $2 == ""
        ${ExitDo}
      ${EndIf}
      !insertmacro REFUSE_LINK "$2" ""
      IntOp $1 $1 + 1
    ${Loop}
  FunctionEnd

  Function ${un}MarkRecordsOld
    StrCpy $0 0
    ${Do}
      EnumRegValue $1 HKLM "$Record\Files" $0
      ${If} $1 == ""
        ${ExitDo}
      ${EndIf}
      WriteRegStr HKLM "$Record\Files" "$1" old
      IntOp $0 $0 + 1
    ${Loop}
  FunctionEnd

  Function ${un}RemoveOldFiles
    StrCpy $0 0
    ${Do}
      EnumRegValue $1 HKLM "$Record\Files" $0
      ${If} $1 == ""
        ${ExitDo}
      ${EndIf}
      ReadRegStr $2 HKLM "$Record\Files" "$1"
      ${If} $2 == old
        Delete "$1"
        DeleteRegValue HKLM "$Record\Files" "$1"
      ${Else}
        IntOp $0 $0 + 1
      ${EndIf}
    ${Loop}
  FunctionEnd

  ; In as many rounds as it takes: an outer folder is empty when its inner ones are gone.
  Function ${un}RemoveEmptyFolders
    ${Do}
      StrCpy $0 0
      StrCpy $3 0
      ${Do}
        EnumRegValue $1 HKLM "$Record\Folders" $0
        ${If} $1 == ""
          ${ExitDo}
        ${EndIf}
        RMDir "$1"
        ${If} ${FileExists} "$1\*.*"
          IntOp $0 $0 + 1
        ${Else}
          DeleteRegValue HKLM "$Record\Folders" "$1"
          StrCpy $3 1
        ${EndIf}
      ${Loop}
    ${LoopUntil} $3 = 0
  FunctionEnd
!macroend
!insertmacro RECORDS_OF ""
!insertmacro RECORDS_OF "un."
