# Gives the internal tests PCRE2, which the results of searches are compared with. It is Debian's libpcre2-dev, for the
# host's own architecture; without it that test is skipped and says why.
find_path(PCRE2_INCLUDE_DIR pcre2.h)
find_library(PCRE2_LIBRARY pcre2-8)
if(PCRE2_INCLUDE_DIR AND PCRE2_LIBRARY)
  target_compile_definitions(ulkch_internal_tests PRIVATE ULKCH_HAVE_PCRE2)
  target_include_directories(ulkch_internal_tests SYSTEM PRIVATE ${PCRE2_INCLUDE_DIR})
  target_link_libraries(ulkch_internal_tests PRIVATE ${PCRE2_LIBRARY})
else()
  message(WARNING "libpcre2-dev is not installed: searches will not be compared with PCRE2")
endif()
