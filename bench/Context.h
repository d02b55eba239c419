#pragma once

#include <functional>

namespace bench {

/// Makes a GL context of its own current, with a buffer of 740 by 740 pixels, as the scene's window
/// has. It needs no display and lives as long as the process. Ends the program with status 1 where
/// there is none.
/// \return makes it current again
std::function<void()> makeContext();

} // namespace bench
