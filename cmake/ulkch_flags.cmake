# Flags that every target of the project is built with, as one interface target.

add_library(ulkch_flags INTERFACE)
target_compile_options(ulkch_flags INTERFACE -msse3 -mfpmath=sse -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(ULKCH_WARNINGS_AS_ERRORS)
  target_compile_options(ulkch_flags INTERFACE -Werror)
endif()

# The library itself: no exceptions, no run-time type information, no start-up work, nothing visible by accident.
add_library(ulkch_library_flags INTERFACE)
target_link_libraries(ulkch_library_flags INTERFACE ulkch_flags)
target_compile_options(
  ulkch_library_flags
  INTERFACE -fvisibility=hidden
            $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions>
            $<$<COMPILE_LANGUAGE:CXX>:-fno-rtti>
            $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden>
            $<$<COMPILE_LANGUAGE:CXX>:-fno-threadsafe-statics>)
