# The build facts the identification routines report (a00aaf, a00adf), written by the build into
# gen/frame/build_info.h: platform, compiler and its flags, the kernel of the build machine, the date and the
# project version. Nothing in the banner is typed by hand.
math(EXPR vek_pointer_bits "${CMAKE_SIZEOF_VOID_P} * 8")
set(VEK_BUILD_PLATFORM
    "${CMAKE_SYSTEM_NAME} ${CMAKE_SYSTEM_PROCESSOR} (${vek_pointer_bits}-bit), 64-bit integers")
set(VEK_BUILD_PRECISION "double")
set(VEK_BUILD_PRODUCT_CODE "VEKMA${PROJECT_VERSION_MAJOR}${PROJECT_VERSION_MINOR}")
set(VEK_BUILD_MARK "${PROJECT_VERSION}")
set(VEK_BUILD_HARDWARE "${CMAKE_SYSTEM_PROCESSOR}")
set(VEK_BUILD_KERNEL "${CMAKE_HOST_SYSTEM_NAME} ${CMAKE_HOST_SYSTEM_VERSION}")
set(VEK_BUILD_COMPILER "${CMAKE_CXX_COMPILER_ID} C++ ${CMAKE_CXX_COMPILER_VERSION}")

string(TOUPPER "${CMAKE_BUILD_TYPE}" vek_build_type)
get_property(vek_options DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} PROPERTY COMPILE_OPTIONS)
list(JOIN vek_options " " vek_options)
string(GENEX_STRIP "${vek_options}" vek_options)
string(STRIP "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${vek_build_type}} -std=c++${CMAKE_CXX_STANDARD} ${vek_options}"
       VEK_BUILD_FLAGS)
string(REGEX REPLACE "  +" " " VEK_BUILD_FLAGS "${VEK_BUILD_FLAGS}")
string(TIMESTAMP VEK_BUILD_DATE "%Y-%m-%d %H:%M:%S UTC" UTC)

foreach(fact PLATFORM PRECISION PRODUCT_CODE MARK HARDWARE KERNEL COMPILER FLAGS DATE)
  string(REPLACE "\\" "\\\\" VEK_BUILD_${fact} "${VEK_BUILD_${fact}}")
  string(REPLACE "\"" "\\\"" VEK_BUILD_${fact} "${VEK_BUILD_${fact}}")
endforeach()
configure_file(${CMAKE_CURRENT_LIST_DIR}/build_info.h.in ${PROJECT_BINARY_DIR}/gen/frame/build_info.h @ONLY)
