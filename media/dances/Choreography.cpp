#include "Choreography.h"

#include "Dancer.h"
#include "Places.h"
#include "Rates.h"

#include <span>

namespace media {

namespace {

/// Notes that are shorter are no beats of a figure.
constexpr double SHORTEST_NOTE = 0.4; // beats

/// Of so few beats none is left out.
constexpr std::size_t FEW = 3;

/// The first beat of a phrase is the strongest.
constexpr double FIRST_STRENGTH = 1.35;

/// A figure may end a phrase so far to any side of its place, unless the place is so close to that
/// of another one: figures that meet do so exactly.
constexpr double ASIDE = 0.08;
constexpr float MEETING = 0.15f;

/// A push takes so long to make a figure faster, against the water. Each begins so much earlier
/// than its note, but for the very first one, so that the figures speed up as the notes begin.
constexpr double EARLIER = 0.08; // seconds

/// A figure at this height is not seen, neither its body nor its tentacles.
constexpr double OUT_OF_SIGHT = 1.2;

/// Fish swim 0.007 an update, of which there are 40 a second.
constexpr double LEAVING_SPEED = 0.018 * Rates::UPDATES;

/// An update of the scene passes over three records at most: so long a figure is out of sight
/// before it goes home, or its way down would be seen.
constexpr double UNSEEN = 3.0 / Rates::RECORDS; // seconds

/// How long the figures are at home before the end, in a whole coda and at the least.
constexpr double AT_HOME = 1.0;
constexpr double SHORTLY_AT_HOME = 0.3;

/// The beats of a figure in a phrase.
/// \param beat  the length of one in seconds
/// \param role  0 = leads, 1 and 2 = follow, and leave out a note
std::vector<Beat> beatsOf(std::span<const Note> melody, double beat, std::size_t role)
{
    std::vector<Beat> beats;
    double at = 0;
    for (const Note& note : melody) {
        if (note.pitch != 0 && note.beats >= SHORTEST_NOTE) {
            beats.push_back({at * beat, beats.empty() ? FIRST_STRENGTH : 1.0});
        }
        at += note.beats;
    }
    if (role > 0 && beats.size() > FEW) {
        beats.erase(beats.begin() + static_cast<std::ptrdiff_t>(role));
    }
    return beats;
}

/// The times of the coda.
struct Coda {
    double beat;  ///< length in seconds
    double leave; ///< when the figures do
    double home;  ///< from when on the figures are at home
};

Coda codaOf(const Score& score, const Ending& ending)
{
    const double beat = score.edges * BEAT;
    // There is no time to rise in a shortened coda.
    return {beat, score.coda + (score.edges < 1 ? 0 : ending.beats * beat),
            score.seconds - std::max(score.edges * AT_HOME, SHORTLY_AT_HOME)};
}

/// One figure throughout the piece.
class Path {
public:
    Path(const Score& of, const Region& view, std::size_t number)
        : score(of), stage(stageIn(view)), ending(endingIn(view)), figure(number),
          coda(codaOf(of, ending)), dancer(homeOf(static_cast<int>(number)))
    {
    }

    /// Where the figure is at a time. The times of the calls grow by one record each.
    Point at(double now);

private:
    /// When a phrase begins; that after the last one is the coda.
    double startOf(std::size_t phrase) const;
    void startPhrase();
    void startCoda();

    const Score& score;
    Region stage;
    Ending ending;
    std::size_t figure;
    Coda coda;
    Dancer dancer;
    std::size_t begun = 0; ///< phrases, and at last the coda
    bool leaves = false;
};

double Path::startOf(std::size_t phrase) const
{
    const double sung = phrase < score.cues.size() ? score.cues[phrase].start : score.coda;
    return phrase == 0 ? sung : sung - EARLIER;
}

void Path::startPhrase()
{
    const std::size_t leader = begun % FIGURES;
    const std::size_t role = begun == 0 ? 0 : (figure + FIGURES - leader) % FIGURES;
    // In a short piece there is no time to rise later.
    const auto goals = score.edges < 1 ? ending.places : placesAfter(begun, stage);
    const Point goal = goals[figure];
    double aside = ASIDE;
    for (std::size_t k = 0; k < FIGURES; ++k) {
        const bool meet = k != figure && length(goals[k] - goal) < MEETING;
        aside = meet ? 0 : aside;
    }
    const double seconds = startOf(begun + 1) - startOf(begun);
    std::vector<Beat> beats = beatsOf(score.cues[begun].phrase->melody, BEAT, role);
    // The figures wait at home for the first note. A later phrase begins as a whole earlier.
    for (std::size_t i = 1; begun == 0 && i < beats.size(); ++i) {
        beats[i].start -= EARLIER;
    }
    dancer.begin(beats, goal, seconds, stage, aside);
}

void Path::startCoda()
{
    const std::span<const Note> rising(FAREWELL.data(), ending.strokes);
    dancer.begin(beatsOf(rising, coda.beat, 0), ending.places[figure], coda.leave - startOf(begun),
                 stage, 0);
}

Point Path::at(double now)
{
    if (now >= coda.home) {
        return homeOf(static_cast<int>(figure));
    }
    const std::size_t phrases = score.cues.size();
    if (begun < phrases && now >= startOf(begun)) {
        startPhrase();
        ++begun;
    } else if (begun == phrases && now >= startOf(begun) && coda.leave > score.coda) {
        startCoda();
        ++begun;
    } else if (!leaves && now >= coda.leave) {
        const double way = OUT_OF_SIGHT - static_cast<double>(dancer.place().y);
        const double left = coda.home - UNSEEN - now - Dancer::TURNING / 2;
        dancer.leave(std::max(LEAVING_SPEED, way / left));
        leaves = true;
    }
    const Point place = dancer.place();
    if (begun > 0 && static_cast<double>(place.y) < OUT_OF_SIGHT) {
        dancer.advance();
    }
    return place;
}

} // namespace

std::vector<Pose> choreograph(const Score& score, const Region& view)
{
    std::vector<Pose> poses(recordsOf(score.seconds));
    for (std::size_t k = 0; k < FIGURES; ++k) {
        Path path(score, view, k);
        for (std::size_t i = 0; i < poses.size(); ++i) {
            poses[i][k] = path.at(static_cast<double>(i) / Rates::RECORDS);
        }
    }
    return poses;
}

std::vector<Pose> rehearse(const Score& score, const Region& view)
{
    const Region stage = stageIn(view);
    const Coda coda = codaOf(score, endingIn(view));
    Stations stations;
    for (std::size_t k = 0; k < FIGURES; ++k) {
        const Point home = homeOf(static_cast<int>(k));
        stations[k].push_back({score.prelude, home});
        for (std::size_t i = 0; i < score.cues.size(); ++i) {
            stations[k].push_back({score.cues[i].start + PHRASE, placesAfter(i, stage)[k]});
        }
        stations[k].push_back({coda.home, home});
    }
    return posesThrough(stations, score.seconds);
}

} // namespace media
