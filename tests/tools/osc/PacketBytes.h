#pragma once

#include "Packet.h"

#include <gmock/gmock.h>
#include <string>
#include <string_view>
#include <vector>

/// Packets are written out byte by byte: "..."sv holds zeros, too.
using namespace std::string_view_literals;

inline osc::Bytes bytesOf(std::string_view text)
{
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

/// A number in four bytes, the highest one first.
inline std::string fourBytes(std::uint32_t number)
{
    std::string bytes;
    for (const int shift : {24, 16, 8, 0}) {
        bytes += static_cast<char>(number >> shift);
    }
    return bytes;
}

/// An element of a bundle: its size, and itself.
inline std::string element(std::string_view bytes)
{
    return fourBytes(static_cast<std::uint32_t>(bytes.size())).append(bytes);
}

inline std::string bundle(osc::TimeTag due, const std::vector<std::string_view>& elements)
{
    std::string bytes("#bundle\0"sv);
    bytes += fourBytes(static_cast<std::uint32_t>(due >> 32));
    bytes += fourBytes(static_cast<std::uint32_t>(due));
    for (const std::string_view bytesOfOne : elements) {
        bytes += element(bytesOfOne);
    }
    return bytes;
}
