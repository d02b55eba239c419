// Decoding images of 2048 by 2048 pixels into a buffer with the bottom row first.

#include "Bare.h"
#include "Data.h"
#include "Job.h"
#include "Peers.h"

#include "EncodePicture.h"
#include "ImageJPEG.h"
#include "ImagePNG.h"
#include "Random.h"

#include <cmath>
#include <memory>
#include <vector>

namespace {

constexpr std::size_t SIDE = 2048;

using bench::Pixels;

/// A smooth image with waves and a little noise, as photographs have.
media::Bitmap newPicture(int channels)
{
    media::Bitmap picture;
    picture.width = picture.height = static_cast<int>(SIDE);
    picture.channels = channels;
    media::Random random(1);
    for (std::size_t y = 0; y < SIDE; ++y) {
        for (std::size_t x = 0; x < SIDE; ++x) {
            const double wave =
                std::sin(0.01 * static_cast<double>(x) + std::sin(0.02 * static_cast<double>(y)));
            for (int k = 0; k < channels; ++k) {
                const double level = 128 + 40 * wave + 20 * k + random.between(-8, 8);
                picture.bytes.push_back(static_cast<unsigned char>(level));
            }
        }
    }
    return picture;
}

std::uint64_t hashOf(const unsigned char* pixels, std::size_t channels)
{
    return bench::hashOf(pixels, SIDE * SIDE * channels);
}

/// The project's reader, one object for all reads.
template<typename Image>
bench::Contender own(const std::string& path, std::size_t channels)
{
    const auto image = std::make_shared<Image>();
    const auto read = [image, path] { image->read(path.c_str()); };
    return {.name = "kelpix", .run = read, .result = [=] {
                read();
                return hashOf(image->buffer, channels);
            }};
}

bench::Contender with(const char* name, const std::string& path, std::size_t channels,
                      Pixels decode(const std::string&))
{
    return {.name = name,
            .run = [=] { decode(path); },
            .result = [=] { return hashOf(decode(path).get(), channels); }};
}

bench::Job jpeg()
{
    const std::string path = bench::writeData("picture.jpg", media::encodeJpeg(newPicture(3), 90));
    bench::Job job = {"JPEG, 2048 x 2048",
                      "pixel",
                      SIDE * SIDE,
                      {own<ImageJPEG>(path, 3), with("lower bound", path, 3, bench::decodeJpeg)}};
    bench::append(job.contenders, bench::peers::jpegReaders(path));
    return job;
}

bench::Job png()
{
    const std::string path = bench::writeData("picture.png", media::encodePng(newPicture(4)));
    bench::Job job = {"PNG, 2048 x 2048, RGBA",
                      "pixel",
                      SIDE * SIDE,
                      {own<ImagePNG>(path, 4), with("lower bound", path, 4, bench::decodePng)}};
    bench::append(job.contenders, bench::peers::pngReaders(path));
    return job;
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, {jpeg, png});
}
