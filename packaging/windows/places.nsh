; Where things belong: OBS reads one folder of the machine, a portable OBS only its own.
!define MODULE quillmar-obs-plugin
!define RECORDS "Software\${MODULE}"
!define PORTABLE_DATA "data\obs-plugins\${MODULE}"

Var Portable    ; the folder of a portable OBS; empty for the whole machine
Var Root        ; above everything that is installed
Var Binaries    ; of the module and of Qt's plug-ins
Var Data        ; of the texts
Var Uninstaller ; of the program that removes it all
Var Record      ; the key below which files and folders made for this place are written down

!macro PLACES un
  Function ${un}UseWholeMachine
    SetShellVarContext all
    SetRegView 64
  FunctionEnd

  Function ${un}FindPlaces
    ${If} $Portable == ""
      StrCpy $Root "$APPDATA\obs-studio"
      StrCpy $Binaries "$Root\plugins\${MODULE}\bin\64bit"
      StrCpy $Data "$Root\plugins\${MODULE}\data"
      ; Everybody may write below ProgramData; what an administrator is asked to start lies where only administrators may.
      StrCpy $Uninstaller "$PROGRAMFILES64\$(^Name)"
    ${Else}
      StrCpy $Root $Portable
      StrCpy $Binaries "$Root\obs-plugins\64bit"
      StrCpy $Data "$Root\${PORTABLE_DATA}"
      StrCpy $Uninstaller $Data
    ${EndIf}
    ; A key's name cannot hold a backslash.
    ${WordReplace} "$Root" "\" "/" "+" $0
    StrCpy $Record "${RECORDS}\$0"
  FunctionEnd
!macroend
!insertmacro PLACES ""
!insertmacro PLACES "un."

; Outermost first.
!macro EACH_FOLDER DO
  ${If} $Portable == ""
    !insertmacro ${DO} "$Root" ""
    !insertmacro ${DO} "$Root" "\plugins"
    !insertmacro ${DO} "$Root" "\plugins\${MODULE}"
    !insertmacro ${DO} "$Root" "\plugins\${MODULE}\bin"
  ${Else}
    !insertmacro ${DO} "$Root" "\obs-plugins"
    !insertmacro ${DO} "$Root" "\data"
    !insertmacro ${DO} "$Root" "\data\obs-plugins"
  ${EndIf}
  !insertmacro ${DO} "$Binaries" ""
  !insertmacro ${DO} "$Data" ""
  !insertmacro EACH_INNER_FOLDER ${DO}
!macroend
