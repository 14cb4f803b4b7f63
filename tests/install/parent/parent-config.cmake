include(CMakeFindDependencyMacro)
find_dependency(vorn-mero)
include(${CMAKE_CURRENT_LIST_DIR}/parent-targets.cmake)
