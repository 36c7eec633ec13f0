# cmake -D PROGRAM=... -D EXPECTED=... -P compare_output.cmake: runs the program, fails unless it prints exactly the file.
execute_process(COMMAND "${PROGRAM}" OUTPUT_VARIABLE printed RESULT_VARIABLE code)
file(READ "${EXPECTED}" expected)
if(NOT code EQUAL 0 OR NOT printed STREQUAL expected)
    message(FATAL_ERROR "exit code ${code}; printed:\n${printed}\nexpected:\n${expected}")
endif()
