# Warning flags shared by every target of the project.
function(tov_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  if(TOV_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
