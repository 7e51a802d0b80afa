# What `cmake --install` puts where: headers, libraries, ulkgrep, documents, and the files by which CMake and pkg-config
# find them. Everything there is relative, so the installed tree may be moved.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(ULKCH_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ulkch)

# Two export sets, because the static libraries serve only compilers like the one that made them.
install(
  TARGETS ulkch
  EXPORT ulkchTargets
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(
  TARGETS ulkch_static ulkcore
  EXPORT ulkchStaticTargets
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
foreach(export ulkchTargets ulkchStaticTargets)
  install(
    EXPORT ${export}
    NAMESPACE ulkch::
    DESTINATION ${ULKCH_CMAKE_DIR})
endforeach()
if(WIN32 AND LLVM_DLLTOOL_PROGRAM)
  install(FILES ${PROJECT_BINARY_DIR}/src/ulkch.lib DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(FILES include/ulkch.h include/ulkch.hpp ulkcore/ulkcore.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/ulkch DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

configure_package_config_file(
  cmake/ulkchConfig.cmake.in ulkchConfig.cmake
  INSTALL_DESTINATION ${ULKCH_CMAKE_DIR}
  PATH_VARS CMAKE_INSTALL_LIBDIR
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(ulkchConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ulkchConfig.cmake ${PROJECT_BINARY_DIR}/ulkchConfigVersion.cmake
        DESTINATION ${ULKCH_CMAKE_DIR})

cmake_path(
  RELATIVE_PATH CMAKE_INSTALL_PREFIX
  BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
  OUTPUT_VARIABLE ULKCH_PC_PREFIX)
foreach(name LIBDIR INCLUDEDIR)
  set(ULKCH_PC_${name} "\${prefix}")
  cmake_path(APPEND ULKCH_PC_${name} ${CMAKE_INSTALL_${name}}) # An absolute directory stands for itself.
endforeach()
configure_file(cmake/ulkch.pc.in ulkch.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ulkch.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(TARGET ulkgrep)
  if(NOT WIN32)
    # The program runs from wherever the tree was unpacked.
    file(RELATIVE_PATH libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(ulkgrep PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
  endif()
  install(TARGETS ulkgrep)
endif()

install(FILES LICENSE README.md CHANGELOG.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(
  DIRECTORY docs
  DESTINATION ${CMAKE_INSTALL_DOCDIR}
  FILES_MATCHING
  PATTERN *.md
  PATTERN *.svg)
