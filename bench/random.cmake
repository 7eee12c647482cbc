target_include_directories(bench_random PRIVATE ${PROJECT_SOURCE_DIR}/tests)
