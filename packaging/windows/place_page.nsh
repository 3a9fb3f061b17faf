; The one question: for everybody on this computer, or for a portable OBS, and where that is.
!include nsDialogs.nsh

Var PortableButton
Var PortableFolder
Var BrowseButton

Function ShowPlacePage
  !insertmacro MUI_HEADER_TEXT "$(PlaceTitle)" "$(PlaceSubtitle)"
  nsDialogs::Create 1018
  Pop $0
  nsDialogs::SetRTL $(^RTL)
  ${NSD_CreateRadioButton} 0 0u 100% 12u "$(ForEverybody)"
  Pop $0
  ${NSD_OnClick} $0 ShowPortableFolder
  ${NSD_CreateLabel} 12u 13u 285u 20u "$(ForEverybodyHint)"
  Pop $1
  ${NSD_CreateRadioButton} 0 44u 100% 12u "$(ForPortable)"
  Pop $PortableButton
  ${NSD_OnClick} $PortableButton ShowPortableFolder
  ${NSD_CreateLabel} 12u 57u 285u 20u "$(ForPortableHint)"
  Pop $1
  ${NSD_CreateDirRequest} 12u 80u 215u 13u "$Portable"
  Pop $PortableFolder
  ${NSD_CreateBrowseButton} 232u 79u 65u 15u "$(^BrowseBtn)"
  Pop $BrowseButton
  ${NSD_OnClick} $BrowseButton AskForFolder
  ; A path reads from left to right in every language.
  ${NSD_RemoveExStyle} $PortableFolder ${WS_EX_RIGHT}|${WS_EX_RTLREADING}|${WS_EX_LEFTSCROLLBAR}
  ${If} $Portable == ""
    ${NSD_Check} $0
  ${Else}
    ${NSD_Check} $PortableButton
  ${EndIf}
  Call ShowPortableFolder
  nsDialogs::Show
FunctionEnd

Function ShowPortableFolder
  ${NSD_GetState} $PortableButton $0
  EnableWindow $PortableFolder $0
  EnableWindow $BrowseButton $0
FunctionEnd

Function AskForFolder
  Pop $0
  ${NSD_GetText} $PortableFolder $0
  nsDialogs::SelectFolderDialog "$(ForPortableHint)" "$0"
  Pop $0
  ${If} $0 != error
    ${NSD_SetText} $PortableFolder $0
  ${EndIf}
FunctionEnd

; What is wrong is said here, where it can be mended.
Function LeavePlacePage
  StrCpy $Portable ""
  ${NSD_GetState} $PortableButton $0
  ${If} $0 = ${BST_CHECKED}
    ${NSD_GetText} $PortableFolder $Portable
    ${If} $Portable == ""
      !insertmacro REFUSE 4 "$(NoObsThere)"
    ${EndIf}
    Call RefusePlace
  ${EndIf}
  Call RefuseRunningObs
  SetErrorLevel -1
FunctionEnd
