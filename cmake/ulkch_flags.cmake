# Flags that every target of the project is built with, as interface targets.

# SSE3 is the contract with the processor, so 64-bit and 32-bit builds compute alike and run on the same machines.
# Nothing is visible by accident; the tests' types, some of which hold the library's, are as hidden as those.
add_library(ulkch_flags INTERFACE)
target_compile_options(ulkch_flags INTERFACE -msse3 -mfpmath=sse -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
target_compile_options(ulkch_flags INTERFACE -fvisibility=hidden)
if(ULKCH_WARNINGS_AS_ERRORS)
  target_compile_options(ulkch_flags INTERFACE -Werror)
endif()
if(WIN32)
  # A program of ours needs no compiler runtime installed: of the DLLs, only the system's and ulkch's own.
  target_link_options(ulkch_flags INTERFACE -static)
endif()

# The library itself: no exceptions, no run-time type information, no start-up work.
add_library(ulkch_library_flags INTERFACE)
target_link_libraries(ulkch_library_flags INTERFACE ulkch_flags)
target_compile_options(
  ulkch_library_flags
  INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions>
            $<$<COMPILE_LANGUAGE:CXX>:-fno-rtti>
            $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden>
            $<$<COMPILE_LANGUAGE:CXX>:-fno-threadsafe-statics>)

# The compiler's own OpenMP: its driver finds the run-time library that belongs to the target. A program that links the
# static library may have another compiler, with an OpenMP of its own: it gets the name of the library.
set(ULKCH_OPENMP_FLAGS)
set(ULKCH_OPENMP_LIBRARIES)
if(ULKCH_OPENMP)
  set(ULKCH_OPENMP_FLAGS -fopenmp)
  set(ULKCH_OPENMP_LIBRARIES -fopenmp)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    set(ULKCH_OPENMP_LIBRARIES "-lgomp -lpthread")
  endif()
endif()
target_compile_options(ulkch_library_flags INTERFACE ${ULKCH_OPENMP_FLAGS})
if(WIN32)
  # The exports realign the stack. By default the compiler would have every inner function do it again.
  target_compile_options(ulkch_library_flags INTERFACE $<$<EQUAL:${CMAKE_SIZEOF_VOID_P},4>:-mno-stackrealign>)
endif()

# Sanitizers watch everything in the process, the test framework included.
if(ULKCH_SANITIZE)
  add_compile_options(-fsanitize=${ULKCH_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ULKCH_SANITIZE})
  # gcc marks the ended scopes of inlined functions on the stack also where the function around them is exempt, and then
  # never clears the marks: a later function gets blamed for its own variables.
  add_compile_options($<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fno-sanitize-address-use-after-scope>)
endif()
