# How the targets of this project are made: one static library per folder of src, one test program per
# folder of tests, and the flags that all of them share.

include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported()

find_package(PkgConfig REQUIRED)

# Some libraries ask for -pthread; it is set for all, since targets that share precompiled headers need the same flags.
add_compile_options(-pthread -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual
                    -Wimplicit-fallthrough)

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 sees overlapping and endless copies in plain concatenations of std::string (GCC bug 105651).
  add_compile_options(-Wno-restrict -Wno-stringop-overflow -Wno-array-bounds)
  if(CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 13)
    # They report the unset value of an empty std::optional as used (GCC bug 80635).
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
endif()

if(SELA_SANITIZE)
  add_compile_options(-fsanitize=${SELA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${SELA_SANITIZE} -fno-sanitize-recover=all)
elseif(CMAKE_BUILD_TYPE STREQUAL "Release")
  # Indirect branches may only target the beginnings of functions.
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
    set(branch_protection -mbranch-protection=standard)
  elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|amd64")
    set(branch_protection -fcf-protection)
  endif()
  check_cxx_compiler_flag(-ftrivial-auto-var-init=zero SELA_CAN_ZERO_VARIABLES)
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -D_GLIBCXX_ASSERTIONS -fstack-protector-strong
                      -fstack-clash-protection ${branch_protection}
                      $<$<BOOL:${SELA_CAN_ZERO_VARIABLES}>:-ftrivial-auto-var-init=zero>)
  add_link_options(-Wl,-z,relro,-z,now)
endif()

# The standard library's headers take half of the time of a build; they are compiled once for src and, with
# GoogleTest's, once for the tests. Each file still names what it uses: SELA_PRECOMPILE=OFF shows one that does not.
option(SELA_PRECOMPILE "Precompile the headers that most files include" ON)
set(SELA_PRECOMPILED_HEADERS
  <algorithm> <array> <chrono> <cmath> <cstdint> <filesystem> <functional> <map> <memory> <mutex> <optional> <span>
  <string> <string_view> <utility> <variant> <vector>)

# sela_precompiled_headers(NAME HEADERS header ... [LIBRARIES lib ...])
# A library without code that holds the precompiled headers.
function(sela_precompiled_headers name)
  cmake_parse_arguments(ARG "" "" "HEADERS;LIBRARIES" ${ARGN})
  if(SELA_PRECOMPILE)
    file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp CONTENT "" @ONLY)
    add_library(${name} OBJECT ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
    target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES})
    target_precompile_headers(${name} PRIVATE ${ARG_HEADERS})
  endif()
endfunction()

# sela_use_precompiled_headers(TARGET NAME)
function(sela_use_precompiled_headers target name)
  if(SELA_PRECOMPILE)
    target_precompile_headers(${target} REUSE_FROM ${name})
  endif()
endfunction()

# sela_library(NAME SOURCES a.cpp ... [PUBLIC lib ...] [PRIVATE lib ...])
# A static library of the folder that calls it. Headers are included as "folder/Name.h" from src.
function(sela_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
  sela_use_precompiled_headers(${name} sela_precompiled)
endfunction()

# sela_program(NAME SOURCES main.cpp ... LIBRARIES lib ...)
# A program in build/<preset>/bin.
function(sela_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES})
endfunction()

# sela_test(NAME SOURCES a_test.cpp ... LIBRARIES lib ... [DEPENDS target ...])
# A GoogleTest program that CTest runs as one test; DEPENDS names programs that it starts.
function(sela_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} sela_test_support GTest::gmock GTest::gtest)
  sela_use_precompiled_headers(${name} sela_test_precompiled)
  target_compile_definitions(${name} PRIVATE SELA_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
                                             SELA_BINARY_DIR="${CMAKE_BINARY_DIR}")
  if(ARG_DEPENDS)
    add_dependencies(${name} ${ARG_DEPENDS})
  endif()
  add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
  if(IS_DIRECTORY /dev/shm)
    # Nothing here must survive a power cut, so no test needs to wait for the disk.
    set_tests_properties(${name} PROPERTIES ENVIRONMENT TMPDIR=/dev/shm)
  endif()
endfunction()
