# How the targets of this project are compiled. Options that hold for all of them stand here, once.

find_program(ORV_CCACHE ccache)
if(ORV_CCACHE)
  # Paths relative to the tree, so that another checkout finds the same entries.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${ORV_CCACHE})
endif()

# Rows of declarations are full of addresses; packed, their relocations take next to no room.
add_link_options(LINKER:-z,pack-relative-relocs)
add_compile_options(-Wall -Wextra -Wno-missing-field-initializers)
# g++ otherwise deletes the zeroing that an allocation does ahead of a constructor.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-flifetime-dse=1)
endif()
if(ORV_SANITIZE)
  add_compile_options(-fsanitize=${ORV_SANITIZE} -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ORV_SANITIZE})
  if(ORV_SANITIZE MATCHES "undefined")
    add_compile_options(-fno-sanitize-recover=undefined)
  endif()
endif()

# One folder of the library: an object library with its sources listed; a folder of headers alone builds nothing.
function(orv_folder name)
  if(NOT ARGN)
    add_library(orv_${name} INTERFACE)
    return()
  endif()
  add_library(orv_${name} OBJECT ${ARGN})
  target_include_directories(orv_${name} PRIVATE ${CMAKE_SOURCE_DIR})
  target_compile_options(orv_${name} PRIVATE -fno-exceptions)
  # Declarations share most of what they include, so they are compiled in bundles; nothing else is.
  set_target_properties(orv_${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 20)
  foreach(source IN LISTS ARGN)
    if(source MATCHES "\\.glue\\.cpp$")
      set_source_files_properties(${source} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
    else()
      set_source_files_properties(${source} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    endif()
  endforeach()
endfunction()

# The tests of one folder: one executable, its CTest label the folder's name.
function(orv_test folder)
  add_executable(test_${folder} ${ARGN})
  target_link_libraries(test_${folder} PRIVATE orvcore orv_test_support GTest::gtest)
  add_test(NAME ${folder} COMMAND test_${folder})
  set_tests_properties(${folder} PROPERTIES LABELS ${folder} TIMEOUT 600)
endfunction()

# The benchmarks of one folder: one executable; peers are compiled in where they were found.
function(orv_bench folder)
  add_executable(bench_${folder} ${ARGN})
  target_include_directories(bench_${folder} PRIVATE ${CMAKE_SOURCE_DIR})
  target_link_libraries(bench_${folder} PRIVATE orvcore orv_bench_support)
endfunction()
