# The shipped library's exports, and the reference BLAS and LAPACK test programs (Debian's libblas64-test and
# liblapack64-test, found through dpkg) run against it. Label linalg; the testers take about half a minute.
find_program(VEK_LDD ldd REQUIRED)
file(GLOB linalg_decls ${PROJECT_SOURCE_DIR}/src/exports/f06.decl ${PROJECT_SOURCE_DIR}/src/exports/f07.decl
     ${PROJECT_SOURCE_DIR}/src/exports/f08.decl)
add_test(NAME linalg_exports
         COMMAND ${CMAKE_COMMAND} -DLIBRARY=$<TARGET_FILE:vek> -DNM=${CMAKE_NM} -DLDD=${VEK_LDD}
                 "-DDECLS=${linalg_decls}" -P ${CMAKE_CURRENT_LIST_DIR}/check_exports.cmake)
set_tests_properties(linalg_exports PROPERTIES LABELS linalg)

# The files of a Debian package whose names match `regex`, in `var`.
function(vek_package_files package regex var)
  execute_process(COMMAND dpkg -L ${package} OUTPUT_VARIABLE files RESULT_VARIABLE rc ERROR_QUIET)
  if(NOT rc EQUAL 0)
    set(${var} "" PARENT_SCOPE)
    return()
  endif()
  string(REPLACE "\n" ";" files "${files}")
  list(FILTER files INCLUDE REGEX "${regex}")
  set(${var} ${files} PARENT_SCOPE)
endfunction()

# One CTest test per tester program: NAME, PROGRAM, INPUTS (read one after the other on standard input).
function(vek_reference_test)
  cmake_parse_arguments(REF "" "NAME;PROGRAM" "INPUTS" ${ARGN})
  add_test(NAME ${REF_NAME}
           COMMAND ${CMAKE_COMMAND} -DPROGRAM=${REF_PROGRAM} "-DINPUTS=${REF_INPUTS}" -DLIBRARY=$<TARGET_FILE:vek>
                   -DWORKDIR=${CMAKE_CURRENT_BINARY_DIR}/${REF_NAME} -P ${CMAKE_CURRENT_LIST_DIR}/reference_tester.cmake)
  set_tests_properties(${REF_NAME} PROPERTIES LABELS linalg TIMEOUT 900)
endfunction()

# Fortran callers of the Schur drivers passing LOGICAL FUNCTION selectors (64-bit default integers).
if(CMAKE_Fortran_COMPILER)
  add_executable(test_linalg_fortran_selectors ${CMAKE_CURRENT_LIST_DIR}/fortran/schur_selectors.f90)
  target_compile_options(test_linalg_fortran_selectors PRIVATE -fdefault-integer-8)
  target_link_libraries(test_linalg_fortran_selectors PRIVATE vek)
  add_test(NAME linalg_fortran_selectors COMMAND test_linalg_fortran_selectors)
  set_tests_properties(linalg_fortran_selectors PROPERTIES LABELS linalg)
endif()

# The testers are plain programs: a sanitizer-built library cannot be preloaded into them (the sanitizer
# runtime must come first), so they run in the release build only.
if(VEK_SANITIZE)
  return()
endif()

vek_package_files(libblas64-test "/x?[a-z]blat[123][a-z]*(\\.in)?$" blas_files)
foreach(p IN ITEMS s d c z)
  foreach(level IN ITEMS 1 2 3)
    list(FILTER blas_files EXCLUDE REGEX "/x[a-z]cblat")  # the CBLAS testers: no CBLAS names are exported
    set(program "")
    set(input "")
    foreach(f IN LISTS blas_files)
      if(f MATCHES "/xblat${level}${p}$")
        set(program ${f})
      elseif(f MATCHES "/${p}blat${level}\\.in$")
        set(input ${f})
      endif()
    endforeach()
    if(program)
      vek_reference_test(NAME linalg_reference_blas${level}${p} PROGRAM ${program} INPUTS ${input})
    endif()
  endforeach()
endforeach()

# LAPACK: the double and double complex testers (single-precision LAPACK names are not exported).
vek_package_files(liblapack64-test "/lapack64/" lapack_files)
foreach(p IN ITEMS d z)
  set(lin_program "")
  set(eig_program "")
  set(lin_input "")
  set(eig_inputs "")
  foreach(f IN LISTS lapack_files)
    get_filename_component(name ${f} NAME)
    if(name STREQUAL "xlintst${p}")
      set(lin_program ${f})
    elseif(name STREQUAL "xeigtst${p}")
      set(eig_program ${f})
    elseif(name STREQUAL "${p}test.in")
      set(lin_input ${f})
    elseif(name MATCHES "^(nep|sep|se2|svd|${p}ec|${p}ed|${p}gg|${p}gd|${p}sb|${p}sg|${p}bal|${p}bak|${p}gbal|${p}gbak|${p}bb|glm|gqr|gsv|csd|lse)\\.in$")
      list(APPEND eig_inputs ${f})
    endif()
  endforeach()
  if(lin_program AND lin_input)
    vek_reference_test(NAME linalg_reference_lin${p} PROGRAM ${lin_program} INPUTS ${lin_input})
  endif()
  # zec.in (complex Schur reordering) crashes xeigtstz with Debian's own OpenBLAS as well, without the library.
  list(FILTER eig_inputs EXCLUDE REGEX "/zec\\.in$")
  if(eig_program AND eig_inputs)
    vek_reference_test(NAME linalg_reference_eig${p} PROGRAM ${eig_program} INPUTS ${eig_inputs})
  endif()
endforeach()
