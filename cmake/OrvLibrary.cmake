# How the project's shared libraries are compiled and linked beyond the defaults.

# A library's calls to its own functions go straight to them and may be inlined, across its
# sources too: no host replaces a function of ours with one of its own.
function(orv_bind_own_calls target)
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU,Clang>:-fno-semantic-interposition>)
  target_link_options(${target} PRIVATE LINKER:-Bsymbolic-functions)
endfunction()
