# One place for what every target has in common.

add_library(kelpix_options INTERFACE)
target_compile_features(kelpix_options INTERFACE cxx_std_20)
# The scene's arithmetic is fixed to the bit. Contraction would fuse products with sums, and g++ 12
# packs neighboring double-float-double statements without the rounding in between.
target_compile_options(kelpix_options INTERFACE -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(kelpix_options INTERFACE -fno-tree-slp-vectorize)
endif()
target_compile_options(kelpix_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # For g++ it is no part of -Wconversion.
    target_compile_options(kelpix_options INTERFACE -Wno-sign-conversion)
    # No class has a virtual destructor: tests delete objects as what they are. They also print a
    # text that is null, and index by character.
    target_compile_options(kelpix_options INTERFACE
        $<$<BOOL:$<TARGET_PROPERTY:KELPIX_IS_TEST>>:-Wno-delete-non-abstract-non-virtual-dtor>
        $<$<BOOL:$<TARGET_PROPERTY:KELPIX_IS_TEST>>:-Wno-format-security>
        $<$<BOOL:$<TARGET_PROPERTY:KELPIX_IS_TEST>>:-Wno-char-subscripts>)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # A false alarm on sums of std::string (GCC bug 105329).
    target_compile_options(kelpix_options INTERFACE -Wno-restrict)
endif()
if(KELPIX_WERROR)
    target_compile_options(kelpix_options INTERFACE -Werror)
endif()
if(KELPIX_SANITIZE)
    target_compile_definitions(kelpix_options INTERFACE
        $<$<BOOL:$<TARGET_PROPERTY:KELPIX_IS_TEST>>:KELPIX_SANITIZED>)
    target_compile_options(kelpix_options INTERFACE
        $<$<NOT:$<BOOL:$<TARGET_PROPERTY:KELPIX_IS_TEST>>>:-O1>
        -fsanitize=address,undefined -fno-sanitize-recover=undefined -fsized-deallocation)
    # In the code of the tests themselves these would look at every access, which makes them a third
    # slower to compile; AddressSanitizer sees most of it there too.
    target_compile_options(kelpix_options INTERFACE
        $<$<BOOL:$<TARGET_PROPERTY:KELPIX_IS_TEST>>:-fno-sanitize=null,alignment,object-size,vptr>)
    target_link_options(kelpix_options INTERFACE -fsanitize=address,undefined)
    # g++ counts it apart; clang's undefined holds it.
    target_compile_options(kelpix_options INTERFACE
        -fsanitize=float-cast-overflow -fno-sanitize-recover=float-cast-overflow)
endif()

if(KELPIX_FUZZ)
    # Source coverage as well: fuzz/run tells how much of a reader its inputs reach, and names the
    # file for that; who runs a program by hand gets none.
    target_compile_options(kelpix_options INTERFACE
        -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined
        -fsized-deallocation -fprofile-instr-generate=/dev/null -fcoverage-mapping)
    target_link_options(kelpix_options INTERFACE
        -fsanitize=address,undefined -fprofile-instr-generate=/dev/null)
endif()

# kelpix_prefixed_headers(TARGET file...)
# Lets users of the target include these headers of the calling folder as <kelpix/NAME.h>, as they can
# where kelpix is installed. A header of that path in the build folder includes the real one.
function(kelpix_prefixed_headers target)
    foreach(header ${ARGN})
        file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/include/kelpix/${header}
            CONTENT "#include \"${CMAKE_CURRENT_SOURCE_DIR}/${header}\"\n")
    endforeach()
    target_include_directories(${target} INTERFACE $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>)
endfunction()

# kelpix_library(NAME SOURCES file... HEADERS file... [PUBLIC target...] [PRIVATE target...])
# Makes the static library kelpix::NAME of the calling folder. Its headers are included by base name,
# "Window.h", or as <kelpix/Window.h>; the target all_verify_interface_header_sets compiles each of
# them alone. A header that is not listed is private to the project, and is not installed.
function(kelpix_library name)
    cmake_parse_arguments(PARSE_ARGV 1 lib "" "" "SOURCES;HEADERS;PUBLIC;PRIVATE")
    add_library(kelpix_${name} STATIC ${lib_SOURCES})
    add_library(kelpix::${name} ALIAS kelpix_${name})
    target_sources(kelpix_${name} PUBLIC FILE_SET HEADERS FILES ${lib_HEADERS})
    kelpix_prefixed_headers(kelpix_${name} ${lib_HEADERS})
    target_link_libraries(kelpix_${name}
        PUBLIC ${lib_PUBLIC}
        PRIVATE ${lib_PRIVATE} $<BUILD_INTERFACE:kelpix_options>)
    target_compile_features(kelpix_${name} PUBLIC cxx_std_20)
    # A failed assertion names its source by the place in the project: a package must not hold the
    # path of the folder in which it was built.
    target_compile_options(kelpix_${name} PRIVATE -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
    set_target_properties(kelpix_${name} PROPERTIES
        EXPORT_NAME ${name}
        CXX_EXTENSIONS OFF
        VERIFY_INTERFACE_HEADER_SETS ON)
endfunction()

# kelpix_program(NAME SOURCES file... [LIBRARIES target...])
function(kelpix_program name)
    cmake_parse_arguments(PARSE_ARGV 1 prog "" "" "SOURCES;LIBRARIES")
    add_executable(${name} ${prog_SOURCES})
    target_link_libraries(${name} PRIVATE ${prog_LIBRARIES} $<BUILD_INTERFACE:kelpix_options>)
    set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
endfunction()
