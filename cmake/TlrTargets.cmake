# Helpers that give every target of the project the same warnings and layout.

set(TLR_WARNINGS -Wall -Wextra -Werror)

# Hardening, the flags that Debian builds its packages with (dpkg-buildflags with
# hardening=+all), on every target of ours: all of them are defined after this point. A stack
# protector, checks of format strings, a relocation table that is read-only after start-up
# with every symbol bound at load, and position-independent programs. The checked libc calls
# of _FORTIFY_SOURCE need optimisation and clash with AddressSanitizer's own checks, so a
# Debug build, the sanitizer builds and the fuzz build go without them.
# tests/tools/HardeningTest.cpp reads the built files and fails when one of these is missing.
include(CheckPIESupported)
check_pie_supported(LANGUAGES C CXX)
add_compile_options(-fstack-protector-strong -Wformat -Werror=format-security)
add_link_options(-Wl,-z,relro -Wl,-z,now)
string(TOUPPER "${CMAKE_BUILD_TYPE}" tlr_build_type)
if(tlr_build_type STREQUAL "DEBUG" OR TLR_SANITIZE OR TLR_FUZZ)
  set(TLR_FORTIFY OFF)
else()
  set(TLR_FORTIFY ON)
  # Replaces any other level that the compiler or the environment's flags set.
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
endif()

if(TLR_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -g)
  add_link_options(-fsanitize=thread)
elseif(TLR_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=address,undefined)
endif()

# libFuzzer's coverage everywhere, AddressSanitizer and UndefinedBehaviorSanitizer; the fuzz
# targets add libFuzzer itself.
if(TLR_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=address,undefined)
endif()

# tlr_library(<subsystem> SOURCES ... [DEPS ...])
# Makes the static library tlr_<subsystem> with src/ on its include path.
function(tlr_library sub)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  add_library(tlr_${sub} STATIC ${ARG_SOURCES})
  target_include_directories(tlr_${sub} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_compile_options(tlr_${sub} PRIVATE ${TLR_WARNINGS})
  target_link_libraries(tlr_${sub} PUBLIC ${ARG_DEPS})
endfunction()

# tlr_test(<name> SOURCES ... [LIBS ...] [PREFIX <prefix>])
# One GoogleTest binary; its cases are registered with ctest one by one, their names
# preceded by PREFIX if given (so that "ctest -R <prefix>" selects them).
# With SANDBOX, the binary runs inside build/sandbox with these options (may be empty:
# give the keyword SANDBOX_DEFAULT then), so that its tests may change the host's paths.
# With USES_SANDBOX, the binary runs on the host and starts sandboxes itself.
# Either way it runs through build/sandbox-test: its list of tests is read without a
# sandbox, and where the machine refuses namespaces its tests are reported as skipped.
function(tlr_test name)
  cmake_parse_arguments(ARG "SANDBOX_DEFAULT;USES_SANDBOX" "PREFIX" "SOURCES;LIBS;SANDBOX" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
  target_compile_options(${name} PRIVATE ${TLR_WARNINGS})
  # Tests find the built programs and the samples through these two paths.
  target_compile_definitions(${name} PRIVATE TLR_BUILD_DIR="${CMAKE_BINARY_DIR}"
                                             TLR_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main Threads::Threads)
  if(ARG_SANDBOX OR ARG_SANDBOX_DEFAULT)
    set_target_properties(${name} PROPERTIES
      CROSSCOMPILING_EMULATOR "${CMAKE_BINARY_DIR}/sandbox-test;${ARG_SANDBOX};--")
  elseif(ARG_USES_SANDBOX)
    set_target_properties(${name} PROPERTIES
      CROSSCOMPILING_EMULATOR "${CMAKE_BINARY_DIR}/sandbox-test;--outside;--")
  endif()
  if(ARG_SANDBOX OR ARG_SANDBOX_DEFAULT OR ARG_USES_SANDBOX)
    add_dependencies(${name} tlrcd-sim)
  endif()
  gtest_discover_tests(${name} WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} DISCOVERY_TIMEOUT 60
                       TEST_PREFIX "${ARG_PREFIX}")
endfunction()
