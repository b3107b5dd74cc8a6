# kavrel_registration_scripts(<outdir>)
#
# Adds the command that writes src/frame/scripts/*.rgs into <outdir> with the identities of the IDL
# filled in. KAVREL_REGISTRATION_SCRIPTS names the files written; the resource script depends on
# them and has <outdir> in its include path.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

function(kavrel_registration_scripts outdir)
  set(generator "${CMAKE_SOURCE_DIR}/tools/generate_scripts.py")
  set(idl "${CMAKE_SOURCE_DIR}/src/frame/KavrelCE.idl")
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/src/frame/scripts/*.rgs")

  set(outputs "")
  foreach(source IN LISTS sources)
    cmake_path(GET source FILENAME name)
    list(APPEND outputs "${outdir}/${name}")
  endforeach()

  add_custom_command(
    OUTPUT ${outputs}
    COMMAND ${Python3_EXECUTABLE} "${generator}" "${idl}" "${outdir}" ${sources}
    DEPENDS "${generator}" "${idl}" ${sources}
    COMMENT "Filling identities into the registration scripts"
    VERBATIM)
  set(KAVREL_REGISTRATION_SCRIPTS ${outputs} PARENT_SCOPE)
endfunction()
