# The libraries of the system, each as an imported target. They are global, so that a project that
# takes kelpix in with add_subdirectory links kelpix:: targets without finding these again.

set(CMAKE_FIND_PACKAGE_TARGETS_GLOBAL ON)
set(OpenGL_GL_PREFERENCE GLVND)

find_package(OpenGL REQUIRED COMPONENTS OpenGL)
find_package(GLEW REQUIRED)
find_package(JPEG REQUIRED)
find_package(PNG REQUIRED)
find_package(Freetype REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(openal REQUIRED IMPORTED_TARGET GLOBAL openal)
pkg_check_modules(alut REQUIRED IMPORTED_TARGET GLOBAL freealut)
pkg_check_modules(vorbisfile REQUIRED IMPORTED_TARGET GLOBAL vorbisfile)
pkg_check_modules(vorbisenc REQUIRED IMPORTED_TARGET GLOBAL vorbisenc)

# CMake's own FindFLTK prefers the static library and looks for fluid, which kelpix does not use.
if(NOT TARGET FLTK::gl)
    find_path(FLTK_INCLUDE_DIR FL/Fl.H REQUIRED)
    find_library(FLTK_LIBRARY fltk REQUIRED)
    find_library(FLTK_GL_LIBRARY fltk_gl REQUIRED)
    add_library(FLTK::fltk UNKNOWN IMPORTED GLOBAL)
    set_target_properties(FLTK::fltk PROPERTIES
        IMPORTED_LOCATION ${FLTK_LIBRARY}
        INTERFACE_INCLUDE_DIRECTORIES ${FLTK_INCLUDE_DIR})
    add_library(FLTK::gl UNKNOWN IMPORTED GLOBAL)
    set_target_properties(FLTK::gl PROPERTIES
        IMPORTED_LOCATION ${FLTK_GL_LIBRARY}
        INTERFACE_LINK_LIBRARIES FLTK::fltk)
endif()
