# The filter library: one folder a room.
set(VS_WML_SOURCES
    filter/attributes/alignment.cpp
    filter/attributes/attribute_values.cpp
    filter/attributes/length.cpp
    filter/data/ascii.cpp
    filter/data/name_lookup.cpp
    filter/data/vsd_wml.cpp
    filter/elements/anchor.cpp
    filter/elements/image.cpp
    filter/elements/tag_processing.cpp
    filter/entry/info.cpp
    filter/entry/read_loop.cpp
    filter/entry/setup.cpp
    filter/entry/stream.cpp
    filter/format/style.cpp
    filter/format/tag_stack.cpp
    filter/format/typeface.cpp
    filter/ground/char_buffer.cpp
    filter/ground/heap.cpp
    filter/input/charset.cpp
    filter/input/decoder.cpp
    filter/lexer/item_reader.cpp
    filter/lexer/reference.cpp
    filter/lexer/tag_reader.cpp
    filter/lexer/tag_scan.cpp
    filter/lexer/word_reader.cpp
    filter/tables/cell_widths.cpp
    filter/tables/column_widths.cpp
    filter/tables/table_output.cpp
    filter/tables/table_scan.cpp
    filter/text/characters.cpp
    filter/text/paragraph.cpp
    filter/text/text_run.cpp)

function(vs_wml_filter_code target)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  set_target_properties(
    ${target} PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden
                         VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE -fno-exceptions -fno-rtti)
  target_compile_definitions(${target} PRIVATE VS_WML_BUILD_DATE="${VS_WML_BUILD_DATE}"
                                               VS_WML_BUILD_TIME="${VS_WML_BUILD_TIME}")
  vs_wml_warnings(${target})
endfunction()

# The objects by themselves, for the tests of the library's inside.
add_library(vs_wml_objects OBJECT EXCLUDE_FROM_ALL ${VS_WML_SOURCES})
vs_wml_filter_code(vs_wml_objects)

# The filter without its short cuts, which the tests hold against the one with them.
add_library(vs_wml_road MODULE EXCLUDE_FROM_ALL ${VS_WML_SOURCES})
vs_wml_filter_code(vs_wml_road)
target_compile_definitions(vs_wml_road PRIVATE VS_WML_NO_SHORT_CUTS)

add_library(vs_wml SHARED ${VS_WML_SOURCES})
vs_wml_filter_code(vs_wml)
# Optimised as a whole: the small functions of one subsystem are called from the loops of
# another.
include(CheckIPOSupported)
check_ipo_supported(RESULT VS_WML_HAS_IPO OUTPUT VS_WML_IPO_OUTPUT LANGUAGES CXX)
if(VS_WML_HAS_IPO AND CMAKE_BUILD_TYPE STREQUAL "Release")
  set_target_properties(vs_wml PROPERTIES INTERPROCEDURAL_OPTIMIZATION ON)
endif()
add_library(vs_wml::vs_wml ALIAS vs_wml)
# Each function begins a cache line, so that the place of a loop in its lines, which can cost 7 %,
# does not change with every edit elsewhere.
target_compile_options(vs_wml PRIVATE -falign-functions=64)
# Linked as C, and without the C++ libraries that CMake adds for C++ objects: a use of the C++
# runtime is an undefined symbol then.
set(CMAKE_CXX_IMPLICIT_LINK_LIBRARIES "")
set_target_properties(vs_wml PROPERTIES LINKER_LANGUAGE C VERSION 1.${PROJECT_VERSION} SOVERSION 1)
vs_wml_harden(vs_wml)
if(NOT VS_WML_SANITIZE) # a sanitizer's symbols come from the program that loads the library
  target_link_options(vs_wml PRIVATE -Wl,--no-undefined)
endif()
target_include_directories(
  vs_wml INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/filter>
                   $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
