# Installs the build into a scratch prefix, then builds a small C program against it twice:
# through find_package(stats_mng) and, on Linux, through pkg-config; both programs are run.
set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "failed (${status}): ${ARGN}\n${out}\n${err}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
foreach(installed include/stats_mng.h share/stats_mng/stats_mng.msg lib/cmake/stats_mng/stats_mngConfig.cmake lib/pkgconfig/stats_mng.pc)
  if(NOT EXISTS ${prefix}/${installed})
    message(FATAL_ERROR "not installed: ${installed}")
  endif()
endforeach()

# A sanitized library needs its runtime in the program that loads it.
set(sanitize_flags "")
if(SANITIZE)
  set(sanitize_flags -fsanitize=${SANITIZE})
endif()
set(configure ${CMAKE_COMMAND} -S ${CONSUMER_SOURCE} -B ${WORK_DIR}/build -G Ninja
    -Dstats_mng_DIR=${prefix}/lib/cmake/stats_mng "-DCMAKE_C_FLAGS=${sanitize_flags}"
    "-DCMAKE_EXE_LINKER_FLAGS=${sanitize_flags}")
if(WINDOWS)
  list(APPEND configure -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN})
endif()
run(${configure})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)

if(WINDOWS)
  # The program finds the DLL beside itself, as Windows programs do.
  file(COPY ${prefix}/bin/stats_mng.dll DESTINATION ${WORK_DIR}/build)
  execute_process(COMMAND ${EMULATOR} ${WORK_DIR}/build/consumer.exe
                  OUTPUT_FILE ${WORK_DIR}/consumer.out ERROR_FILE ${WORK_DIR}/consumer.err
                  RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    file(READ ${WORK_DIR}/consumer.out out)
    message(FATAL_ERROR "consumer.exe failed (${status}): ${out}")
  endif()
else()
  run(${WORK_DIR}/build/consumer)
  # pkg-config: compile and link by the flags it gives, run with the installed library.
  set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
  execute_process(COMMAND pkg-config --cflags --libs stats_mng OUTPUT_VARIABLE flags
                  RESULT_VARIABLE status OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "pkg-config does not know stats_mng")
  endif()
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(cc -std=c99 -Wall -Werror ${sanitize_flags} ${CONSUMER_SOURCE}/consumer.c ${flags}
      -o ${WORK_DIR}/consumer_pc)
  set(ENV{LD_LIBRARY_PATH} ${prefix}/lib)
  run(${WORK_DIR}/consumer_pc)
endif()
message(STATUS "the installed tree serves its consumers")
