# Compiler flags, as interface libraries:
#   kavrel_warnings  every target of ours
#   kavrel_product   what ends up in the DLL, and the engine wherever it is built

# -Wconversion without -Wsign-conversion: text and bytes mix signed and unsigned indexes harmlessly.
# -Wshadow not in tests: GoogleTest's macros declare names of their own around a test's lambdas.
add_library(kavrel_warnings INTERFACE)
target_compile_options(kavrel_warnings INTERFACE
  -Werror -Wall -Wextra -Wpedantic -Wshadow -Woverloaded-virtual -Wextra-semi
  -Wimplicit-fallthrough -Wundef
  # Designated initialisers name what differs; the members have defaults for the rest.
  -Wno-missing-field-initializers
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
  # COM interfaces have no destructors by design.
  $<$<NOT:$<PLATFORM_ID:Windows>>:$<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>>
  # The entry points and table-driven calls cast function pointers, as the platform intends.
  $<$<PLATFORM_ID:Windows>:-Wno-cast-function-type>)

add_library(kavrel_product INTERFACE)
target_link_libraries(kavrel_product INTERFACE kavrel_warnings)
target_compile_options(kavrel_product INTERFACE
  -Wshadow -Wconversion -Wno-sign-conversion -Wdouble-promotion
  -fno-exceptions -fno-rtti -fno-threadsafe-statics
  # The same digits on every processor, also on one with a fused multiply-add.
  -ffp-contract=off)

# Every line stands for itself, and the counts are atomic: the tests have threads.
set(coverage --coverage -O0 -fprofile-update=atomic)

if(WIN32)
  # Size before speed, and no probe of large stack frames: the device has neither room nor probe.
  set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-DNDEBUG")
  set(CMAKE_C_FLAGS_RELWITHDEBINFO "-DNDEBUG")
  set(forSize -g -Os -fno-asynchronous-unwind-tables -fno-unwind-tables
    -mno-stack-arg-probe -Wframe-larger-than=2048)
  target_compile_options(kavrel_product INTERFACE
    ${forSize} -ffunction-sections -fdata-sections -fno-use-cxa-atexit)
  if(KAVREL_COVERAGE)
    # Frames are larger than they will be.
    target_compile_options(kavrel_product INTERFACE
      ${coverage} -mstack-arg-probe -Wno-frame-larger-than)
  else()
    # Optimised as a whole, 6 % smaller, at the link: frames are known, and refused, there.
    target_compile_options(kavrel_product INTERFACE -flto)
    target_link_options(kavrel_product INTERFACE -flto -flto-partition=one ${forSize} -Werror)
  endif()
  target_compile_definitions(kavrel_product INTERFACE
    # Templates of the C++ library are instantiated in place; there is no C++ runtime library.
    _GLIBCXX_EXTERN_TEMPLATE=0)
  add_compile_definitions(UNICODE _UNICODE)
  if(KAVREL_BITS EQUAL 32)
    # SSE2 gives the same last digits as the 64-bit flavour; hosts may call with a stack aligned
    # to four bytes only.
    add_compile_options(-msse2 -mfpmath=sse -mstackrealign)
  endif()
  if(KAVREL_DEVICE)
    target_compile_definitions(kavrel_product INTERFACE UNDER_CE _WIN32_WCE=300)
    # With their guards asked for, local statics that are initialised at run time fail to link.
    target_compile_options(kavrel_product INTERFACE -fthreadsafe-statics)
  endif()
else()
  set(THREADS_PREFER_PTHREAD_FLAG ON)
  find_package(Threads REQUIRED)
  # Sanitized (Debug) builds: quick enough to run, with usable stack traces.
  set(CMAKE_CXX_FLAGS_DEBUG "-O1 -g -fno-omit-frame-pointer -D_GLIBCXX_ASSERTIONS")
  if(KAVREL_COVERAGE)
    add_compile_options(${coverage})
    add_link_options(--coverage)
  endif()
  if(KAVREL_SANITIZE)
    add_compile_options(-fsanitize=${KAVREL_SANITIZE} -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${KAVREL_SANITIZE})
  endif()
  if(KAVREL_SANITIZE MATCHES "address")
    # The fuzzers are built here, and see where an input leads by this.
    target_compile_options(kavrel_product INTERFACE -fsanitize=fuzzer-no-link)
    target_link_options(kavrel_product INTERFACE -fsanitize=fuzzer-no-link)
  endif()
endif()
