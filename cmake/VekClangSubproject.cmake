# vek_clang_subproject(<target> <source dir> <binary dir> <clang++> [<dependencies>...]) builds one of the
# clang test projects (cmake/VekClangProject.cmake) into <binary dir> through ExternalProject, after the given
# targets of the main build, with as many jobs as the machine has cores; it rebuilds what changed on every
# build of the main project.
include(ExternalProject)
function(vek_clang_subproject target source binary clangxx)
  cmake_host_system_information(RESULT jobs QUERY NUMBER_OF_LOGICAL_CORES)
  ExternalProject_Add(${target}
    SOURCE_DIR ${source}
    BINARY_DIR ${binary}
    CMAKE_GENERATOR ${CMAKE_GENERATOR}
    CMAKE_ARGS -DCMAKE_CXX_COMPILER=${clangxx} -DVEK_SOURCE_DIR=${PROJECT_SOURCE_DIR}
               -DVEK_BINARY_DIR=${PROJECT_BINARY_DIR}
    BUILD_COMMAND ${CMAKE_COMMAND} --build ${binary} -j ${jobs}
    BUILD_ALWAYS ON
    INSTALL_COMMAND ""
    DEPENDS ${ARGN})
endfunction()
