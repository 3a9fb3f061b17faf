# The session file under a cipher whose key is in a keyring, on a file system with modes.
quillmar_unit_test(session_cipher SOURCES session_cipher_test.cpp LINKS quillmar_token_protection)
quillmar_unit_test(session_file_place SOURCES session_file_place_test.cpp LINKS quillmar_test_session_file)
quillmar_unit_test(
  session_file_faults
  SOURCES session_file_faults_test.cpp
  LINKS quillmar_test_session_file quillmar_test_processes)
target_compile_definitions(
  test_service_session_file_faults PRIVATE QUILLMAR_SESSION_SAVER="$<TARGET_FILE:quillmar_session_saver>")
add_dependencies(test_service_session_file_faults quillmar_session_saver)
quillmar_unit_test(session_keyring SOURCES session_keyring_test.cpp LINKS quillmar_service quillmar_test_keyring)
quillmar_unit_test(keyring_faults SOURCES keyring_faults_test.cpp LINKS quillmar_service quillmar_test_keyring)
# What GLib finds wrong with a call of ours is an error.
set_property(TEST unit.service.session_keyring unit.service.keyring_faults APPEND PROPERTY ENVIRONMENT
                                                                                           G_DEBUG=fatal-criticals)
