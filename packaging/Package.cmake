# The Debian packages: `cpack -G DEB` in the build folder makes them, one for each component.

set(KELPIX_MAINTAINER "The kelpix authors <kelpix@localhost>" CACHE STRING
    "Who answers for the packages: a name and a mail address")
# The date of this version, in seconds since 1970: that of the Debian changelog, and of every file in the
# packages, so that two builds of the same sources are the same bytes. A builder can set another one in
# the environment, as reproducible-builds.org/specs/source-date-epoch says.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
    set(ENV{SOURCE_DATE_EPOCH} 1795219200) # 2026-11-21
endif()
string(TIMESTAMP KELPIX_CHANGELOG_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_BINARY_DIR}/CPackDate.cmake)
file(CONFIGURE OUTPUT ${CPACK_PROJECT_CONFIG_FILE}
    CONTENT "set(ENV{SOURCE_DATE_EPOCH} $ENV{SOURCE_DATE_EPOCH})\n")

# Licenses, as a Debian package says them.
file(READ ${PROJECT_SOURCE_DIR}/LICENSE license)
string(REGEX REPLACE "^.*\n(Permission is hereby)" "\\1" license "${license}")
string(STRIP "${license}" license)
string(REGEX REPLACE "\n\n" "\n.\n" license "${license}")
string(REPLACE "\n" "\n " KELPIX_LICENSE_TEXT " ${license}")
file(READ ${KELPIX_FONT_LICENSE} font_license)
string(REGEX REPLACE "^.*\nFiles: \\*\n" "" font_license "${font_license}")
string(REGEX REPLACE "\n\n.*$" "" KELPIX_FONT_COPYRIGHT "${font_license}")
configure_file(copyright.in copyright @ONLY)

configure_file(changelog.in changelog @ONLY)
kelpix_gzip(${CMAKE_CURRENT_BINARY_DIR}/changelog ${CMAKE_CURRENT_BINARY_DIR}/doc/changelog.gz)
kelpix_gzip(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${CMAKE_CURRENT_BINARY_DIR}/doc/NEWS.gz)
foreach(package ${packages})
    install(FILES
        ${CMAKE_CURRENT_BINARY_DIR}/copyright
        ${CMAKE_CURRENT_BINARY_DIR}/doc/changelog.gz
        ${CMAKE_CURRENT_BINARY_DIR}/doc/NEWS.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package}
        COMPONENT ${package})
endforeach()

# What a project that uses the framework needs: the development packages of the build.
file(STRINGS ${PROJECT_SOURCE_DIR}/cmake/packages.txt lines REGEX "^build +(pkg-config|[^ ]+-dev)( |$)")
list(TRANSFORM lines REPLACE "^build +([^ ]+).*" "\\1")
list(JOIN lines ", " dev_depends)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kelpix)
set(CPACK_PACKAGE_CONTACT "${KELPIX_MAINTAINER}")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL ${packages})
set(CPACK_STRIP_FILES ON)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/package-modes.cmake)
set(CPACK_KELPIX_AR ${CMAKE_AR})
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Each package has a description of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_KELPIX_PACKAGE_NAME kelpix)
set(CPACK_DEBIAN_KELPIX_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_KELPIX_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_KELPIX_PACKAGE_DEPENDS fonts-comic-neue) # for kelpix-media
set(CPACK_DEBIAN_KELPIX_PACKAGE_RECOMMENDS ffmpeg) # encodes kelpix-record's films
set(CPACK_DEBIAN_KELPIX_PACKAGE_SUGGESTS "alsa-utils, cage, xinit, xwayland") # for the kiosk
set(CPACK_DEBIAN_KELPIX_DESCRIPTION "real-time underwater scene
One hundred fish school in an OpenGL window, bubbles rise, and three figures
dance a recorded dance in step with a voice. It plays its own media or any
folder of yours, on a desktop or unattended.")

set(CPACK_DEBIAN_KELPIX-WALL_PACKAGE_NAME kelpix-wall)
set(CPACK_DEBIAN_KELPIX-WALL_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_KELPIX-WALL_PACKAGE_SHLIBDEPS ON)
# The media are in kelpix; openmpi-bin starts the ranks.
set(CPACK_DEBIAN_KELPIX-WALL_PACKAGE_DEPENDS "kelpix (= ${PROJECT_VERSION}), openmpi-bin")
set(CPACK_DEBIAN_KELPIX-WALL_PACKAGE_RECOMMENDS openssh-client) # to start them on other machines
set(CPACK_DEBIAN_KELPIX-WALL_DESCRIPTION "underwater scene on a wall of screens
Shows the scene of kelpix on screens or projectors that several machines drive:
each computes the same scene and draws its own part, and all show a frame
together. Open MPI starts the machines and keeps them in step.")

set(CPACK_DEBIAN_KELPIX-LIVE_PACKAGE_NAME kelpix-live)
set(CPACK_DEBIAN_KELPIX-LIVE_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_KELPIX-LIVE_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_KELPIX-LIVE_PACKAGE_DEPENDS "kelpix (= ${PROJECT_VERSION})") # the media
set(CPACK_DEBIAN_KELPIX-LIVE_PACKAGE_SUGGESTS liblo-tools) # sends messages to try it
set(CPACK_DEBIAN_KELPIX-LIVE_DESCRIPTION "underwater scene whose figures follow a person
Plays the scene of kelpix while other programs move its figures and its view
with OSC messages: trackers, controllers, lighting and sound desks. The fish
follow the figures. What was danced can be kept as a recording.")

set(CPACK_DEBIAN_LIBKELPIX-DEV_PACKAGE_NAME libkelpix-dev)
set(CPACK_DEBIAN_LIBKELPIX-DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_LIBKELPIX-DEV_PACKAGE_DEPENDS "${dev_depends}")
set(CPACK_DEBIAN_LIBKELPIX-DEV_PACKAGE_SUGGESTS kelpix)
set(CPACK_DEBIAN_LIBKELPIX-DEV_DESCRIPTION "small scene-graph framework on OpenGL (development files)
Scene nodes and their traversal, camera and frustum tests, textures, shapes,
shaders, text, OBJ models, Ogg sound, and the classes of an underwater scene,
as static libraries with headers, a CMake package and examples.")

include(CPack)
