# What the tests' folders call. Everything is registered with CTest, with a time limit.
#
#   kavrel_unit_test(<room> <source>...)          host: GoogleTest program unit_<room>
#   kavrel_fuzz_test(<name> <source>... [CORPUS <folder>] [DICTIONARY <file>])
#                                                 host-asan: libFuzzer program fuzz_<name>
#   kavrel_automation_test(<name> <source>... [REGISTRY] [ALONE] [WINDOWLESS] [UNREGISTERED] [SERIAL]
#                          [LIBS <library>...])   Windows: GoogleTest program run under Wine
#   kavrel_script_test(<file> [HOST cscript|scripthost] [ARGS <argument>...] [REGISTRY]
#                      [RECEIVER <file>] [LAST <line>] [EXPECTED <file>])
#                                                 Windows: a script run under Wine
#   kavrel_native_library(<name> <source>...)     Windows: a Linux library for Wine's own side
#   kavrel_benchmark(<name> <source>... [LIBS <library>...])   host, option KAVREL_BENCH
#
# Functions of the other kind of flavour do nothing, so that a folder needs no conditions.
#
# REGISTRY: changes the prefix's registry, so no two such tests run at once.
# ALONE: changes what every other test relies on (the registration), so nothing runs beside it.
# WINDOWLESS: runs in a second prefix in which no window can be created.
# UNREGISTERED: runs in a third prefix in which the DLL was never registered.
# SERIAL: uses serial ports (tests/automation/support/test_port.h), so no two such tests run at once.
# RECEIVER: a receiver on a serial port says that text (a path from the project's root) over and
#   over, one fix each 20 ms; the port's number stands for {port} in ARGS.
# LAST: the line that the script ends with, instead of SCRIPT OK.
# EXPECTED: a file with all that the script prints.
#
# Test programs find the folder of test data as the macro KAVREL_TEST_DATA, those under Wine the
# built DLL as KAVREL_DLL and the flavour's build folder as KAVREL_BUILD.
if(WIN32)
  include(TestsWine)
else()
  include(TestsHost)
endif()
