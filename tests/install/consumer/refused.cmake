# A package of another major version, an older one, or one for another width of pointers is no substitute.
function(must_refuse version pointer_size)
  set(CMAKE_SIZEOF_VOID_P ${pointer_size})
  find_package(ulkch ${version} QUIET)
  if(ulkch_FOUND OR NOT ulkch_CONSIDERED_VERSIONS MATCHES "^6\\.1")
    message(FATAL_ERROR "ulkch ${version} for pointers of ${pointer_size} bytes: considered "
                        "'${ulkch_CONSIDERED_VERSIONS}', found '${ulkch_FOUND}'")
  endif()
endfunction()

math(EXPR other_pointer_size "12 - ${CMAKE_SIZEOF_VOID_P}")
must_refuse(5 ${CMAKE_SIZEOF_VOID_P})
must_refuse(6.2 ${CMAKE_SIZEOF_VOID_P})
must_refuse(7 ${CMAKE_SIZEOF_VOID_P})
must_refuse(6.1 ${other_pointer_size})
