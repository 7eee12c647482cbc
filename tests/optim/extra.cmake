# The options block of the declaration language: the generator on a good block and on malformed ones.
add_test(NAME optim_options_declarations
         COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/options_decl_test.py)
set_tests_properties(optim_options_declarations PROPERTIES LABELS optim)
