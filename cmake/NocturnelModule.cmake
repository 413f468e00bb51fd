# nocturnel_module(NAME DEPS <libs...> TEST_DEPS <libs...>)
# One folder, one library: every .cpp of the folder except *_test.cpp builds the library
# nocturnel_<NAME>; every *_test.cpp builds the folder's test executable <NAME>_tests.
function(nocturnel_module NAME)
  cmake_parse_arguments(M "" "" "DEPS;TEST_DEPS" ${ARGN})
  file(GLOB lib_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  file(GLOB test_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_test.cpp)
  list(REMOVE_ITEM lib_sources ${test_sources} ${CMAKE_CURRENT_SOURCE_DIR}/main.cpp)
  add_library(nocturnel_${NAME} STATIC ${lib_sources})
  target_include_directories(nocturnel_${NAME} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(nocturnel_${NAME} PUBLIC ${M_DEPS})
  if(test_sources)
    add_executable(${NAME}_tests ${test_sources})
    target_link_libraries(${NAME}_tests PRIVATE nocturnel_${NAME} ${M_TEST_DEPS} GTest::gmock GTest::gtest_main Threads::Threads)
    gtest_discover_tests(${NAME}_tests
      DISCOVERY_TIMEOUT 120
      PROPERTIES ENVIRONMENT "NOCTURNEL_TEST_DATA=${CMAKE_BINARY_DIR}/bin/data;NOCTURNEL_SOURCE_DIR=${PROJECT_SOURCE_DIR}" TIMEOUT 300)
  endif()
endfunction()
