# The flags that every target of this project is built with: link privately to qeltin_build_flags.

add_library(qeltin_build_flags INTERFACE)
target_compile_features(qeltin_build_flags INTERFACE cxx_std_20)
set(CMAKE_CXX_EXTENSIONS OFF)

target_compile_options(qeltin_build_flags INTERFACE
  # The same input gives the same bits on every machine: a * b + c stays two roundings. For the same
  # reason -ffast-math and -march never stand here.
  -ffp-contract=off
  -Wall -Wextra -Wpedantic
  -Wcast-align
  -Wcast-qual
  -Wconversion -Wno-sign-conversion  # int indexes into std::vector are the custom of this library
  -Wextra-semi
  -Wnon-virtual-dtor
  -Wold-style-cast
  -Woverloaded-virtual
  -Wshadow
  $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-branches -Wduplicated-cond -Wlogical-op>
  # g++ 12 sees overlaps in std::string concatenation that are not there.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<BOOL:${QELTIN_WERROR}>:-Werror>)

if(QELTIN_SANITIZE)
  string(REPLACE ";" "," sanitizers "${QELTIN_SANITIZE}")
  add_compile_options(-fsanitize=${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${sanitizers})
  # The instrumented code of g++ hides initialisations from its own flow analysis.
  target_compile_options(qeltin_build_flags INTERFACE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()
if(QELTIN_BUILD_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
    message(FATAL_ERROR "QELTIN_BUILD_FUZZ needs clang++ (the preset `fuzz` chooses it)")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
