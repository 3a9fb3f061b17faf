# Makes the two files of a release from what `cmake --install` laid out.
#
#   cmake -DTREE=FOLDER -DOUTPUT=FOLDER [-DVERSION=X.Y.Z] [-DMAKENSIS=PROGRAM] -P make_packages.cmake
#
# VERSION is the project's when it is not given. TREE holds quillmar-obs-plugin/{bin/64bit,data}. OUTPUT receives
# quillmar-obs-plugin-X.Y.Z-windows-x64.zip, to be unpacked in %ProgramData%\obs-studio\plugins, and
# quillmar-obs-plugin-X.Y.Z-windows-x64-installer.exe.
cmake_minimum_required(VERSION 3.25)

foreach(name TREE OUTPUT)
  if(NOT ${name})
    message(FATAL_ERROR "${name} is not set")
  endif()
  get_filename_component(${name} "${${name}}" ABSOLUTE)
endforeach()
if(NOT VERSION)
  file(READ "${CMAKE_CURRENT_LIST_DIR}/../../CMakeLists.txt" project)
  string(REGEX MATCH "project\\([^ ]+ VERSION ([0-9.]+)" found "${project}")
  set(VERSION "${CMAKE_MATCH_1}")
endif()
if(NOT MAKENSIS)
  find_program(MAKENSIS makensis REQUIRED)
endif()

set(module quillmar-obs-plugin)
set(here "${CMAKE_CURRENT_LIST_DIR}")
set(package "${OUTPUT}/${module}-${VERSION}-windows-x64")

foreach(needed bin/64bit/${module}.dll bin/64bit/tls/qschannelbackend.dll bin/64bit/imageformats/qwebp.dll
               data/locale/en-US.ini data/locale/fa-IR.ini)
  if(NOT EXISTS "${TREE}/${module}/${needed}")
    message(FATAL_ERROR "${TREE}/${module}/${needed} is missing: is this what cmake --install made?")
  endif()
endforeach()

# Adds the content of one folder of the tree to the installer's two lists, outer folders first.
set(folders "")
set(files "")
set(size 0)
function(list_content base folder)
  file(GLOB_RECURSE entries LIST_DIRECTORIES true RELATIVE "${folder}" "${folder}/*")
  list(SORT entries)
  foreach(entry IN LISTS entries)
    if(entry MATCHES "[\"$`]")
      message(FATAL_ERROR "${entry}: such a name cannot be written in the installer's script")
    endif()
    string(REPLACE "/" "\\" name "\\${entry}")
    if(IS_DIRECTORY "${folder}/${entry}")
      string(APPEND folders "  !insertmacro \${DO} \"${base}\" \"${name}\"\n")
    else()
      string(APPEND files "  !insertmacro \${DO} \"${base}\" \"${name}\" \"${folder}/${entry}\"\n")
      file(SIZE "${folder}/${entry}" bytes)
      math(EXPR size "${size} + ${bytes}")
    endif()
  endforeach()
  return(PROPAGATE folders files size)
endfunction()

list_content([[$Binaries]] "${TREE}/${module}/bin/64bit")
list_content([[$Data]] "${TREE}/${module}/data")
math(EXPR kilobytes "(${size} + 1023) / 1024")

file(MAKE_DIRECTORY "${OUTPUT}")
configure_file("${here}/files.nsh.in" "${OUTPUT}/files.nsh" @ONLY)

file(REMOVE "${package}.zip" "${package}-installer.exe")
execute_process(
  COMMAND "${CMAKE_COMMAND}" -E tar cf "${package}.zip" --format=zip "${module}"
  WORKING_DIRECTORY "${TREE}" COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND "${MAKENSIS}" -V2 -WX -INPUTCHARSET UTF8 "-DVERSION=${VERSION}" "-DFILES=${OUTPUT}/files.nsh"
          "-DOUTPUT=${package}-installer.exe" "${here}/installer.nsi"
  WORKING_DIRECTORY "${here}" COMMAND_ERROR_IS_FATAL ANY)
message(STATUS "${package}.zip")
message(STATUS "${package}-installer.exe")
