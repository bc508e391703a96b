# The queue of expected prompts, and the main window's message over plain values.
add_library(test_prompts STATIC expectedprompts.h expectedprompts.cpp)
target_include_directories(test_prompts PUBLIC ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(test_prompts PUBLIC corvane_flags quillon_system Qt6::Core Qt6::Test)

add_library(test_fakes STATIC fakewindow.h fakewindow.cpp)
target_include_directories(test_fakes PUBLIC ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(test_fakes PUBLIC corvane_flags message Qt6::Core)
