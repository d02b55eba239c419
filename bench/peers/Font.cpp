#include "Peers.h"

#include <FTGL/ftgl.h>

namespace bench::peers {

std::vector<Contender> fonts(const std::string& path, unsigned height)
{
    return {{.name = "ftgl", .run = [path, height] {
                 FTGLTextureFont font(path.c_str());
                 font.FaceSize(height, 96);
                 // Asking for its width makes a glyph's texture.
                 for (int c = 1; c < 128; ++c) {
                     const char text[] = {static_cast<char>(c), '\0'};
                     font.Advance(text);
                 }
             }}};
}

} // namespace bench::peers
