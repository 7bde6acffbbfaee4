# The library's functions that typical runs execute (tools/hot-functions.txt, written by
# tools/hot-functions.py) are laid out together, ahead of the rest of its code. A process maps
# code in windows of pages around each page it touches: with the code that runs spread through
# the library, a parse of a small model mapped most of it; laid out together, a few windows.
#
# Each function is compiled into a section of its own, and a linker script placed before the
# default one's text gathers the listed sections in their order. Where the compiler or the
# linker can't do this, the build goes on without it.
option(MODELBRIDGE_ORDER_FUNCTIONS "Lay out the functions that typical runs execute together" ON)

function(modelbridge_order_functions objects shared static)
  if(NOT MODELBRIDGE_ORDER_FUNCTIONS OR NOT CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    return()
  endif()
  set(list ${PROJECT_SOURCE_DIR}/tools/hot-functions.txt)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
  file(STRINGS ${list} names REGEX "^[^#]")
  set(script "SECTIONS\n{\n  .text.hot.modelbridge :\n  {\n")
  foreach(name IN LISTS names)
    string(APPEND script "    *(.text.${name})\n")
  endforeach()
  string(APPEND script "  }\n}\nINSERT BEFORE .text;\n")
  set(ld ${CMAKE_CURRENT_BINARY_DIR}/hot-functions.ld)
  # Written only when it changes, so that a new configuration relinks nothing by itself.
  file(CONFIGURE OUTPUT ${ld} CONTENT "${script}" @ONLY)

  include(CheckLinkerFlag)
  check_linker_flag(CXX "LINKER:-T,${ld}" MODELBRIDGE_LINKER_ORDERS_FUNCTIONS)
  if(NOT MODELBRIDGE_LINKER_ORDERS_FUNCTIONS)
    message(STATUS "The linker takes no script of sections: functions are laid out as compiled")
    return()
  endif()
  target_compile_options(${objects} PRIVATE -ffunction-sections)
  target_link_options(${shared} PRIVATE LINKER:-T,${ld})
  # Programs linked with the static library (the tests, the benchmarks) lay it out the same way.
  target_link_options(${static} INTERFACE LINKER:-T,${ld})
  set_property(TARGET ${shared} APPEND PROPERTY LINK_DEPENDS ${ld})
endfunction()
