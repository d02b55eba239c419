#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <vector>

/// A showing after the other on one screen, without a gap between them.
namespace show {

/// Time in seconds, from any moment on; it never goes back.
using Seconds = double;

/// A showing: one run of the program. Its number, which no other one gets.
using Id = int;

/// How a showing's process has ended.
struct End {
    bool isFault = false; ///< by a signal, or with a status other than 0
    std::string how;      ///< "with status 1", "by signal 9"
};

/// Those who do what the conductor wants, for it knows neither processes nor windows.
class Crew {
public:
    Crew() = default;
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;
    virtual ~Crew() = default;

    /// Starts the program. Its window opens behind \p front, if there is one.
    /// \return none when there can be no process, which a line has said. That it is no program is
    ///         told as its end.
    virtual std::optional<Id> open(std::optional<Id> front) = 0;

    /// Gives the window of a showing that has drawn its first frame its size and zoom.
    virtual void dress(Id showing) = 0;

    /// Puts its window in front of all others.
    virtual void raise(Id showing) = 0;

    /// The showings before it have gone: its window is to be in front, but need not be held there.
    virtual void settle(Id showing) = 0;

    /// \return whether the keyboard has that key; without it nothing has been done
    virtual bool pressQ(Id showing) = 0;
    virtual void terminate(Id showing) = 0; ///< SIGTERM
    virtual void kill(Id showing) = 0;      ///< SIGKILL

    /// Starts to look at the media folder. What it finds is told by Conductor::mediaChecked.
    virtual void checkMedia() = 0;

    /// A line for the log.
    virtual void say(const std::string& line) = 0;
};

/// When a showing is to be replaced, and when to lose patience.
struct Rules {
    /// From a showing's first frame to the next one's, which begins before the voice has ended;
    /// none = it goes on until it ends by itself.
    std::optional<Seconds> period;

    /// A showing that draws no frame for so long hangs.
    Seconds patience = 5;
};

/// Decides which showing is started, put in front and ended, and when. All that happens is told
/// to it, with the time at which it happened; what is to be done it has its crew do.
///
/// A showing *opens* until it has drawn some frames, then it is raised, and once it has drawn in
/// front it *plays*, and those before it *leave*. So something is in front at all times, except
/// where a showing ends by itself.
///
/// A *silent* showing tells no frames. Once its window is there it goes from stage to stage by the
/// clock, and nobody can say that it hangs: only its end tells that something is wrong.
class Conductor {
public:
    // How long things may take, in seconds.
    static constexpr Seconds GRACE = 3;         ///< to end after the key, and after SIGTERM
    static constexpr int PATIENCE_TO_OPEN = 12; ///< times the patience, until the first frame
    static constexpr Seconds QUICK = 10;        ///< an end before is one of repeated quick ends
    static constexpr Seconds LONGEST_PAUSE = 60;
    static constexpr Seconds SILENT_STAGE = 1; ///< of a silent showing, from each to the next

    // How much earlier than the period says a showing starts: as long as the slowest of the last
    // few took, and a share of that more, for on a busy machine none takes as long as the other.
    static constexpr std::size_t STARTS = 3;
    static constexpr double MARGIN = 0.3;
    static constexpr Seconds LARGEST_MARGIN = 2;

    // Frames of a showing before something is done about it. A frame is told when it is begun, and
    // is on the screen when the next one is begun.
    static constexpr int FRAMES_TO_OPEN = 3;  ///< after the zoom
    static constexpr int FRAMES_IN_FRONT = 2; ///< before the others leave

    /// \param crew  borrowed, must live as long as this
    Conductor(Crew& crew, Rules rules) : crew(crew), rules(rules) {}

    /// Holds for the showings that open from now on.
    void setPeriod(std::optional<Seconds> period) { rules.period = period; }

    void frame(Id showing, Seconds now);
    /// The window of a showing is there, and it has not told a frame so far: unless it does, it is
    /// a silent one.
    void silent(Id showing, Seconds now);
    /// A window of a showing has been taken away, such as by a visitor who minimizes it, or is
    /// back. While it is away nothing is drawn in it: a showing that plays does not hang then.
    void visible(Id showing, bool isVisible, Seconds now);
    void ended(Id showing, const End& end, Seconds now);

    /// The media folder has been touched: while something plays, nothing that reads it opens before
    /// it is at rest.
    void mediaTouched(Seconds now);
    /// It has not been touched for a while.
    void mediaAtRest();
    void mediaChecked(bool good);

    /// Does what is due. To be called at the start, when `due` is reached, and after all of the
    /// above.
    void pass(Seconds now);

    /// \return when pass has something to do if nothing happens until then
    Seconds due() const;

    /// Ends all showings and starts none any more. A second call changes nothing.
    void stop(Seconds now);
    /// After stop: whether all have gone.
    bool isOver() const { return stopping && showings.empty(); }

    std::optional<Id> front() const;                       ///< the showing that is in front
    bool isFrontStill() const;                             ///< whether it hangs, or is away
    int number() const { return shown; }                   ///< showings that have been in front
    int faults() const { return faultCount; }              ///< since the start
    const std::string& lastFault() const { return fault; } ///< empty = none

private:
    enum class State { opening, dressed, raised, playing, leaving };
    enum class Media { good, touched, checked, refused };
    enum class Step { key, term, kill }; ///< what a showing that leaves was told last

    struct Showing {
        Id id;
        Seconds opened;
        std::optional<Seconds> period; ///< as in Rules
        State state = State::opening;
        int frames = 0;     ///< in this state
        Seconds first = 0;  ///< its first frame; undefined while it is opening, as is latest
        Seconds latest = 0; ///< its latest frame
        std::optional<Seconds> nextStage = {}; ///< of a silent one
        bool isAway = false;                   ///< its window is
        bool isHanging = false;                ///< it plays, but has lost our patience
        bool isStale = false;                  ///< it plays media that have changed since
        Step step = Step::key;                 ///< of one that leaves, as is nextStep
        Seconds nextStep = 0;                  ///< when it is told more rudely
    };

    Crew& crew;
    Rules rules;
    std::vector<Showing> showings; ///< those whose processes live, oldest first
    bool stopping = false;
    Media media = Media::good;
    std::deque<Seconds> starts; ///< what the last ones took from the start until they were raised
    Seconds mayOpen = 0;        ///< no earlier start
    int quickEnds = 0;          ///< in a row
    int shown = 0;
    int faultCount = 0;
    std::string fault;

    Showing* find(Id id);
    const Showing* playing() const;
    const Showing* coming() const;
    bool isAnyLeaving() const;

    Seconds lead() const;
    Seconds nextOpening() const;
    Seconds losesPatience(const Showing& showing) const;
    void dress(Showing& showing, Seconds now);
    void raise(Showing& showing, Seconds now);
    void play(Showing& showing, Seconds now);
    void passStage(Showing& showing, Seconds now);
    void giveUp(Showing& showing, Seconds now);
    void leave(Showing& showing, Step step, Seconds now);
    void noteFault(const std::string& text);
    void pause(Seconds now);
    void pauseAfter(const Showing& showing, Seconds now);
};

} // namespace show
