# kavrel_type_library(<file.idl>)
#
# Compiles the interface definition into <build>/generated: the C++ header KavrelCE_h.h, the
# identities KavrelCE_i.c, and the type library KavrelCE.tlb of this flavour's width. Target
# `kavrel_idl` carries the include folder and the identities; KAVREL_TYPE_LIBRARY names the .tlb.
function(kavrel_type_library idl)
  set(out "${CMAKE_BINARY_DIR}/generated")
  file(MAKE_DIRECTORY "${out}")

  set(wineFolder /usr/lib/x86_64-linux-gnu/wine/x86_64-windows)
  find_program(WIDL widl)
  find_program(MINGW_WIDL ${KAVREL_TRIPLET}-widl)
  if(WIDL)
    set(command ${WIDL} -L ${wineFolder})
  elseif(MINGW_WIDL)
    # This one needs to be told where the standard type library is.
    set(command ${MINGW_WIDL} -I /usr/include/wine/wine/windows -L ${wineFolder})
  else()
    message(FATAL_ERROR "No widl found: run tools/setup")
  endif()
  list(APPEND command --win${KAVREL_BITS})

  add_custom_command(
    OUTPUT "${out}/KavrelCE_h.h" "${out}/KavrelCE_i.c" "${out}/KavrelCE.tlb"
    COMMAND ${command} -h -H "${out}/KavrelCE_h.h" "${idl}"
    COMMAND ${command} -u -U "${out}/KavrelCE_i.c" "${idl}"
    COMMAND ${command} -t -o "${out}/KavrelCE.tlb" "${idl}"
    MAIN_DEPENDENCY "${idl}"
    WORKING_DIRECTORY "${out}"
    COMMENT "Compiling the interface definition"
    VERBATIM)

  add_library(kavrel_idl STATIC "${out}/KavrelCE_i.c" "${out}/KavrelCE_h.h" "${out}/KavrelCE.tlb")
  target_include_directories(kavrel_idl SYSTEM PUBLIC "${out}")
  target_compile_options(kavrel_idl PRIVATE -fdata-sections)
  set(KAVREL_TYPE_LIBRARY "${out}/KavrelCE.tlb" PARENT_SCOPE)
endfunction()
