#pragma once

#include "File.h"

namespace media {

/// Makes data/mocap.txt, the index, with data/dance.txt and data/rehearsal.txt.
std::vector<File> makeDance(const Request& request);

} // namespace media
