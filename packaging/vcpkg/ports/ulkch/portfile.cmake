# Builds the sources that this port lies in. Both libraries are made, as they are targets of one package; the one that
# the triplet does not ask for is harmless.
set(VCPKG_POLICY_DLLS_IN_STATIC_LIBRARY enabled)
cmake_path(ABSOLUTE_PATH CMAKE_CURRENT_LIST_DIR NORMALIZE OUTPUT_VARIABLE port)
cmake_path(SET SOURCE_PATH NORMALIZE ${port}/../../../..)

vcpkg_cmake_configure(
  SOURCE_PATH ${SOURCE_PATH}
  OPTIONS -DULKCH_BUILD_EXAMPLES=OFF -DULKCH_WARNINGS_AS_ERRORS=OFF)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(CONFIG_PATH lib/cmake/ulkch)
vcpkg_fixup_pkgconfig()
file(REMOVE_RECURSE ${CURRENT_PACKAGES_DIR}/debug/include ${CURRENT_PACKAGES_DIR}/debug/share)
vcpkg_install_copyright(FILE_LIST ${SOURCE_PATH}/LICENSE)
