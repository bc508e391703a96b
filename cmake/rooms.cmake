# A room is one static library. Its dependencies are named here and nowhere else; each room is also linked once on
# its own with no undefined symbol allowed, so that a call against the direction of the rooms fails the build.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

add_library(corvane_flags INTERFACE)
target_compile_options(corvane_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast)
if(CORVANE_WERROR)
  target_compile_options(corvane_flags INTERFACE -Werror)
endif()
if(CORVANE_SANITIZE)
  target_compile_options(corvane_flags INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer
                                                 -fno-sanitize-recover=undefined)
  target_link_options(corvane_flags INTERFACE -fsanitize=address,undefined)
endif()
if(CORVANE_FUZZ)
  # Debian 12's clang cannot put that one check's data in front of the parts of a coroutine.
  target_compile_options(corvane_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize=function)
  target_link_options(corvane_flags INTERFACE -fsanitize=address,undefined)
endif()
target_compile_definitions(
  corvane_flags
  INTERFACE QT_NO_KEYWORDS
            QT_NO_CAST_FROM_ASCII
            QT_NO_CAST_TO_ASCII
            QT_NO_URL_CAST_FROM_STRING
            QT_NO_CONTEXTLESS_CONNECT
            QT_STRICT_ITERATORS)
target_include_directories(corvane_flags INTERFACE ${CMAKE_SOURCE_DIR}/src)

# corvane_room(<name> SOURCES <files> LINKS <targets>)
function(corvane_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ROOM_SOURCES})
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_link_libraries(${name} PUBLIC corvane_flags ${ROOM_LINKS})
  if(NOT CORVANE_SANITIZE AND NOT CORVANE_FUZZ)
    file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/${name}_layering.cpp "// Only there to be linked with the whole room.\n")
    add_library(${name}_layering MODULE ${CMAKE_CURRENT_BINARY_DIR}/${name}_layering.cpp)
    set_target_properties(${name}_layering PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
    target_link_options(${name}_layering PRIVATE -Wl,--no-undefined)
    target_link_libraries(${name}_layering PRIVATE -Wl,--whole-archive $<TARGET_FILE:${name}> -Wl,--no-whole-archive
                                                   ${ROOM_LINKS})
    add_dependencies(${name}_layering ${name})
  endif()
endfunction()
