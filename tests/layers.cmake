# The layers of src/: every #include "FOLDER/..." of a source in src/<layer>/ must name a folder
# that layer may include, so that every include points down:
#
#   platform <- state <- ifo, stream, extract <- convert, app <- disc <- nav, archive <- picture
#   <- cli, gui
#
# Usage:
#   cmake -DSOURCE_DIR=<repo>/src -P layers.cmake
#       checks the tree; fails naming every file, line and include that breaks a rule, and every
#       folder of src/ that has no layer yet.
#   cmake -DSELF_TEST=ON -DWORK_DIR=<empty folder> -P layers.cmake
#       builds a small tree with allowed includes, two forbidden ones and a folder without a layer,
#       and checks that exactly the forbidden ones are reported: the check itself can fail.
cmake_minimum_required(VERSION 3.25)

# What each layer may include (itself included).
set(LAYER_platform platform)
set(LAYER_state platform state)
set(LAYER_ifo platform state ifo)
# stream/nav_pack decodes the navigation commands of a navigation pack with ifo/nav_command.
set(LAYER_stream platform state ifo stream)
set(LAYER_extract platform state stream extract)
set(LAYER_convert platform state ifo convert)
set(LAYER_app platform state ifo stream extract convert app)
set(LAYER_disc platform state ifo stream extract convert app disc)
# nav: the navigation machine (play, graph, reachability) over the disc model.
set(LAYER_nav platform state ifo stream extract convert app disc nav)
# picture: sub-pictures, menus and bitrate charts drawn over the disc model and the machine.
set(LAYER_picture platform state ifo stream extract convert app disc nav picture)
# archive: title rips, chapter files, damaged images mapped onto titles.
set(LAYER_archive platform state ifo stream extract convert app disc archive)
set(LAYER_cli platform state ifo stream extract convert app disc nav picture archive cli)
set(LAYER_gui platform state ifo stream extract convert app disc nav picture archive gui)
set(LAYERS platform state ifo stream extract convert app disc nav picture archive cli gui)

# The rules themselves never let two layers include each other.
function(check_rules_are_ordered)
  foreach(a IN LISTS LAYERS)
    foreach(b IN LISTS LAYER_${a})
      if(NOT a STREQUAL b AND a IN_LIST LAYER_${b})
        message(FATAL_ERROR "layers.cmake: ${a} and ${b} may include each other")
      endif()
    endforeach()
  endforeach()
endfunction()

# Sets out_violations to one line per include that breaks a rule (or folder without a layer)
# and out_files to the number of sources read.
function(check_layers src_dir out_violations out_files)
  set(violations)
  set(count 0)
  file(GLOB_RECURSE sources RELATIVE "${src_dir}" "${src_dir}/*.h" "${src_dir}/*.cpp")
  list(SORT sources)
  foreach(rel IN LISTS sources)
    string(REGEX MATCH "^[^/]+" layer "${rel}")
    if(layer STREQUAL rel)
      continue()  # a file directly in src/: no layer of its own
    endif()
    math(EXPR count "${count} + 1")
    if(NOT layer IN_LIST LAYERS)
      list(APPEND violations "src/${rel}: folder src/${layer}/ has no layer in tests/layers.cmake")
      continue()
    endif()
    file(STRINGS "${src_dir}/${rel}" lines REGEX "^[ \t]*#[ \t]*include[ \t]*\"[^\"]+/")
    foreach(line IN LISTS lines)
      string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*\"([^\"]+)\".*$" "\\1" header "${line}")
      string(REGEX MATCH "^[^/]+" target "${header}")
      if(NOT IS_DIRECTORY "${src_dir}/${target}")
        continue()  # not a folder of src/ (a system or test-support header)
      endif()
      if(NOT target IN_LIST LAYER_${layer})
        string(REPLACE ";" ", " allowed "${LAYER_${layer}}")
        list(APPEND violations
             "src/${rel}: #include \"${header}\": ${layer}/ may include only ${allowed}")
      endif()
    endforeach()
  endforeach()
  set(${out_violations} "${violations}" PARENT_SCOPE)
  set(${out_files} ${count} PARENT_SCOPE)
endfunction()

function(write_source root rel text)
  file(WRITE "${root}/${rel}" "${text}\n")
endfunction()

function(run_self_test)
  if(NOT WORK_DIR)
    message(FATAL_ERROR "layers.cmake: SELF_TEST needs WORK_DIR")
  endif()
  set(root "${WORK_DIR}/src")
  file(REMOVE_RECURSE "${root}")
  write_source("${root}" "platform/bytes.h" "#pragma once")
  write_source("${root}" "platform/format.cpp" "#include \"state/context.h\"")
  write_source("${root}" "platform/paths.cpp" "#include \"support/test_support.h\"")
  write_source("${root}" "state/context.h" "#include \"platform/bytes.h\"")
  write_source("${root}" "app/open_file.h" "#include <string>\n#include \"state/context.h\"")
  write_source("${root}" "stream/listing.cpp"
               "#include \"state/context.h\"\n  #  include \"app/open_file.h\" // paging")
  write_source("${root}" "misc/tool.cpp" "#include \"platform/bytes.h\"")
  check_layers("${root}" violations files)
  set(expected
      "src/misc/tool.cpp: folder src/misc/ has no layer in tests/layers.cmake"
      "src/platform/format.cpp: #include \"state/context.h\": platform/ may include only platform"
      "src/stream/listing.cpp: #include \"app/open_file.h\": stream/ may include only platform, state, ifo, stream")
  if(NOT files EQUAL 7)
    message(FATAL_ERROR "self test: ${files} sources read, expected 7")
  endif()
  if(NOT "${violations}" STREQUAL "${expected}")
    string(REPLACE ";" "\n  " got "${violations}")
    string(REPLACE ";" "\n  " want "${expected}")
    message(FATAL_ERROR "self test: reported\n  ${got}\nexpected\n  ${want}")
  endif()
  list(LENGTH violations n)
  message(STATUS "self test: the ${n} forbidden includes of the sample tree are reported")
endfunction()

check_rules_are_ordered()
if(SELF_TEST)
  run_self_test()
  return()
endif()
if(NOT SOURCE_DIR OR NOT IS_DIRECTORY "${SOURCE_DIR}")
  message(FATAL_ERROR "layers.cmake: SOURCE_DIR must name the src/ folder")
endif()
check_layers("${SOURCE_DIR}" violations files)
if(files EQUAL 0)
  message(FATAL_ERROR "layers.cmake: no sources found under ${SOURCE_DIR}")
endif()
if(violations)
  list(LENGTH violations n)
  string(REPLACE ";" "\n  " text "${violations}")
  message(FATAL_ERROR "${n} include(s) break the layers of src/:\n  ${text}")
endif()
message(STATUS "${files} sources of src/: every include points down")
