# Every source of the project is formatted by the root .clang-format.
file(GLOB_RECURSE sources
  ${SOURCE_DIR}/include/*.h ${SOURCE_DIR}/src/*.h ${SOURCE_DIR}/src/*.cpp ${SOURCE_DIR}/src/*.inc
  ${SOURCE_DIR}/tools/*.cpp ${SOURCE_DIR}/tests/*.h ${SOURCE_DIR}/tests/*.cpp ${SOURCE_DIR}/tests/*.c
  ${SOURCE_DIR}/bench/*.cpp ${SOURCE_DIR}/fuzz/*.cpp)
execute_process(COMMAND ${CLANG_FORMAT} --dry-run --Werror ${sources}
                WORKING_DIRECTORY ${SOURCE_DIR} RESULT_VARIABLE status ERROR_VARIABLE complaints)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "not formatted by .clang-format (run clang-format -i):\n${complaints}")
endif()
