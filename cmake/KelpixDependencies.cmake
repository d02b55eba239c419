# Finds the libraries of the system that kelpix stands on, each as an imported target. The build
# includes this file, and so does the installed package, for the projects that find it.
# Sets kelpix_missing to the targets for which there is no library.

find_package(PkgConfig QUIET)
block(PROPAGATE kelpix_missing)
    # Global, so that a project that takes kelpix in with add_subdirectory links kelpix:: targets
    # without finding these again.
    set(CMAKE_FIND_PACKAGE_TARGETS_GLOBAL ON)
    set(OpenGL_GL_PREFERENCE GLVND)

    find_package(OpenGL QUIET COMPONENTS OpenGL)
    find_package(GLEW QUIET)
    find_package(JPEG QUIET)
    find_package(PNG QUIET)
    find_package(Freetype QUIET)
    find_package(X11 QUIET)
    if(PkgConfig_FOUND)
        pkg_check_modules(openal QUIET IMPORTED_TARGET GLOBAL openal)
        pkg_check_modules(alut QUIET IMPORTED_TARGET GLOBAL freealut)
        pkg_check_modules(vorbisfile QUIET IMPORTED_TARGET GLOBAL vorbisfile)
    endif()

    # CMake's own FindFLTK prefers the static library and looks for fluid, which kelpix does not use.
    if(NOT TARGET FLTK::gl)
        find_path(FLTK_INCLUDE_DIR FL/Fl.H)
        find_library(FLTK_LIBRARY fltk)
        find_library(FLTK_GL_LIBRARY fltk_gl)
        mark_as_advanced(FLTK_INCLUDE_DIR FLTK_LIBRARY FLTK_GL_LIBRARY)
        if(FLTK_INCLUDE_DIR AND FLTK_LIBRARY AND FLTK_GL_LIBRARY)
            add_library(FLTK::fltk UNKNOWN IMPORTED GLOBAL)
            set_target_properties(FLTK::fltk PROPERTIES
                IMPORTED_LOCATION ${FLTK_LIBRARY}
                INTERFACE_INCLUDE_DIRECTORIES ${FLTK_INCLUDE_DIR})
            add_library(FLTK::gl UNKNOWN IMPORTED GLOBAL)
            set_target_properties(FLTK::gl PROPERTIES
                IMPORTED_LOCATION ${FLTK_GL_LIBRARY}
                INTERFACE_LINK_LIBRARIES FLTK::fltk)
        endif()
    endif()

    set(kelpix_missing "")
    foreach(target OpenGL::GL OpenGL::GLU GLEW::GLEW JPEG::JPEG PNG::PNG Freetype::Freetype
            PkgConfig::openal PkgConfig::alut PkgConfig::vorbisfile FLTK::gl X11::X11)
        if(NOT TARGET ${target})
            list(APPEND kelpix_missing ${target})
        endif()
    endforeach()
endblock()
