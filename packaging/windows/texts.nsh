; What the installer says itself; the rest of its texts are NSIS's own.
!macro TEXT NAME ENGLISH PERSIAN
  LangString ${NAME} ${LANG_ENGLISH} "${ENGLISH}"
  LangString ${NAME} ${LANG_FARSI} "${PERSIAN}"
!macroend

!insertmacro TEXT PlaceTitle "Where to install" "محل نصب"
!insertmacro TEXT PlaceSubtitle "Which OBS Studio is Quillmar for?" "Quillmar برای کدام OBS Studio است؟"
!insertmacro TEXT ForEverybody "&For everybody on this computer" "برای همهٔ کاربران این رایانه"
!insertmacro TEXT ForEverybodyHint "For an OBS Studio that was installed on this computer." \
  "برای OBS Studio که روی این رایانه نصب شده است."
!insertmacro TEXT ForPortable "For a &portable OBS Studio" "برای یک OBS Studio قابل حمل"
!insertmacro TEXT ForPortableHint "The folder of the portable OBS Studio, in which there are folders named bin and data:" \
  "پوشهٔ OBS Studio قابل حمل که در آن پوشه‌های bin و data هست:"
!insertmacro TEXT FinishText "Start OBS Studio and choose Quillmar in the menu Docks." \
  "OBS Studio را باز کنید و در منوی «بارانداز» گزینهٔ Quillmar را انتخاب کنید."
!insertmacro TEXT ObsRuns "OBS Studio is running. Close it, then try again." \
  "OBS Studio در حال اجراست. آن را ببندید و دوباره تلاش کنید."
!insertmacro TEXT InUse "This file is in use. Close OBS Studio, then try again." \
  "این فایل در حال استفاده است. OBS Studio را ببندید و دوباره تلاش کنید."
!insertmacro TEXT NoObsThere "There is no OBS Studio in this folder: bin\64bit\obs64.exe is missing." \
  "در این پوشه OBS Studio نیست: bin\64bit\obs64.exe پیدا نشد."
!insertmacro TEXT LinkInTheWay "This folder is a link to another place. Remove the link, then try again." \
  "این پوشه پیوندی به جای دیگری است. پیوند را حذف کنید و دوباره تلاش کنید."
!insertmacro TEXT CannotWrite "This cannot be written:" "نوشتن در اینجا ممکن نیست:"
!insertmacro TEXT NotSixtyFourBit "OBS Studio and Quillmar need a 64-bit Windows." \
  "OBS Studio و Quillmar به ویندوز ۶۴ بیتی نیاز دارند."
