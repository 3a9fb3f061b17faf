# Where OBS looks for modules: in a folder of one user, or beside its own.
#
# The layout chosen here is what `cmake --install BUILD` installs; `--component user` and `--component system` name one
# explicitly. Without a prefix of the caller's, the module of one user goes where that user's OBS looks.
set(QUILLMAR_INSTALL_LAYOUT "user" CACHE STRING "Where `cmake --install` puts the module: user or system")
set_property(CACHE QUILLMAR_INSTALL_LAYOUT PROPERTY STRINGS user system)
if(NOT QUILLMAR_INSTALL_LAYOUT MATCHES "^(user|system)$")
  message(FATAL_ERROR "QUILLMAR_INSTALL_LAYOUT is user or system, not '${QUILLMAR_INSTALL_LAYOUT}'")
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

function(quillmar_install_layout layout module_folder data_folder)
  set(exclude EXCLUDE_FROM_ALL)
  if(QUILLMAR_INSTALL_LAYOUT STREQUAL layout)
    set(exclude)
  endif()
  install(TARGETS quillmar-obs-plugin LIBRARY DESTINATION "${module_folder}" COMPONENT ${layout} ${exclude})
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/data/" DESTINATION "${data_folder}" COMPONENT ${layout} ${exclude})
endfunction()

quillmar_install_layout(user quillmar-obs-plugin/bin/64bit quillmar-obs-plugin/data)
quillmar_install_layout(system "${system_library_folder}/obs-plugins" share/obs/obs-plugins/quillmar-obs-plugin)
