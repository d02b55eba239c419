#include "ImageDecoder.h"

std::unique_ptr<ImageDecoder> newImageDecoder(IMAGE_TYPE type, const DecoderOptions& options)
{
    switch (type) {
    case IMAGE_JPEG:
        return newJPEGDecoder(options);
    case IMAGE_PNG:
        return newPNGDecoder(options);
    }
    return nullptr;
}
