#include "ImageDecoder.h"
#include "JPEGErrors.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>

namespace {

/// The library's own scripts for progressive files have 10 scans, those of four components (CMYK)
/// 18. A scan takes few bytes of a file, and the time of a pass over the whole image.
constexpr std::int64_t MAX_SCANS = 100;

/// In a large image all scans together may pass over this many pixels; MIN_SCANS are
/// always allowed.
constexpr std::int64_t MAX_SCANNED = std::int64_t{1} << 32;
constexpr std::int64_t MIN_SCANS = 18;

int mostScans(const jpeg_decompress_struct& jpeg)
{
    const auto pixels = std::int64_t{jpeg.image_width} * jpeg.image_height;
    return static_cast<int>(std::clamp(MAX_SCANNED / pixels, MIN_SCANS, MAX_SCANS));
}

// The library reports an error by longjmp, which skips destructors: these functions have no local
// that needs one.
class JPEGDecoder : public ImageDecoder {
public:
    explicit JPEGDecoder(const DecoderOptions& options) : memory_(options.memory)
    {
        jpeg_.err = installErrors(errors_);
        jpeg_.client_data = this;
        progress_.progress_monitor = stopAfterManyScans;
    }

    ~JPEGDecoder() override { jpeg_destroy_decompress(&jpeg_); }

    bool readHeader(std::FILE* file) override
    {
        if (setjmp(errors_.setjmp_buffer) != 0) {
            return false;
        }
        jpeg_create_decompress(&jpeg_);
        jpeg_.progress = &progress_;
        if (memory_ > 0) {
            jpeg_.mem->max_memory_to_use = memory_;
        }
        jpeg_stdio_src(&jpeg_, file);
        jpeg_read_header(&jpeg_, TRUE);
        jpeg_calc_output_dimensions(&jpeg_);
        frame_.width = jpeg_.output_width;
        frame_.height = jpeg_.output_height;
        frame_.channels = static_cast<std::size_t>(jpeg_.output_components);
        return true;
    }

    bool start() override
    {
        if (setjmp(errors_.setjmp_buffer) != 0) {
            return false;
        }
        jpeg_start_decompress(&jpeg_);
        return true;
    }

    bool readRows(unsigned char* pixels) override
    {
        const std::size_t rowBytes = frame_.width * frame_.channels;
        unread_ = rowBytes * frame_.height;
        if (setjmp(errors_.setjmp_buffer) != 0) {
            std::fill_n(pixels, unread_, static_cast<unsigned char>(0));
            return false;
        }
        while (jpeg_.output_scanline < jpeg_.output_height) {
            JSAMPROW row = pixels + (unread_ - rowBytes);
            jpeg_read_scanlines(&jpeg_, &row, 1);
            unread_ -= rowBytes;
        }
        jpeg_finish_decompress(&jpeg_);
        return true;
    }

    const char* exceededLimit() const override { return exceededLimit_.data(); }

private:
    /// libjpeg's progress callback.
    static void stopAfterManyScans(j_common_ptr jpeg)
    {
        auto& decoder = *static_cast<JPEGDecoder*>(jpeg->client_data);
        const int most = mostScans(decoder.jpeg_);
        if (decoder.jpeg_.input_scan_number > most) {
            std::snprintf(decoder.exceededLimit_.data(), decoder.exceededLimit_.size(),
                          "More than %d scans", most);
            std::longjmp(decoder.errors_.setjmp_buffer, 1);
        }
    }

    my_error_mgr errors_ = {};
    jpeg_progress_mgr progress_ = {};
    jpeg_decompress_struct jpeg_ = {};
    const long memory_;
    std::size_t unread_ = 0; ///< bytes at the start of the pixels that no row has reached
    std::array<char, 32> exceededLimit_ = {};
};

} // namespace

std::unique_ptr<ImageDecoder> newJPEGDecoder(const DecoderOptions& options)
{
    return std::unique_ptr<ImageDecoder>(new (std::nothrow) JPEGDecoder(options));
}
