# quillmar_unit_test(NAME FILE LINKS...): one Qt Test program, registered as unit.<folder>.<name>.
function(quillmar_unit_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT" "SOURCES;LINKS;LABELS")
  get_filename_component(folder "${CMAKE_CURRENT_SOURCE_DIR}" NAME)
  set(target test_${folder}_${name})
  add_executable(${target} ${arg_SOURCES})
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  target_link_libraries(${target} PRIVATE quillmar_house_rules ${arg_LINKS} Qt6::Test)
  if(TARGET quillmar_test_thread_sanitizer)
    target_link_libraries(${target} PRIVATE quillmar_test_thread_sanitizer)
  endif()
  add_test(NAME unit.${folder}.${name} COMMAND ${target})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  # A Windows program is told its platform by what runs it.
  set(environment LC_ALL=C.UTF-8)
  if(NOT WIN32)
    list(APPEND environment QT_QPA_PLATFORM=offscreen)
  endif()
  set_tests_properties(
    unit.${folder}.${name}
    PROPERTIES LABELS "unit;${arg_LABELS}" TIMEOUT ${arg_TIMEOUT} ENVIRONMENT "${environment}")
endfunction()
