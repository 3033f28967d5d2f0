# Warnings are errors in every target of the project, under GCC and Clang alike.
function(orv_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Werror -Wno-error=deprecated-declarations)
  # File texts in assertion and log lines are relative to the source root ("utils/Mutex.cpp").
  target_compile_options(${target} PRIVATE
    -fmacro-prefix-map=${CMAKE_SOURCE_DIR}/=
    -fmacro-prefix-map=${ORV_BUILD_INCLUDE_DIR}/orv/=)
endfunction()
