# What `cpack` makes of the installed tree: a .zip for Windows; a .tar.gz and Debian packages for Linux.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(processor i686)
else()
  set(processor x86_64)
endif()
string(TOLOWER ${CMAKE_SYSTEM_NAME} system)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
else()
  set(CPACK_GENERATOR TGZ)
endif()

set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_FILE_NAME ulkch-${PROJECT_VERSION}-${system}-${processor})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)

# CPack's own generator for Debian knows no packages of several architectures side by side.
find_program(DPKG_DEB_PROGRAM dpkg-deb)
if(NOT WIN32 AND DPKG_DEB_PROGRAM)
  set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_BINARY_DIR}/ulkch_debian.cmake)
  file(
    CONFIGURE
    OUTPUT ${CPACK_POST_BUILD_SCRIPTS}
    CONTENT
      [[execute_process(
  COMMAND sh @PROJECT_SOURCE_DIR@/packaging/debian/make_packages.sh @CMAKE_COMMAND@ @PROJECT_BINARY_DIR@
          @ULKCH_DEBIAN_TRIPLET@ @PROJECT_VERSION@ @ULKCH_OPENMP@ ${CPACK_PACKAGE_DIRECTORY}
  COMMAND_ERROR_IS_FATAL ANY)
]]
    @ONLY)
endif()
include(CPack)
