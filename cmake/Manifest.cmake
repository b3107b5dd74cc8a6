# kavrel_manifest(<output>)
#
# Writes the side-by-side assembly manifest, by which a host uses the DLL without its registration,
# from what registering is made of: the identities of the IDL and the registration scripts. The file is
# named for the assembly, KavrelCE.SideBySide: under the DLL's own name the platform would look for the
# manifest inside the DLL, and stop there.
function(kavrel_manifest output)
  set(generator "${CMAKE_SOURCE_DIR}/tools/generate_manifest.py")
  set(idl "${CMAKE_SOURCE_DIR}/src/frame/KavrelCE.idl")
  set(scripts "${CMAKE_SOURCE_DIR}/src/frame/scripts")
  file(GLOB sources CONFIGURE_DEPENDS "${scripts}/*.rgs")
  set(architecture $<IF:$<EQUAL:${KAVREL_BITS},64>,amd64,x86>)
  add_custom_command(
    OUTPUT "${output}"
    COMMAND ${Python3_EXECUTABLE} "${generator}" "${idl}" "${scripts}" ${PROJECT_VERSION}
      ${architecture} "${output}"
    DEPENDS "${generator}" "${CMAKE_SOURCE_DIR}/tools/generate_scripts.py"
      "${CMAKE_SOURCE_DIR}/tools/idl_reader.py" "${idl}" ${sources}
    COMMENT "Writing the side-by-side manifest"
    VERBATIM)
  add_custom_target(kavrel_manifest ALL DEPENDS "${output}")
endfunction()
