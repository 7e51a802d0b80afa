# What `cmake --install` puts where: headers, libraries, ulkgrep, documents, examples, and the files by which CMake and
# pkg-config find them. Everything there is relative, so the installed tree may be moved.
#
# On Linux the same is laid out once more for Debian, in components that are installed only by their names: libraries in
# the directory of their architecture, documents in that of their package.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

write_basic_package_version_file(ulkchConfigVersion.cmake COMPATIBILITY SameMajorVersion)

# ulkch_install_documents(directory ARGN...): the documents, with links that lead somewhere in the installed tree. Where
# they lead to what is not installed, the words stay.
function(ulkch_install_documents directory)
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_INCLUDEDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}/${directory}
             OUTPUT_VARIABLE include)
  set(pages README.md CHANGELOG.md SECURITY.md docs/guide.md docs/internals.md docs/performance.md docs/syntax.md)
  foreach(page ${pages})
    cmake_path(GET page PARENT_PATH parent)
    file(READ ${PROJECT_SOURCE_DIR}/${page} text)
    string(REPLACE "](include/" "](${include}/" text "${text}")
    string(REPLACE "](../include/" "](../${include}/" text "${text}")
    string(REPLACE "](ulkcore/" "](${include}/" text "${text}")
    string(REPLACE "](../ulkcore/" "](../${include}/" text "${text}")
    string(REGEX REPLACE "\\[([^]\n]*)\\]\\((CONTRIBUTING.md|(\\.\\./)?(fuzz|tests|tools|src|packaging|ulkgrep/ulkgrep.1)[^)]*)\\)" "\\1" text
                         "${text}")
    if(directory MATCHES libulkch-dev)
      string(REPLACE "](LICENSE)" "](copyright)" text "${text}") # which Debian has in its place
    endif()
    set(copy ${PROJECT_BINARY_DIR}/installed/${directory}/${page})
    file(WRITE ${copy} "${text}")
    install(FILES ${copy} DESTINATION ${directory}/${parent} ${ARGN})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${page})
  endforeach()
  install(DIRECTORY docs/plots DESTINATION ${directory}/docs ${ARGN} FILES_MATCHING PATTERN *.svg)
  foreach(folder examples ulkgrep)
    install(DIRECTORY ${folder} DESTINATION ${directory} ${ARGN} FILES_MATCHING PATTERN *.c PATTERN *.cpp PATTERN *.h)
  endforeach()
endfunction()

# ulkch_install_development(name libdir docdir ARGN...): all but the shared library and ulkgrep. `name` tells the layouts
# apart.
function(ulkch_install_development name libdir docdir)
  # Two export sets, because the static libraries serve only compilers like the one that made them.
  install(
    TARGETS ulkch_static ulkcore
    EXPORT ${name}StaticTargets
    ARCHIVE DESTINATION ${libdir} ${ARGN}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  set(cmake_dir ${libdir}/cmake/ulkch)
  foreach(kind Targets StaticTargets)
    install(
      EXPORT ${name}${kind}
      FILE ulkch${kind}.cmake
      NAMESPACE ulkch::
      DESTINATION ${cmake_dir} ${ARGN})
  endforeach()
  if(WIN32 AND LLVM_DLLTOOL_PROGRAM)
    install(FILES ${PROJECT_BINARY_DIR}/src/ulkch.lib DESTINATION ${libdir} ${ARGN})
  endif()
  install(FILES include/ulkch.h include/ulkch.hpp ulkcore/ulkcore.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} ${ARGN})
  install(DIRECTORY include/ulkch DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} ${ARGN})

  set(made ${PROJECT_BINARY_DIR}/installed/${libdir})
  set(ULKCH_CONFIG_LIBDIR ${libdir})
  configure_package_config_file(
    cmake/ulkchConfig.cmake.in ${made}/ulkchConfig.cmake
    INSTALL_DESTINATION ${cmake_dir}
    PATH_VARS ULKCH_CONFIG_LIBDIR
    NO_SET_AND_CHECK_MACRO)
  install(FILES ${made}/ulkchConfig.cmake ${PROJECT_BINARY_DIR}/ulkchConfigVersion.cmake DESTINATION ${cmake_dir} ${ARGN})

  set(absolute_libdir ${libdir})
  cmake_path(ABSOLUTE_PATH absolute_libdir BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX})
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${absolute_libdir}/pkgconfig
             OUTPUT_VARIABLE ULKCH_PC_PREFIX)
  set(ULKCH_PC_LIBDIR "\${prefix}")
  set(ULKCH_PC_INCLUDEDIR "\${prefix}")
  cmake_path(APPEND ULKCH_PC_LIBDIR ${libdir}) # An absolute directory stands for itself.
  cmake_path(APPEND ULKCH_PC_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR})
  configure_file(cmake/ulkch.pc.in ${made}/ulkch.pc @ONLY)
  install(FILES ${made}/ulkch.pc DESTINATION ${libdir}/pkgconfig ${ARGN})

  ulkch_install_documents(${docdir} ${ARGN})
endfunction()

install(
  TARGETS ulkch
  EXPORT ulkchTargets
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
ulkch_install_development(ulkch ${CMAKE_INSTALL_LIBDIR} ${CMAKE_INSTALL_DOCDIR})
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
if(TARGET ulkgrep)
  if(NOT WIN32)
    # The program runs from wherever the tree was unpacked.
    file(RELATIVE_PATH libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(ulkgrep PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
  endif()
  install(TARGETS ulkgrep)
  install(FILES ulkgrep/ulkgrep.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

if(NOT WIN32)
  set(libdir lib/${ULKCH_DEBIAN_TRIPLET})
  install(
    TARGETS ulkch
    EXPORT ulkchDebianTargets
    LIBRARY DESTINATION ${libdir}
            COMPONENT libulkch6 EXCLUDE_FROM_ALL
            NAMELINK_COMPONENT libulkch-dev
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  ulkch_install_development(ulkchDebian ${libdir} share/doc/libulkch-dev COMPONENT libulkch-dev EXCLUDE_FROM_ALL)
  if(TARGET ulkgrep)
    set(component COMPONENT ulkgrep EXCLUDE_FROM_ALL)
    install(PROGRAMS $<TARGET_FILE:ulkgrep> DESTINATION bin ${component})
    install(CODE [[file(RPATH_REMOVE FILE "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/bin/ulkgrep")]] ${component})
    install(FILES ulkgrep/ulkgrep.1 DESTINATION share/man/man1 ${component})
  endif()
endif()
