# The module carries libdeflate in itself; the tests' OpenSSL is a library that Qt can load as well.
set(VCPKG_TARGET_ARCHITECTURE x64)
set(VCPKG_CRT_LINKAGE dynamic)
if(PORT STREQUAL "libdeflate")
  set(VCPKG_LIBRARY_LINKAGE static)
else()
  set(VCPKG_LIBRARY_LINKAGE dynamic)
endif()
