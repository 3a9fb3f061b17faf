# OBS publishes no development files for Windows. Its headers come from its sources, import libraries are made from the
# lists of the functions that the module calls.
find_path(QUILLMAR_OBS_INCLUDE_DIR obs.h PATH_SUFFIXES obs REQUIRED DOC "Folder of OBS's headers")
find_path(QUILLMAR_OBS_FRONTEND_INCLUDE_DIR obs-frontend-api.h PATH_SUFFIXES obs HINTS "${QUILLMAR_OBS_INCLUDE_DIR}"
          REQUIRED DOC "Folder of the headers of OBS's front-end")

# OBS's own build writes this header; nothing in it concerns a module.
set(QUILLMAR_OBS_GENERATED_DIR "")
if(NOT EXISTS "${QUILLMAR_OBS_INCLUDE_DIR}/obsconfig.h")
  set(QUILLMAR_OBS_GENERATED_DIR "${PROJECT_BINARY_DIR}/obs-headers")
  file(CONFIGURE OUTPUT "${QUILLMAR_OBS_GENERATED_DIR}/obsconfig.h" CONTENT "#pragma once\n")
endif()

# quillmar_import_library(TARGET DLL INCLUDE_FOLDER): what a program links that calls a DLL which is not there yet.
function(quillmar_import_library target dll include_folder)
  set(list "${PROJECT_SOURCE_DIR}/obs/windows/${dll}.def")
  set(library "${PROJECT_BINARY_DIR}/${dll}.lib")
  if(MSVC)
    set(command "${CMAKE_AR}" /nologo /machine:x64 "/def:${list}" "/out:${library}")
  else()
    set(command "${CMAKE_DLLTOOL}" --input-def "${list}" --output-lib "${library}")
  endif()
  execute_process(COMMAND ${command} COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY "${PROJECT_SOURCE_DIR}" APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${list}")
  add_library(${target} SHARED IMPORTED GLOBAL)
  set_target_properties(
    ${target}
    PROPERTIES IMPORTED_IMPLIB "${library}"
               IMPORTED_LOCATION "${dll}.dll"
               INTERFACE_INCLUDE_DIRECTORIES "${include_folder}")
endfunction()

quillmar_import_library(OBS::libobs obs "${QUILLMAR_OBS_INCLUDE_DIR};${QUILLMAR_OBS_GENERATED_DIR}")
quillmar_import_library(OBS::obs-frontend-api obs-frontend-api "${QUILLMAR_OBS_FRONTEND_INCLUDE_DIR}")
