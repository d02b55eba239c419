# The target reference: the API of the framework as web pages, reference/html/index.html in the build
# folder. It looks for Doxygen when it is built, so Doxygen can be installed later than this is configured.

set(folders src-math src-rates src-image src-sound src-font src-cluster src-core kelpix docs README.md CONTRIBUTING.md CHANGELOG.md)
list(TRANSFORM folders PREPEND ${PROJECT_SOURCE_DIR}/)
list(JOIN folders " " KELPIX_REFERENCE_INPUT)
configure_file(${CMAKE_CURRENT_LIST_DIR}/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)
add_custom_target(reference
    COMMAND ${CMAKE_COMMAND} -D DOXYFILE=${PROJECT_BINARY_DIR}/Doxyfile
            -P ${CMAKE_CURRENT_LIST_DIR}/write-reference.cmake
    COMMENT "Writing the reference"
    VERBATIM)
