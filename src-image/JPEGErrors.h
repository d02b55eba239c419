#pragma once

#include <csetjmp>
#include <cstddef>
#include <cstdio>

// jpeglib.h needs size_t and FILE declared before it.
#include <jpeglib.h>

/// libjpeg's error manager with a jump target; without it libjpeg ends the process on an error.
/// Private to this library.
struct my_error_mgr {
    /// Must be the first member: libjpeg's pointer to it is converted to my_error_mgr.
    jpeg_error_mgr pub;
    std::jmp_buf setjmp_buffer;
};

/// Prints the library's message on standard error and jumps to setjmp_buffer.
[[noreturn]] void my_error_exit(j_common_ptr jpeg);

/// Sets the manager up: the library's own messages, and my_error_exit.
/// \return the value for the err member of a libjpeg structure
jpeg_error_mgr* installErrors(my_error_mgr& errors);
