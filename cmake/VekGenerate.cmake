# Runs the routine generator over the chapter declarations.
#   vek_generate(DECLS <files...> OUTDIR <dir> SOURCES_VAR <var>)
# sets <var> to the generated layer sources; the header, the export map and the reference docs are generated
# beside them.
function(vek_generate)
  cmake_parse_arguments(GEN "" "OUTDIR;SOURCES_VAR" "DECLS" ${ARGN})
  set(generator ${PROJECT_SOURCE_DIR}/tools/vekgen.py)
  # The language's modules: editing one regenerates everything, as editing the driver does.
  file(GLOB generator_modules CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/decl/*.py)
  set(outputs ${GEN_OUTDIR}/include/vek_routines.h ${GEN_OUTDIR}/vek.map ${GEN_OUTDIR}/forwarded.h
              ${GEN_OUTDIR}/published_names.inc)
  set(sources "")
  foreach(decl IN LISTS GEN_DECLS)
    get_filename_component(chapter ${decl} NAME_WE)
    list(APPEND sources ${GEN_OUTDIR}/${chapter}_layers.cpp)
    list(APPEND outputs ${GEN_OUTDIR}/docs/${chapter}.md ${GEN_OUTDIR}/layers/${chapter}.h)
  endforeach()
  # The generator rewrites only files whose text changes, and Ninja re-reads their times (BYPRODUCTS), so
  # editing one chapter recompiles that chapter alone.
  add_custom_command(
    OUTPUT ${GEN_OUTDIR}/generated.stamp
    BYPRODUCTS ${outputs} ${sources}
    COMMAND ${Python3_EXECUTABLE} ${generator} --out ${GEN_OUTDIR} ${GEN_DECLS}
    DEPENDS ${generator} ${generator_modules} ${GEN_DECLS}
    COMMENT "Generating routine layers from ${CMAKE_CURRENT_SOURCE_DIR}/exports"
    VERBATIM)
  add_custom_target(vek_generated DEPENDS ${GEN_OUTDIR}/generated.stamp)
  set(${GEN_SOURCES_VAR} ${sources} PARENT_SCOPE)
endfunction()
