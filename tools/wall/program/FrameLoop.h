#pragma once

#include "FrameRecord.h"
#include "Shots.h"

namespace wall {

class Leader;
class Notes;
class Protocol;
struct Orders;
struct Rank;

/// The frames of a prepared rank, each in step with all other ranks: records are exchanged, the
/// scene is updated and drawn, and when all have drawn it, it is shown.
class FrameLoop {
public:
    /// What only rank 0 has. Borrowed.
    struct First {
        Leader& leader;
        Notes& notes;
    };

    /// All are borrowed. \param first  null on the other ranks
    FrameLoop(Rank& rank, Protocol& protocol, const Shots& shots, const First* first);

    /// Plays until the wall is told to end. Needs: the tile's GL context, current. Throws WallError
    /// when a rank does not answer or the ranks go on to disagree, and std::runtime_error when a
    /// picture cannot be written. The scene's readers may end the process, with a line for the
    /// user.
    void play();

private:
    Rank& rank;
    Protocol& protocol;
    const Shots& shots;
    const First* first;
    FrameRecord own;

    Orders exchange();
    void playFrame(const Orders& orders);
    void playScene(const Orders& orders);
};

} // namespace wall
