# One libFuzzer program a reader: fuzz/<name>.cpp becomes fuzz_<name>. write_seeds makes what they
# start from.

file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/*.cpp)
foreach(source IN LISTS sources)
  cmake_path(GET source STEM name)
  add_executable(fuzz_${name} ${source})
  target_link_libraries(fuzz_${name} PRIVATE qeltin_build_flags qeltin_testing qeltin_static)
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
endforeach()

add_executable(write_seeds ${PROJECT_SOURCE_DIR}/fuzz/seeds/write_seeds.cpp)
target_link_libraries(write_seeds PRIVATE qeltin_build_flags qeltin_testing qeltin_static)
