#include "Assets.h"

#include "Bubble.h"
#include "Bubbles.h"
#include "Cube.h"
#include "Dance.h"
#include "Fish.h"
#include "Font.h"
#include "Squid.h"
#include "Voice.h"
#include "Water.h"

#include <algorithm>

namespace media {

const std::vector<Asset>& assets()
{
    static const std::vector<Asset> table = {
        {"voice", "sound/magpie_vocal.ogg, the song and the scene's clock", makeVoice},
        {"water", "data/underwater.jpg, the picture behind everything", makeWater},
        {"bubbles", "sound/bubbles_sound.ogg, the loop beneath the song", makeBubbles},
        {"dance", "data/mocap.txt and its two recordings, the figures' paths", makeDance},
        {"squid", "data/squid.png, the creature's picture", makeSquid},
        {"fish", "data/fish0.png, the sprite of every fish", makeFish},
        {"bubble", "data/bubble.png, the sprite of every bubble", makeBubble},
        {"cube", "data/cube.obj, its materials and its map", makeCube},
        {"font", "fonts/ChalkboardBold.ttf and its license", makeFont},
    };
    return table;
}

const Asset& danceAsset()
{
    return *std::find_if(assets().begin(), assets().end(),
                         [](const Asset& asset) { return asset.make == makeDance; });
}

} // namespace media
