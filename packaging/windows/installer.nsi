; Installs the module for everybody on this computer, or into the folder of a portable OBS.
;
; make_packages.cmake compiles it and names the files: FILES (a script with the lists), VERSION, OUTPUT.
;
;   installer.exe /S              for everybody, without a window
;   installer.exe /S /D=FOLDER    into the portable OBS in FOLDER
;
; It ends with 0 (done), 1 (called off), 2 (a file could not be unpacked), 3 (OBS runs, or a file is in use), 4 (no OBS in
; FOLDER), 5 (a link is in the way), 6 (a folder or file could not be made), 7 (not a 64-bit Windows).
Unicode true
!ifndef TARGET
  !define TARGET amd64-unicode
!endif
Target ${TARGET}
SetCompressor /SOLID lzma
RequestExecutionLevel admin
ManifestDPIAware true
AllowSkipFiles off
Name "Quillmar for OBS Studio"
BrandingText " "
OutFile "${OUTPUT}"
VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=0 ProductName "Quillmar for OBS Studio"
VIAddVersionKey /LANG=0 ProductVersion "${VERSION}"
VIAddVersionKey /LANG=0 FileVersion "${VERSION}"
VIAddVersionKey /LANG=0 FileDescription "Quillmar for OBS Studio"
VIAddVersionKey /LANG=0 LegalCopyright "GPL-2.0-or-later"

!include LogicLib.nsh
!include MUI2.nsh
!include WordFunc.nsh
!include x64.nsh
!include "${FILES}"
!include "places.nsh"
!include "refusals.nsh"
!include "records.nsh"

!define LISTED_PROGRAM "Software\Microsoft\Windows\CurrentVersion\Uninstall\${MODULE}"

!define MUI_ABORTWARNING
!define MUI_FINISHPAGE_TEXT "$(FinishText)"
!define MUI_LANGDLL_ALLLANGUAGES
Page custom ShowPlacePage LeavePlacePage
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English
!insertmacro MUI_LANGUAGE Farsi
!include "texts.nsh"
!include "place_page.nsh"

Function .onInit
  Call UseWholeMachine
  ${IfNot} ${RunningX64}
    !insertmacro REFUSE 7 "$(NotSixtyFourBit)"
  ${EndIf}
  ; Only /D sets it: there is no default folder.
  StrCpy $Portable $INSTDIR
  ${IfNot} ${Silent}
    !insertmacro MUI_LANGDLL_DISPLAY
  ${EndIf}
FunctionEnd

Section
  Call RefusePlace
  Call FindPlaces
  !insertmacro EACH_FOLDER REFUSE_LINK
  Call RefuseLinksInRecords
  Call RefuseRunningObs
  !insertmacro EACH_FILE REFUSE_FILE_IN_USE
  Call MarkRecordsOld
  !insertmacro EACH_FOLDER MAKE_FOLDER
  !insertmacro EACH_FILE INSTALL_FILE
  Call WriteUninstallerAndRecord
  Call RemoveOldFiles
  Call RemoveEmptyFolders
  ${If} $Portable == ""
    Call ListProgram
  ${EndIf}
SectionEnd

Function WriteUninstallerAndRecord
  !insertmacro MAKE_FOLDER "$Uninstaller" ""
  Delete "$Uninstaller\uninstall.exe"
  ClearErrors
  WriteUninstaller "$Uninstaller\uninstall.exe"
  ${If} ${Errors}
    !insertmacro REFUSE 6 "$(CannotWrite)$\r$\n$Uninstaller\uninstall.exe"
  ${EndIf}
  WriteRegStr HKLM "$Record\Files" "$Uninstaller\uninstall.exe" new
FunctionEnd

Function ListProgram
  WriteRegStr HKLM "${LISTED_PROGRAM}" DisplayName "$(^Name)"
  WriteRegStr HKLM "${LISTED_PROGRAM}" DisplayVersion "${VERSION}"
  WriteRegStr HKLM "${LISTED_PROGRAM}" Publisher "Quillmar"
  WriteRegStr HKLM "${LISTED_PROGRAM}" InstallLocation "$Root"
  WriteRegStr HKLM "${LISTED_PROGRAM}" UninstallString '"$Uninstaller\uninstall.exe"'
  WriteRegStr HKLM "${LISTED_PROGRAM}" QuietUninstallString '"$Uninstaller\uninstall.exe" /S'
  WriteRegDWORD HKLM "${LISTED_PROGRAM}" EstimatedSize ${KILOBYTES}
  WriteRegDWORD HKLM "${LISTED_PROGRAM}" NoModify 1
  WriteRegDWORD HKLM "${LISTED_PROGRAM}" NoRepair 1
FunctionEnd

Function un.onInit
  Call un.UseWholeMachine
FunctionEnd

Section Uninstall
  Call un.FindOwnPlace
  Call un.FindPlaces
  !insertmacro EACH_FOLDER REFUSE_LINK
  Call un.RefuseLinksInRecords
  Call un.RefuseRunningObs
  !insertmacro EACH_FILE REFUSE_FILE_IN_USE
  Call un.MarkRecordsOld
  !insertmacro EACH_FILE REMOVE_FILE
  Call un.RemoveOldFiles
  ; A portable OBS may have come from a machine that keeps the records.
  Delete "$Uninstaller\uninstall.exe"
  Call un.RemoveEmptyFolders
  DeleteRegKey HKLM "$Record"
  DeleteRegKey /ifempty HKLM "${RECORDS}"
  ${If} $Portable == ""
    DeleteRegKey HKLM "${LISTED_PROGRAM}"
  ${EndIf}
SectionEnd
