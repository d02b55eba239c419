#pragma once

#include "ImageFiles.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

/// One of the fonts that the fuzzer starts from: small ones of every kind, in which A is a triangle
/// or some pixels. fuzz/font_seeds.py makes them.
inline Bytes fontSeed(const std::string& name)
{
    constexpr std::ptrdiff_t HEIGHT_BYTES = 2; // before the font
    std::ifstream file(KELPIX_CORPUS "/font/" + name, std::ios::binary);
    const Bytes input{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (input.size() < HEIGHT_BYTES) {
        ADD_FAILURE() << "there is no seed " << name;
        return {};
    }
    return {input.begin() + HEIGHT_BYTES, input.end()};
}
