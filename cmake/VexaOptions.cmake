# Language level, warnings, code generation and sanitizers, for every target of this tree.

option(VEXA_TESTS "Build the tests" ON)
option(VEXA_BENCH "Build the micro-benchmarks when Google Benchmark is installed" OFF)
option(VEXA_FUZZ "Build the fuzz targets (clang only)" OFF)
option(VEXA_WARNINGS_AS_ERRORS "Stop the build at the first warning" ON)
option(VEXA_LTO "Optimise vexa across source files in release builds" ON)
option(VEXA_SANITIZE "Check addresses and undefined behaviour at run time" OFF)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

# One interface target carries all flags; vexa_add_library and its relatives link it.
add_library(vexa_build_options INTERFACE)

target_compile_options(vexa_build_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  # g++ leaves signedness out of -Wconversion, clang puts it in; the same rule for both.
  -Wno-sign-conversion)
if(VEXA_WARNINGS_AS_ERRORS)
  target_compile_options(vexa_build_options INTERFACE -Werror)
endif()

# A product and a sum stay two roundings, so that every machine prints the same digits.
target_compile_options(vexa_build_options INTERFACE -ffp-contract=off)

# Calls into shared libraries go straight through the address table.
target_compile_options(vexa_build_options INTERFACE -fno-plt)

# Container indexes are checked wherever speed is not the point.
target_compile_definitions(vexa_build_options INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)

set(VEXA_SANITIZER_FLAGS "")
if(VEXA_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "The fuzz targets need clang++: use the preset 'fuzz'.")
  endif()
  set(VEXA_SANITIZER_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=all)
  target_compile_options(vexa_build_options INTERFACE -fsanitize=fuzzer-no-link)
elseif(VEXA_SANITIZE)
  set(VEXA_SANITIZER_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=all)
endif()
if(VEXA_SANITIZER_FLAGS)
  target_compile_options(vexa_build_options INTERFACE
    ${VEXA_SANITIZER_FLAGS} -fno-omit-frame-pointer)
  target_link_options(vexa_build_options INTERFACE ${VEXA_SANITIZER_FLAGS})
endif()

# Link-time optimisation serves vexa and the benchmarks. Objects carry plain code as well, so
# that the tests link in a moment.
set(VEXA_LTO_ACTIVE OFF)
if(VEXA_LTO AND NOT VEXA_SANITIZER_FLAGS
   AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_BUILD_TYPE STREQUAL "Release")
  set(VEXA_LTO_ACTIVE ON)
  target_compile_options(vexa_build_options INTERFACE -flto=auto -ffat-lto-objects)
endif()
