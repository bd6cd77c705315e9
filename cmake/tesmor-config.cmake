# find_package(tesmor CONFIG): the target tesmor::tesmor.
include(${CMAKE_CURRENT_LIST_DIR}/tesmor-targets.cmake)
