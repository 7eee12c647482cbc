# The BLAS/LAPACK bodies: Debian's ILP64 OpenMP OpenBLAS static archive, linked into the library with all its
# symbols renamed vekob_* (src/linalg/rename_archive.py), so that nothing of it is visible outside and our
# exported published names (dgemm_, dgetrf_ ...) are the library's own entries. The routines named by --own
# are the library's for every caller (src/linalg/vector_kernel_routes.cpp: kernels that read past arrays).
# Its LAPACK part is Fortran: it needs the gfortran run-time library, which is not a BLAS.
find_library(VEK_OPENBLAS64_ARCHIVE NAMES libopenblas64.a PATH_SUFFIXES openblas64-openmp REQUIRED
             DOC "Debian libopenblas64-openmp-dev static archive")
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libgfortran.so
                OUTPUT_VARIABLE VEK_GFORTRAN_LIBRARY OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT IS_ABSOLUTE "${VEK_GFORTRAN_LIBRARY}")
  message(FATAL_ERROR "libgfortran.so not found (install gfortran through tools/deps.sh)")
endif()

# Kernels that read past arrays, per target of OpenBLAS's one C source each (vector_kernel_routes.cpp).
set(VEK_OPENBLAS_KERNEL_ROUTES)
foreach(target SANDYBRIDGE HASWELL SKYLAKEX COOPERLAKE ZEN BULLDOZER PILEDRIVER STEAMROLLER EXCAVATOR)
  list(APPEND VEK_OPENBLAS_KERNEL_ROUTES --own zdotc_k_${target} --own zdotu_k_${target})
endforeach()
foreach(target HASWELL SKYLAKEX COOPERLAKE ZEN)
  foreach(variant n r o s)
    list(APPEND VEK_OPENBLAS_KERNEL_ROUTES --own zgemv_${variant}_${target})
  endforeach()
endforeach()
set(VEK_OPENBLAS_RENAMED ${PROJECT_BINARY_DIR}/linalg/libvekob.a)
# OpenBLAS asks the OpenMP runtime for its team: the library answers 1 (dependency_threads.cpp), so that the
# dependency always runs on the calling thread and its rounding never depends on the thread count. The
# level-3 calls inside its LAPACK go to the library's tiled routines (level3_tiled.cpp), which share the
# tiles among the library's threads.
set(VEK_TILED_CALLS)
foreach(p s d c z)
  foreach(op gemm symm syrk syr2k trmm trsm)
    list(APPEND VEK_TILED_CALLS --calls ${p}${op}_)
  endforeach()
endforeach()
foreach(p c z)
  foreach(op hemm herk her2k)
    list(APPEND VEK_TILED_CALLS --calls ${p}${op}_)
  endforeach()
endforeach()
# Its LAPACK's calls of ?getrf and ?potrf go to the library's blocked factorisations (f07adf, f07arf, f07fdf,
# f07frf).
list(APPEND VEK_TILED_CALLS --calls dgetrf_ --calls dpotrf_ --calls zgetrf_ --calls zpotrf_)
# A second build of the same sources (tools/test.sh's sanitizer build) may copy the archive another build has
# renamed (the result depends only on the archive, this file and the script; that build must be current).
set(VEK_OPENBLAS_RENAMED_BY "" CACHE FILEPATH "libvekob.a renamed by another build of these sources, copied")
if(VEK_OPENBLAS_RENAMED_BY AND EXISTS "${VEK_OPENBLAS_RENAMED_BY}")
  add_custom_command(
    OUTPUT ${VEK_OPENBLAS_RENAMED}
    COMMAND ${CMAKE_COMMAND} -E copy ${VEK_OPENBLAS_RENAMED_BY} ${VEK_OPENBLAS_RENAMED}
    DEPENDS ${VEK_OPENBLAS_RENAMED_BY}
    COMMENT "Copying the renamed OpenBLAS archive of ${VEK_OPENBLAS_RENAMED_BY}"
    VERBATIM)
else()
  add_custom_command(
    OUTPUT ${VEK_OPENBLAS_RENAMED}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/linalg
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/rename_archive.py --nm ${CMAKE_NM}
            --objcopy ${CMAKE_OBJCOPY} --ar ${CMAKE_AR} --prefix vekob_ --drop xerbla.o
            --redirect omp_get_max_threads=vek_dependency_max_threads
            --redirect omp_set_num_threads=vek_dependency_set_threads --call-prefix vektl_ ${VEK_TILED_CALLS}
            --own zhemv_ ${VEK_OPENBLAS_KERNEL_ROUTES}
            ${VEK_OPENBLAS64_ARCHIVE} ${VEK_OPENBLAS_RENAMED}
    DEPENDS ${CMAKE_CURRENT_LIST_DIR}/rename_archive.py ${VEK_OPENBLAS64_ARCHIVE}
    COMMENT "Renaming the OpenBLAS archive's symbols (vekob_)"
    VERBATIM)
endif()
add_custom_target(vek_openblas DEPENDS ${VEK_OPENBLAS_RENAMED})
# Only the links wait for the renamed archive; the library's sources compile meanwhile.
add_dependencies(vek vek_openblas)
add_dependencies(vek_static vek_openblas)

target_link_libraries(vek_objects PUBLIC ${VEK_OPENBLAS_RENAMED} ${VEK_GFORTRAN_LIBRARY} OpenMP::OpenMP_CXX m)
# In a static link the archive's calls of its error hook must find the library's (src/linalg/argument_error.cpp).
# So must its thread queries (src/linalg/dependency_threads.cpp).
target_link_options(vek_static INTERFACE LINKER:--undefined=vekob_xerbla_
                    LINKER:--undefined=vek_dependency_max_threads LINKER:--undefined=vek_dependency_set_threads)
