# Tests of several build directories are run and reported together, so each bears the name of its own.
get_filename_component(ULKCH_LANE ${PROJECT_BINARY_DIR} NAME)
set_property(DIRECTORY ${PROJECT_SOURCE_DIR} PROPERTY LABELS ${ULKCH_LANE})

# ulkch_add_test(name command...): like add_test; a target's name as the command runs that program, on Windows builds
# through Wine.
function(ulkch_add_test name)
  add_test(NAME ${ULKCH_LANE}.${name} COMMAND ${ARGN})
  if(ULKCH_SANITIZE)
    # Freed blocks are kept from reuse for a while; more of them than this do not fit a 32-bit process beside the rest.
    set_tests_properties(${ULKCH_LANE}.${name} PROPERTIES ENVIRONMENT ASAN_OPTIONS=quarantine_size_mb=32)
  endif()
endfunction()
