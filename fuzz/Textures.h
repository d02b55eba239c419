#pragma once

namespace fuzz {

/// For targets whose code makes textures: OpenGL is nullgl, and the pixels of each texture have to
/// be readable as far as OpenGL would read them. One of these lives during an input. At its end all
/// textures and display lists of the input have to be deleted.
class TextureCheck {
public:
    TextureCheck();
    TextureCheck(const TextureCheck&) = delete;
    TextureCheck& operator=(const TextureCheck&) = delete;
    ~TextureCheck();
};

} // namespace fuzz
