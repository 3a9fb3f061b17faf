# How this project compiles everything that it wrote itself. Link `quillmar_house_rules` privately.
cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH quillmar_source_dir)
add_library(quillmar_house_rules INTERFACE)
target_include_directories(quillmar_house_rules INTERFACE "${quillmar_source_dir}")
target_compile_definitions(
  quillmar_house_rules
  INTERFACE QT_NO_CAST_FROM_ASCII
            QT_NO_CAST_TO_ASCII
            QT_NO_URL_CAST_FROM_STRING
            QT_NO_CONTEXTLESS_CONNECT
            QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
            QT_NO_FOREACH
            QT_NO_KEYWORDS
            QT_USE_QSTRINGBUILDER
            QT_DISABLE_DEPRECATED_UP_TO=0x060800
            $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
if(MSVC)
  target_compile_options(quillmar_house_rules INTERFACE /W4 /utf-8 /permissive-)
  if(QUILLMAR_WARNINGS_AS_ERRORS)
    target_compile_options(quillmar_house_rules INTERFACE /WX)
  endif()
else()
  target_compile_options(
    quillmar_house_rules
    INTERFACE -Wall
              -Wextra
              -Wpedantic
              -Wshadow
              -Wold-style-cast
              -Woverloaded-virtual
              # Qt's older macros for waiting in a test narrow a number of milliseconds; a newer Qt checks the same sources.
              $<$<VERSION_GREATER_EQUAL:${Qt6_VERSION},6.9>:-Wconversion>
              -Wnon-virtual-dtor
              -Wcast-qual
              -Wformat=2)
  if(QUILLMAR_WARNINGS_AS_ERRORS)
    target_compile_options(quillmar_house_rules INTERFACE -Werror)
  endif()
endif()

# quillmar_library(NAME SOURCES... LINKS...): a static library of one folder.
function(quillmar_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;PUBLIC_LINKS;PRIVATE_LINKS")
  add_library(${name} STATIC ${arg_SOURCES})
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
  target_link_libraries(${name} PUBLIC quillmar_includes ${arg_PUBLIC_LINKS} PRIVATE quillmar_house_rules
                                                                                     ${arg_PRIVATE_LINKS})
endfunction()

add_library(quillmar_includes INTERFACE)
target_include_directories(quillmar_includes INTERFACE "${quillmar_source_dir}")
