#pragma once

/// Lets a program go on when nobody reads its messages: it is not ended by a reader that goes away
/// (SIGPIPE is ignored from here on), and no file or connection that it opens takes the place of a
/// standard stream that its caller has closed. For the start of main.
void secureStandardStreams();
