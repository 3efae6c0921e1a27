# Warnings are errors for the project's own targets only, never for users who
# add the library with add_subdirectory.
function(velt_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
  # GCC 12 at -O3 reports impossible memcpy overlaps inside std::string
  # concatenation (a known false positive of its -Wrestrict); keep the warning
  # on for every other compiler.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12
     AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
endfunction()
