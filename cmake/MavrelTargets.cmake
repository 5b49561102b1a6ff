# How the targets of this project are built: warnings, sanitizers, where the results go.
#
#   mavrel_target(NAME)                        applies the project's compile settings to any target
#   mavrel_library(NAME SOURCES... LIBS ...)   one static library a folder; linked to no more than it may include
#   mavrel_plugin(NAME CACHE SOURCES...)       one codec plugin
#   mavrel_test(NAME SOURCES... LIBS ...)      one GoogleTest program, its cases known to ctest; under Wine a few runs of
#                                              many cases, or one a case with PROCESS_EACH
#
# Programs are placed in <build>/bin, the plugins that they find by default in <build>/bin/plugins.

# The empty expression keeps Visual Studio from adding a folder for each configuration.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin$<1:>")

if(WIN32)
  add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX STRICT _WIN32_WINNT=0x0A00)
  if(MINGW)
    # GCC may spill 32-byte vectors to a stack that Windows aligns to 16 bytes only.
    add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-Wa,-muse-unaligned-vector-move>)
  endif()
endif()

if(MAVREL_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(MAVREL_FUZZ)
  add_compile_options(-O1 -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
  add_link_options(-fsanitize=address,undefined)
endif()

function(mavrel_target name)
  target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}")
  if(MSVC)
    target_compile_options(${name} PRIVATE /W4 /permissive- /utf-8)
  else()
    target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:C,CXX>:
      -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wundef -Wreturn-type>)
  endif()
  # GCC 12 sees an overlap in "text" + string that cannot be; its later versions do not.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
  endif()
  if(MAVREL_WERROR)
    if(MSVC)
      target_compile_options(${name} PRIVATE /WX)
    else()
      target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:C,CXX>:-Werror>)
    endif()
  endif()
endfunction()

function(mavrel_library name)
  cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
  add_library(${name} STATIC ${ARG_UNPARSED_ARGUMENTS})
  mavrel_target(${name})
  target_link_libraries(${name} PUBLIC ${ARG_LIBS})
endfunction()

# A plugin's code is a static library (so that tests, fuzz targets and benchmarks link it) and a thin module around it.
function(mavrel_plugin name)
  cmake_parse_arguments(ARG "OPTIONAL" "" "EXPORTS" ${ARGN})
  add_library(codec_${name} STATIC ${ARG_UNPARSED_ARGUMENTS})
  mavrel_target(codec_${name})
  add_library(plugin_${name} MODULE ${ARG_EXPORTS} "${CMAKE_SOURCE_DIR}/plugins/common/CommonExports.cpp")
  mavrel_target(plugin_${name})
  target_link_libraries(plugin_${name} PRIVATE codec_${name})
  set(folder plugins)
  if(ARG_OPTIONAL)
    set(folder plugins-extra)
  endif()
  set_target_properties(plugin_${name} PROPERTIES
    PREFIX "" OUTPUT_NAME ${name} C_VISIBILITY_PRESET hidden CXX_VISIBILITY_PRESET hidden
    LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin/${folder}$<1:>")
endfunction()

function(mavrel_test name)
  cmake_parse_arguments(ARG "PROCESS_EACH" "" "LIBS" ${ARGN})
  add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
  mavrel_target(${name})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests$<1:>")
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gmock GTest::gtest_main)
  if(NOT CMAKE_CROSSCOMPILING OR ARG_PROCESS_EACH)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120)
    return()
  endif()
  # To start a program under Wine takes as long as dozens of cases.
  set(runs 4)
  math(EXPR last "${runs} - 1")
  foreach(run RANGE ${last})
    add_test(NAME ${name}.${run} COMMAND ${name})
    set_tests_properties(${name}.${run} PROPERTIES
      ENVIRONMENT "GTEST_TOTAL_SHARDS=${runs};GTEST_SHARD_INDEX=${run}" TIMEOUT 600)
  endforeach()
endfunction()
