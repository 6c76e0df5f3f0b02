include("${CMAKE_CURRENT_LIST_DIR}/orvcore-targets.cmake")
