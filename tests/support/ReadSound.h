#pragma once

#include <string>
#include <vector>

/// An Ogg Vorbis file as libvorbisfile decodes it.
struct Track {
    int channels = 0; ///< 0 when the file cannot be read
    long rate = 0;
    long serial = 0;
    long long samples = 0;               ///< per channel, as the stream says
    std::vector<std::vector<float>> pcm; ///< by channel, -1 .. 1

    double seconds() const { return static_cast<double>(samples) / static_cast<double>(rate); }
};

Track readOgg(const std::string& path);

/// The root of the mean square of both channels between two times in seconds.
double level(const Track& track, double from, double to);

/// Decibels below full scale, at least -200.
double decibels(double amplitude);
