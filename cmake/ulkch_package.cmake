# What `cpack` makes of the installed tree: a .zip for Windows; a .tar.gz and a Debian package for Linux.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(processor i686)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
else()
  set(processor x86_64)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE amd64)
endif()
string(TOLOWER ${CMAKE_SYSTEM_NAME} system)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
else()
  set(CPACK_GENERATOR TGZ DEB)
endif()

set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_FILE_NAME ulkch-${PROJECT_VERSION}-${system}-${processor})
set(CPACK_PACKAGE_CONTACT "The ulkch authors")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)

# dpkg-shlibdeps would take what a 64-bit machine builds 32-bit programs with for what they need, so the dependency is
# spelt out. ulkgrep needs this version of the C library, the library itself an older one.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6 (>= 2.34)")
if(ULKCH_OPENMP)
  string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS ", libgomp1 (>= 4.9)")
endif()
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Programs that are packaged against the library learn from this what to depend on, and ldconfig that it came.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
include(CPack)
