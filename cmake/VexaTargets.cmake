# Targets made from whole folders: a new source file needs no edit here, and a folder that is
# still empty makes no target. Link such targets through vexa_link.

# vexa_link(<target> <scope> <libraries...>): links those of our libraries that exist.
function(vexa_link target scope)
  foreach(library IN LISTS ARGN)
    target_link_libraries(${target} ${scope} $<TARGET_NAME_IF_EXISTS:${library}>)
  endforeach()
endfunction()

# vexa_add_library(<target> <sources...>): a static library, unless the list is empty.
function(vexa_add_library target)
  if(NOT ARGN)
    message(STATUS "${target}: no sources yet, left out")
    return()
  endif()
  add_library(${target} STATIC ${ARGN})
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${target} PUBLIC vexa_build_options)
endfunction()

# vexa_optimize_program(<target>): link-time optimisation and a quick start. The C++ library is
# linked in, since loading it costs more than all other start-up work together.
function(vexa_optimize_program target)
  if(VEXA_LTO_ACTIVE)
    target_link_options(${target} PRIVATE -flto=auto -O2)
  endif()
  if(NOT VEXA_SANITIZER_FLAGS)
    target_link_options(${target} PRIVATE
      -static-libstdc++ -static-libgcc -Wl,--gc-sections -Wl,--as-needed)
  endif()
endfunction()

# vexa_link_plainly(<target>): skips link-time optimisation, for tests.
function(vexa_link_plainly target)
  if(VEXA_LTO_ACTIVE)
    target_link_options(${target} PRIVATE -fno-lto)
  endif()
endfunction()
