# C programs that use the library through its C interface.

# Links `target`, a program written in C, with the library. Clang's C driver
# leaves out the C++ parts of the sanitizer runtimes, which a sanitized C++
# library needs, so a sanitized build links them explicitly.
function(tov_link_c_program target)
  target_link_libraries(${target} PRIVATE tov::tov)
  if(CMAKE_C_COMPILER_ID STREQUAL "Clang" AND CMAKE_C_FLAGS MATCHES "-fsanitize=")
    target_link_options(${target} PRIVATE -fsanitize-link-c++-runtime)
    target_link_libraries(${target} PRIVATE stdc++)
  endif()
endfunction()
