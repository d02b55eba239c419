#include "ImageDecoder.h"

#include <csetjmp>
#include <new>
#include <png.h>

namespace {

[[noreturn]] void quietError(png_structp png, png_const_charp /*message*/)
{
    png_longjmp(png, 1);
}

void quietWarning(png_structp /*png*/, png_const_charp /*message*/)
{
}

// The library reports an error by longjmp, which skips destructors: these functions have no local
// that needs one.
class PNGDecoder : public ImageDecoder {
public:
    explicit PNGDecoder(const DecoderOptions& options)
        : png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr,
                                      options.saysWhatIsWrong ? nullptr : quietError,
                                      options.saysWhatIsWrong ? nullptr : quietWarning)),
          info_(png_ == nullptr ? nullptr : png_create_info_struct(png_)),
          readsTrailer_(options.readsTrailer)
    {
    }

    ~PNGDecoder() override { png_destroy_read_struct(&png_, &info_, nullptr); }

    /// False when memory ran out.
    bool isComplete() const { return info_ != nullptr; }

    bool readHeader(std::FILE* file) override
    {
        if (setjmp(png_jmpbuf(png_)) != 0) {
            return false;
        }
        png_init_io(png_, file);
        // Keep no texts: a thousand of them, of 8 MB each, may come from a file of 8 MB.
        png_set_chunk_cache_max(png_, 1);
        png_read_info(png_, info_);
        png_set_strip_16(png_);
        png_set_packing(png_);
        passes_ = png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
        frame_.width = png_get_image_width(png_, info_);
        frame_.height = png_get_image_height(png_, info_);
        frame_.channels = png_get_channels(png_, info_);
        frame_.bitDepth = png_get_bit_depth(png_, info_);
        frame_.hasPalette = png_get_color_type(png_, info_) == PNG_COLOR_TYPE_PALETTE;
        return true;
    }

    bool start() override { return true; }

    bool readRows(unsigned char* pixels) override
    {
        if (setjmp(png_jmpbuf(png_)) != 0) {
            return false;
        }
        const std::size_t rowBytes = frame_.width * frame_.channels;
        for (int pass = 0; pass < passes_; ++pass) {
            for (std::size_t row = frame_.height; row > 0; --row) {
                png_read_row(png_, pixels + (row - 1) * rowBytes, nullptr);
            }
        }
        png_read_end(png_, readsTrailer_ ? info_ : nullptr);
        return true;
    }

private:
    png_structp png_;
    png_infop info_;
    const bool readsTrailer_;
    int passes_ = 0; ///< over the rows: 7 of an interlaced image, else 1
};

} // namespace

std::unique_ptr<ImageDecoder> newPNGDecoder(const DecoderOptions& options)
{
    std::unique_ptr<PNGDecoder> decoder(new (std::nothrow) PNGDecoder(options));
    if (decoder == nullptr || !decoder->isComplete()) {
        return nullptr;
    }
    return decoder;
}
