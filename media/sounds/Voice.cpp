#include "Voice.h"

#include "Bird.h"
#include "EncodeSound.h"
#include "Loudness.h"
#include "Reverb.h"
#include "Singer.h"

#include <cmath>
#include <sstream>

namespace media {

namespace {

/// -6.2 dBFS: at one and a half times its loudness, and with the bubbles underneath, it stays 1 dB
/// below full scale.
constexpr float PEAK = 0.489779f;
constexpr double FADE = 0.5;

/// The note a third below in the Dorian mode on D, for the second voice.
int thirdBelow(int pitch)
{
    // The steps of the scale in semitones above D.
    static constexpr std::array<int, 7> SCALE = {0, 2, 3, 5, 7, 9, 10};
    const int above = pitch - 50;
    const int octave = above / 12;
    std::size_t step = 0;
    while (step + 1 < SCALE.size() && SCALE[step + 1] <= above % 12) {
        ++step;
    }
    return step >= 2 ? 50 + octave * 12 + SCALE[step - 2]
                     : 50 + (octave - 1) * 12 + SCALE[step + 5];
}

/// The lines of the piece. How many voices sing grows from verse to verse.
struct Lines {
    std::vector<SungNote> lead;
    std::vector<SungNote> second;
    std::vector<SungNote> low;
};

Lines arrange(const Score& score)
{
    Lines lines;
    // A hum, before the figures come into view.
    lines.low.push_back(
        {0.35 * score.edges, score.prelude - 0.75 * score.edges, 50, Vowel::M, 0.22f});
    for (const Cue& cue : score.cues) {
        const int verse = std::min(cue.verse, 3);
        const float loud = 0.70f + 0.10f * static_cast<float>(verse);
        double at = cue.start;
        for (const Note& note : cue.phrase->melody) {
            const double duration = note.beats * BEAT;
            if (note.pitch != 0) {
                lines.lead.push_back(
                    {at, duration, static_cast<double>(note.pitch), note.vowel, loud});
                if (verse >= 2) {
                    lines.second.push_back({at, duration,
                                            static_cast<double>(thirdBelow(note.pitch)), note.vowel,
                                            loud * 0.8f});
                }
            }
            at += duration;
        }
        if (verse >= 1) {
            lines.low.push_back({cue.start, 3.2 * BEAT, static_cast<double>(cue.phrase->bass),
                                 Vowel::U, 0.55f + 0.1f * static_cast<float>(verse)});
        }
    }
    const double beat = score.edges * BEAT;
    double at = score.coda;
    for (const Note& note : FAREWELL) {
        if (note.pitch != 0) {
            const float loud = note.vowel == Vowel::M ? 0.35f : 0.55f;
            lines.lead.push_back(
                {at, note.beats * beat, static_cast<double>(note.pitch), note.vowel, loud});
        }
        at += note.beats * beat;
    }
    lines.second.push_back({score.coda, 6 * beat, 57, Vowel::U, 0.40f});
    lines.low.push_back({score.coda, (CODA - 0.4) * score.edges, 50, Vowel::M, 0.40f});
    return lines;
}

/// Soft clipping of the peaks: the voice becomes louder without coming close to full scale.
void saturate(Sound& sound)
{
    const float drive = 1.4f / std::max(sound.peak(), 1e-6f);
    for (std::vector<float>* channel : {&sound.left, &sound.right}) {
        for (float& v : *channel) {
            v = std::tanh(v * drive);
        }
    }
}

void fadeOut(Sound& sound)
{
    const auto length = static_cast<std::size_t>(FADE * SAMPLE_RATE);
    for (std::size_t i = 0; i < length && i < sound.size(); ++i) {
        const float t = static_cast<float>(i) / static_cast<float>(length);
        const std::size_t at = sound.size() - 1 - i;
        sound.left[at] *= t * t;
        sound.right[at] *= t * t;
    }
}

} // namespace

std::vector<File> makeVoice(const Request& request)
{
    const Score score = makeScore(request.seconds);
    const Lines lines = arrange(score);
    Sound sound(static_cast<std::size_t>(std::lround(request.seconds * SAMPLE_RATE)));

    const std::uint64_t seed = request.seed * 16;
    sing(sound, {seed + 1, 0.46f, 1.00f, 0, 0, 1.0f}, lines.lead);
    sing(sound, {seed + 2, 0.62f, 0.42f, 7, 0.018, 1.03f}, lines.lead);
    sing(sound, {seed + 3, 0.30f, 0.42f, -6, 0.027, 0.97f}, lines.lead);
    sing(sound, {seed + 4, 0.72f, 0.55f, 3, 0.012, 0.98f}, lines.second);
    sing(sound, {seed + 5, 0.80f, 0.35f, -5, 0.030, 1.02f}, lines.second);
    sing(sound, {seed + 6, 0.26f, 0.60f, -3, 0.010, 0.92f}, lines.low);
    sing(sound, {seed + 7, 0.18f, 0.40f, 5, 0.026, 0.94f}, lines.low);

    Random random(request.seed, 70);
    const float bird = 0.10f * sound.peak();
    warble(sound, 1.9 * score.edges, 0.85f, bird * 0.35f, random);
    float pan = 0.2f;
    for (const Cue& cue : score.cues) {
        if (cue.phrase->answered) {
            warble(sound, cue.start + 2.85 * BEAT, pan, bird, random);
            pan = 1 - pan;
        }
    }
    warble(sound, score.coda + 5.2 * score.edges, 0.7f, bird * 0.5f, random);

    reverberate(sound, 2.8f, 0.30f);
    levelPhrases(sound, score);
    saturate(sound);
    // Once more: what is saturated is less loud than it was.
    levelPhrases(sound, score);
    fadeOut(sound);
    sound.normalize(PEAK);
    std::ostringstream summary;
    summary << request.seconds << " s";
    return {{"sound/magpie_vocal.ogg", encodeVorbis(sound, 0.5f, 1), summary.str()}};
}

} // namespace media
