# cmake -D DOXYFILE=FILE -P write-reference.cmake: writes the reference, or says what that needs.

find_program(DOXYGEN doxygen)
if(NOT DOXYGEN)
    message(FATAL_ERROR "The reference needs Doxygen: apt-get install doxygen, and try again.")
endif()
execute_process(COMMAND ${DOXYGEN} ${DOXYFILE} COMMAND_ERROR_IS_FATAL ANY)
