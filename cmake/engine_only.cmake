# The engine alone, without Qt: what the Windows build (cmake/mingw-w64.cmake)
# makes, and what any build with SOFRAVAN_ENGINE_ONLY=ON makes.
#   libraries  jet (store/jet), sql (store/sql), store with its workbook reader
#   tools      jetdump, jetcheck, jetsql, jetcompact, make-demo (its database
#              without the pictures, which need Qt6::Gui); print-report,
#              which needs the whole shell, is left out
#   tests      jet_tests, sql_tests, store_tests
# A new engine file, tool or test needs nothing here: store/jet's, tools' and
# tests/store/jet's own CMakeLists.txt bring it in (the compaction's
# compact.cpp, jetcompact and compact_test among them). A new test program
# also goes into the list in scripts/test-windows.

# GoogleTest from Debian's sources (package googletest), built for the
# target like our own code.
set(SOFRAVAN_GOOGLETEST_SOURCE_DIR /usr/src/googletest
    CACHE PATH "GoogleTest's sources, built with the engine's tests")
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(${SOFRAVAN_GOOGLETEST_SOURCE_DIR} googletest EXCLUDE_FROM_ALL SYSTEM)
if(NOT TARGET GTest::gtest)
    add_library(GTest::gtest ALIAS gtest)
    add_library(GTest::gtest_main ALIAS gtest_main)
endif()
include(GoogleTest)
enable_testing()

if(CMAKE_CROSSCOMPILING)
    # The test programs run under wine: ctest lists their tests when it runs,
    # not at every build, and they cannot run mdbtools.
    set(CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE PRE_TEST)
    set(MDB_EXPORT_EXECUTABLE "")
endif()
if(WIN32 AND CMAKE_CROSSCOMPILING)
    # Wine shows this machine's / as drive Z:.
    get_filename_component(fixtures "${SOFRAVAN_FIXTURES_DIR}" ABSOLUTE)
    set(SOFRAVAN_FIXTURES_DIR "Z:${fixtures}")
endif()

add_subdirectory(store/jet)
add_subdirectory(store/sql)
add_subdirectory(store)
add_subdirectory(tools)
add_subdirectory(tests/store/jet)
add_subdirectory(tests/store/sql)
add_subdirectory(tests/store)
