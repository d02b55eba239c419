#pragma once

/// Lets a program go on when nobody reads its messages. Ignores SIGPIPE, so that a reader that goes
/// away does not end the program; opens standard streams that the caller has closed on /dev/null,
/// so that no other file takes their place. Call it at the start of main.
void secureStandardStreams();
