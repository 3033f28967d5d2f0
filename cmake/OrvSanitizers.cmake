# ORV_SANITIZE=address builds with AddressSanitizer and UndefinedBehaviorSanitizer; thread with
# ThreadSanitizer. Everything in the build gets the same flags, dependencies' headers included.
if(ORV_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(ORV_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(NOT ORV_SANITIZE STREQUAL "")
  message(FATAL_ERROR "ORV_SANITIZE must be address, thread or empty, not '${ORV_SANITIZE}'")
endif()

# Fuzzing instruments the whole build for coverage; only the fuzz targets link the engine itself.
if(ORV_BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "ORV_BUILD_FUZZERS needs Clang")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
