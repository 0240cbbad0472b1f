# All tests. A folder's *_test.cpp become one program whose ctest label is the folder's name
# (`ctest -L tin`); beside them stand the checks of the conventions and of the installed package.

include(GoogleTest)
find_package(GTest REQUIRED)
find_program(QELTIN_PYTHON python3 REQUIRED)

# A driver's own races are named in a list, so that ours stand out.
set(test_environment)
if(QELTIN_SANITIZE MATCHES thread AND QELTIN_WITH_RENDER)
  set(suppressions ${PROJECT_SOURCE_DIR}/testing/gl/tsan.supp)
  set(test_environment ENVIRONMENT "TSAN_OPTIONS=atexit_sleep_ms=0:suppressions=${suppressions}")
endif()

# Adds a program of the given tests, whose names start with "<label>/".
function(qeltin_add_test_program program label)
  add_executable(${program} ${ARGN})
  target_link_libraries(${program} PRIVATE
    qeltin_build_flags qeltin_testing qeltin_static GTest::gmock GTest::gtest_main)
  set(environment ${test_environment})
  if(QELTIN_SANITIZE MATCHES address AND QELTIN_WITH_RENDER AND label MATCHES "platform|render")
    # The leak check crashes now and then while threads of the software driver are ending.
    set(environment ENVIRONMENT "ASAN_OPTIONS=detect_leaks=0")
  endif()
  gtest_discover_tests(${program}
    TEST_PREFIX ${label}/
    PROPERTIES LABELS ${label} ${environment}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60)
endfunction()

# Adds a test of the given label that is a command.
function(qeltin_add_command_test label name)
  add_test(NAME ${label}/${name} COMMAND ${ARGN})
  set_tests_properties(${label}/${name} PROPERTIES LABELS ${label})
endfunction()

# Adds the program qeltin_<label>_test from the *_test.cpp under the folders, if there are any. The
# target is left in `test_program`, or empty.
function(qeltin_add_unit_tests label)
  set(test_program "" PARENT_SCOPE)
  set(sources)
  foreach(folder IN LISTS ARGN)
    file(GLOB_RECURSE found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*_test.cpp)
    if(NOT QELTIN_WITH_GDAL)
      list(FILTER found EXCLUDE REGEX "/gdal/")
    endif()
    if(NOT QELTIN_WITH_RENDER)
      list(FILTER found EXCLUDE REGEX "${QELTIN_RENDER_FOLDERS}")
    endif()
    list(APPEND sources ${found})
  endforeach()
  list(FILTER sources EXCLUDE REGEX "_calls_test\\.cpp$")
  if(NOT sources)
    return()
  endif()
  set(program qeltin_${label}_test)
  qeltin_add_test_program(${program} ${label} ${sources})
  set(test_program ${program} PARENT_SCOPE)
endfunction()

foreach(subsystem IN ITEMS
        platform kernel tin products persistence contour decimate models render)
  qeltin_add_unit_tests(${subsystem} qeltin/${subsystem})
endforeach()
qeltin_add_unit_tests(testing testing)

# What is asked of GL and in which order, in a program of its own whose GL records.
if(QELTIN_WITH_RENDER)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/qeltin/render/*_calls_test.cpp)
  qeltin_add_test_program(qeltin_render_calls_test render
    ${sources} ${PROJECT_SOURCE_DIR}/testing/gl/RecordingGl.cpp)
  qeltin_add_command_test(render every_call_is_recorded ${QELTIN_PYTHON}
    ${PROJECT_SOURCE_DIR}/testing/gl/unrecorded_calls.py $<TARGET_FILE:qeltin_render_calls_test>)
endif()

if(TARGET qeltin_cli)
  qeltin_add_unit_tests(cli apps/qeltin)
  if(test_program)
    find_package(nlohmann_json REQUIRED)
    add_dependencies(${test_program} qeltin_cli)
    target_sources(${test_program} PRIVATE ${PROJECT_SOURCE_DIR}/apps/qeltin/RoundThinning.cpp)
    target_compile_definitions(${test_program} PRIVATE
      QELTIN_COMMAND="$<TARGET_FILE:qeltin_cli>" QELTIN_VERSION="${PROJECT_VERSION}")
    target_link_libraries(${test_program} PRIVATE nlohmann_json::nlohmann_json)
    if(QELTIN_WITH_RENDER)
      find_package(PNG REQUIRED)
      target_link_libraries(${test_program} PRIVATE PNG::PNG)
    endif()
  endif()
endif()

# A host that links nothing: it loads the library by name, and unloads it.
add_executable(unload_host ${PROJECT_SOURCE_DIR}/testing/unload/host.cpp)
target_include_directories(unload_host PRIVATE ${PROJECT_SOURCE_DIR})
target_link_libraries(unload_host PRIVATE qeltin_build_flags ${CMAKE_DL_LIBS})
add_dependencies(unload_host qeltin)
qeltin_add_command_test(models unload unload_host $<TARGET_FILE:qeltin>)
# What a thread caches of freed memory counts as in use, and grows with the sizes met by chance.
set_tests_properties(models/unload PROPERTIES ENVIRONMENT GLIBC_TUNABLES=glibc.malloc.tcache_count=0)

set(arrows ${PROJECT_SOURCE_DIR}/testing/conventions/include_arrows.py)
qeltin_add_command_test(conventions format ${PROJECT_SOURCE_DIR}/scripts/format --check)
qeltin_add_command_test(conventions include_arrows
  ${QELTIN_PYTHON} ${arrows} ${PROJECT_SOURCE_DIR})
qeltin_add_command_test(conventions include_arrows_self_test
  ${QELTIN_PYTHON} ${arrows} --self-test)

# A sanitized library would need sanitized hosts, and what an unoptimised one exports is another list.
if(CMAKE_BUILD_TYPE STREQUAL Release AND NOT QELTIN_SANITIZE)
  set(install_tests ${PROJECT_SOURCE_DIR}/testing/install)
  if(QELTIN_WITH_RENDER)  # the list is that of the whole library
    qeltin_add_command_test(install exported_symbols
      ${QELTIN_PYTHON} ${install_tests}/exported_symbols.py $<TARGET_FILE:qeltin>)
  endif()
  set(ways find_package pkg_config)
  if(TARGET qeltin_cli)
    list(APPEND ways command)
  endif()
  find_program(QELTIN_DPKG_DEB dpkg-deb)
  if(QELTIN_DPKG_DEB AND PROJECT_IS_TOP_LEVEL)
    list(APPEND ways packages)
  endif()
  foreach(way IN LISTS ways)
    qeltin_add_command_test(install ${way}
      ${install_tests}/build_hosts ${way} ${PROJECT_BINARY_DIR} ${CMAKE_CXX_COMPILER})
    # Each writes the manifest of what it installed into the build directory.
    set_tests_properties(install/${way} PROPERTIES RESOURCE_LOCK install_manifest)
  endforeach()
endif()
