# Warnings for the project's own targets; set per target, never globally,
# so that consumers of the installed package are not affected.
function(jev3d_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
endfunction()
