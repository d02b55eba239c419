#pragma once

#include <cstddef>
#include <cstdint>

/// Makes one checksum of a mutated file right again, in place. One source for each format that has
/// checksums; a target that links it links Mutator.cpp too, which calls this for the whole file.
/// \param at  where the next part of the file with a checksum starts, or may start; 0 at first
/// \return where to go on, behind \p at; \p size or more at the end
std::size_t repair(std::uint8_t* file, std::size_t size, std::size_t at);
