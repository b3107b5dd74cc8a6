# kavrel_import_libraries()
#
# Makes import libraries that offer exactly the names in src/platform/win32/imports, so that a name
# the platform does not have fails at link time. Target `kavrel_imports` links them.
function(kavrel_import_libraries)
  set(folder "${CMAKE_SOURCE_DIR}/src/platform/win32/imports")
  set(out "${CMAKE_BINARY_DIR}/imports")
  set(device coredll ole32 oleaut32)
  set(desktop kernel32 user32 advapi32 msvcrt ole32 oleaut32)
  if(KAVREL_DEVICE)
    set(rules device)
  else()
    set(rules desktop)
  endif()

  list(TRANSFORM ${rules} REPLACE "(.+)" "${out}/lib\\1.a" OUTPUT_VARIABLE libraries)
  file(GLOB definitions CONFIGURE_DEPENDS "${folder}/*.def")
  set(tool "${CMAKE_SOURCE_DIR}/tools/import_libraries.py")
  add_custom_command(
    OUTPUT ${libraries}
    COMMAND "${tool}" --rules ${rules} --bits ${KAVREL_BITS} --dlltool ${CMAKE_DLLTOOL} "${folder}"
      "${out}"
    DEPENDS ${definitions} "${tool}" "${CMAKE_SOURCE_DIR}/tools/platform_names.py"
    COMMENT "Making import libraries"
    VERBATIM)
  add_custom_target(kavrel_import_files DEPENDS ${libraries})

  add_library(kavrel_imports INTERFACE)
  add_dependencies(kavrel_imports kavrel_import_files)
  target_link_libraries(kavrel_imports INTERFACE ${libraries})
endfunction()
