# Where OBS looks for modules: in a folder of one user, or beside its own.
#
# The layout chosen here is what `cmake --install BUILD` installs; `--component LAYOUT` names one explicitly. Without a
# prefix of the caller's, the module goes where OBS looks: that of one user on Linux, that of the machine on Windows.
#
#   user      Linux: below ~/.config/obs-studio/plugins
#   system    Linux: beside OBS's own modules
#   machine   Windows: below %ProgramData%\obs-studio\plugins
#   portable  Windows: in the folder of a portable OBS
if(WIN32)
  set(layouts machine portable)
else()
  set(layouts user system)
endif()
list(GET layouts 0 default_layout)
string(REPLACE ";" " or " layout_names "${layouts}")
set(QUILLMAR_INSTALL_LAYOUT "${default_layout}" CACHE STRING "Where `cmake --install` puts the module: ${layout_names}")
set_property(CACHE QUILLMAR_INSTALL_LAYOUT PROPERTY STRINGS ${layouts})
if(NOT QUILLMAR_INSTALL_LAYOUT IN_LIST layouts)
  message(FATAL_ERROR "QUILLMAR_INSTALL_LAYOUT is ${layout_names}, not '${QUILLMAR_INSTALL_LAYOUT}'")
endif()

function(quillmar_install_layout layout module_folder data_folder)
  set(exclude EXCLUDE_FROM_ALL)
  if(QUILLMAR_INSTALL_LAYOUT STREQUAL layout)
    set(exclude)
  endif()
  install(TARGETS quillmar-obs-plugin LIBRARY DESTINATION "${module_folder}" COMPONENT ${layout} ${exclude})
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/data/" DESTINATION "${data_folder}" COMPONENT ${layout} ${exclude})
  install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${data_folder}" COMPONENT ${layout} ${exclude})
  if(WIN32)
    # OBS brings neither; the module names its own folder to Qt as one with plug-ins.
    foreach(plugin tls/QSchannelBackendPlugin imageformats/QWebpPlugin)
      cmake_path(GET plugin PARENT_PATH kind)
      cmake_path(GET plugin FILENAME name)
      install(FILES "$<TARGET_FILE:Qt6::${name}>" DESTINATION "${module_folder}/${kind}" COMPONENT ${layout} ${exclude})
    endforeach()
  endif()
endfunction()

if(WIN32)
  if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT AND QUILLMAR_INSTALL_LAYOUT STREQUAL "machine" AND DEFINED ENV{ProgramData})
    cmake_path(CONVERT "$ENV{ProgramData}" TO_CMAKE_PATH_LIST program_data)
    set_property(CACHE CMAKE_INSTALL_PREFIX PROPERTY VALUE "${program_data}/obs-studio/plugins")
  endif()
  quillmar_install_layout(machine quillmar-obs-plugin/bin/64bit quillmar-obs-plugin/data)
  quillmar_install_layout(portable obs-plugins/64bit data/obs-plugins/quillmar-obs-plugin)
  return()
endif()

# OBS's own modules lie beside its library, whatever this distribution calls that folder.
get_filename_component(libobs_folder "${libobs_DIR}/../.." REALPATH)
if(libobs_folder MATCHES "/(lib[^/]*(/[^/]+-linux-[^/]+)?)$")
  set(system_library_folder "${CMAKE_MATCH_1}")
else()
  include(GNUInstallDirs)
  set(system_library_folder "${CMAKE_INSTALL_LIBDIR}")
endif()
set(QUILLMAR_SYSTEM_LIBRARY_FOLDER "${system_library_folder}" CACHE INTERNAL "Library folder below a system-wide prefix")

if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT AND QUILLMAR_INSTALL_LAYOUT STREQUAL "user" AND UNIX AND NOT APPLE)
  if(DEFINED ENV{XDG_CONFIG_HOME})
    set(configuration_folder "$ENV{XDG_CONFIG_HOME}")
  else()
    set(configuration_folder "$ENV{HOME}/.config")
  endif()
  set_property(CACHE CMAKE_INSTALL_PREFIX PROPERTY VALUE "${configuration_folder}/obs-studio/plugins")
endif()

quillmar_install_layout(user quillmar-obs-plugin/bin/64bit quillmar-obs-plugin/data)
quillmar_install_layout(system "${system_library_folder}/obs-plugins" share/obs/obs-plugins/quillmar-obs-plugin)
