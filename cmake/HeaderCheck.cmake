# The target header-check compiles each header of the library alone: it has to bring what it uses.
add_library(header-check OBJECT EXCLUDE_FROM_ALL)
target_include_directories(header-check PRIVATE ${CMAKE_SOURCE_DIR})
file(GLOB_RECURSE headers RELATIVE ${CMAKE_SOURCE_DIR} CONFIGURE_DEPENDS
     ${CMAKE_SOURCE_DIR}/toolkit/*.h ${CMAKE_SOURCE_DIR}/core/*.h ${CMAKE_SOURCE_DIR}/text/*.h)
foreach(header IN LISTS headers)
  string(REPLACE "/" "_" unit ${header})
  set(unit ${CMAKE_BINARY_DIR}/header-check/${unit}.cpp)
  file(CONFIGURE OUTPUT ${unit} CONTENT "#include \"${header}\" // IWYU pragma: keep\n")
  target_sources(header-check PRIVATE ${unit})
endforeach()
