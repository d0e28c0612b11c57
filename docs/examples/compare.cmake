# Compares SOURCE with the program that PAGE prints. Then runs PROGRAM in the emptied FOLDER and compares its output
# with the one text block of PAGE; 77 means "skipped".
file(READ ${PAGE} page)
file(READ ${SOURCE} source)
string(FIND "${page}" "\n```cpp\n${source}```\n" at)
if(at EQUAL -1)
  message(FATAL_ERROR "${PAGE} prints another program than ${SOURCE}; scripts/docs copies the source into the page")
endif()

file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
foreach(variable QELLIB10_REGISTRY_DIR QELLIB10_STATE_DIR QELLIB10_PDF_DIR)
  set(ENV{${variable}} ${FOLDER})
endforeach()
execute_process(COMMAND ${PROGRAM} WORKING_DIRECTORY ${FOLDER} TIMEOUT 60
  OUTPUT_VARIABLE printed ERROR_VARIABLE complaint RESULT_VARIABLE result)
if(result EQUAL 77)
  message(${printed})
  return()
endif()

if(NOT page MATCHES "\n```text\n([^`]*)```")
  message(FATAL_ERROR "${PAGE} does not say what the program prints")
endif()
if(NOT result EQUAL 0 OR NOT printed STREQUAL CMAKE_MATCH_1 OR NOT complaint STREQUAL "")
  message(FATAL_ERROR "result ${result}, printed\n${printed}and complained\n${complaint}but the page says\n${CMAKE_MATCH_1}")
endif()
