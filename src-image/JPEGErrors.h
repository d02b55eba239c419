#pragma once

#include <csetjmp>
#include <cstddef>
#include <cstdio>

// jpeglib.h needs size_t and FILE declared before it.
#include <jpeglib.h>

/// libjpeg's error manager with the place to go to when the library gives up. By itself the library
/// would end the process. Private to this library.
struct my_error_mgr {
    jpeg_error_mgr pub; ///< first: the pointer that the library knows is one to this
    std::jmp_buf setjmp_buffer;
};

/// Prints the library's message on standard error and jumps to setjmp_buffer.
[[noreturn]] void my_error_exit(j_common_ptr jpeg);

/// Sets the manager up: the library's own messages, and my_error_exit.
/// \return what a structure of the library takes as its err
jpeg_error_mgr* installErrors(my_error_mgr& errors);
