# Run by CPack once it has made the packages. What a .deb consists of has the modes that the umask of the
# builder has left it; here it gets those that ar gives everything.

foreach(package ${CPACK_PACKAGE_FILES})
    set(members ${package}.members)
    file(REMOVE_RECURSE ${members})
    file(MAKE_DIRECTORY ${members})
    execute_process(COMMAND ${CPACK_KELPIX_AR} t ${package}
        OUTPUT_VARIABLE names COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "[^\n]+" names "${names}") # in their order, which dpkg relies on
    execute_process(COMMAND ${CPACK_KELPIX_AR} x ${package}
        WORKING_DIRECTORY ${members} COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE ${package})
    execute_process(COMMAND ${CPACK_KELPIX_AR} rcD ${package} ${names}
        WORKING_DIRECTORY ${members} COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE_RECURSE ${members})
endforeach()
