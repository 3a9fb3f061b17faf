# The session file under Windows' own data protection, among programs that hold files open.
quillmar_unit_test(session_dpapi SOURCES session_dpapi_test.cpp LINKS quillmar_service quillmar_test_wine crypt32)
quillmar_unit_test(
  session_dpapi_calls
  SOURCES session_dpapi_calls_test.cpp dpapi_calls.cpp given_back_arrays.cpp
  LINKS quillmar_service quillmar_test_imports crypt32)
quillmar_unit_test(
  session_file_place
  SOURCES session_file_place_windows_test.cpp
  LINKS quillmar_test_session_file)
quillmar_unit_test(
  session_file_faults
  SOURCES session_file_faults_windows_test.cpp
  LINKS quillmar_test_session_file quillmar_test_imports)
add_executable(quillmar_session_saver_dying session_saver_dying.cpp)
target_link_libraries(quillmar_session_saver_dying PRIVATE quillmar_house_rules quillmar_test_session_file
                                                           quillmar_test_imports)
target_compile_definitions(
  test_service_session_file_faults
  PRIVATE QUILLMAR_SESSION_SAVER="$<TARGET_FILE:quillmar_session_saver>"
          QUILLMAR_SESSION_SAVER_DYING="$<TARGET_FILE:quillmar_session_saver_dying>")
target_compile_definitions(
  test_service_session_dpapi PRIVATE QUILLMAR_SESSION_SAVER="$<TARGET_FILE:quillmar_session_saver>")
add_dependencies(test_service_session_file_faults quillmar_session_saver quillmar_session_saver_dying)
add_dependencies(test_service_session_dpapi quillmar_session_saver)
