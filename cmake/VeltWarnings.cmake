# Warnings are errors for the project's own targets only, never for users who
# add the library with add_subdirectory.
function(velt_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
endfunction()
