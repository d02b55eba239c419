#pragma once

#include <functional>

/// The GL calls of one frame, to be made again: the same calls in the same order with the same
/// numbers, without the work of finding them. What the driver takes for a frame is what playing it
/// takes.
///
/// The program's calls come here by the linker's --wrap (bench/CMakeLists.txt). There is one tape.
namespace CallTape {

/// Calls \p draw and notes its GL calls, in place of those that were noted before. Borrows, until
/// the next recording, the matrices that \p draw passes to GL.
void record(const std::function<void()>& draw);

/// Makes the calls again. Needs: the GL context of the recording. What GL is asked for is dropped.
void play();

} // namespace CallTape
