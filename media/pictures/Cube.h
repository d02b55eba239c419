#pragma once

#include "File.h"

namespace media {

/// Makes data/cube.obj with its materials data/cube.mtl and their map data/cube.png.
std::vector<File> makeCube(const Request& request);

} // namespace media
