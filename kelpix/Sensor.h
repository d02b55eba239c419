#pragma once

#include "Node.h"
#include "Vector.h"

class MoCap;
class SensorRep;

/// A figure that follows one tracked sensor of a recording in the plane of its parent. It draws
/// nothing itself: its only child, a SensorRep, is the body, which it tilts towards the side it
/// moves to.
///
/// A recorded position p appears at (0.45 p.x + 0.55, 0.45 p.y - 0.1), sensor 0 another 0.05 to the
/// right, sensor 2 to the left. Lengths are world units.
///
/// \par Example
/// \snippet creature.cpp sensors
class Sensor : public Node {
public:
    /// World units of a unit of the recording.
    static constexpr float SCALE = 0.45f;

    Vec3 pos;               ///< position of this update, before the speed limit
    Vec3 pos_old;           ///< pos of the last update
    Vec3 vel;               ///< movement in the last update, each component limited to 0.15
    Vec3 orientation;       ///< (0, 1, 0), not used
    MoCap* mocap = nullptr; ///< borrows; set by the creator
    int sensorId = 0;       ///< which of the recording's series, 0, 1 or 2; set by the creator
    float tilt[2];          ///< lower and upper limit of the tilt, degrees
    float current_tilt = 0; ///< tilt of the body, degrees; one step beyond a limit at most
    bool initialized = false;
    SensorRep* rep; ///< owns; the body, also its child

    /// Makes the body, and a small random velocity from two numbers of rand().
    Sensor();

    /// Only sets initialized.
    void initialize();

    /// Where a sensor places itself.
    /// \param scaled  the recorded position times SCALE, each component in single precision
    /// \param id      of the sensor
    /// \return the place in the parent's frame, z is 0
    static Vec3 placeOf(const Vec3& scaled, int id);

    /// Returns 1: it is never culled.
    int cull() override;
    void draw() override {}

    /// Moves to the recorded position of the current step. Does nothing without a recording.
    ///
    /// Fixed behavior: Sensor::doupdate scales the recorded position in place, in the recording, so
    /// a step that is met again shrinks again. Pinned by
    /// SensorTest.AStepThatIsMetAgainShrinksAgain; do not correct.
    ///
    /// Fixed behavior: a sensor that is faster than the limit of 0.15 keeps its place in the scene
    /// for this update, while pos takes the new position. Pinned by
    /// SensorTest.AFastSensorJumpsButItsNodeStays; do not correct.
    ///
    /// Fixed behavior: a step beyond the end of the series, which the end of the voice can give, or
    /// a sensor without a series ends the process with status 1 and no message. Pinned by
    /// SensorDeathTest.AStepAtTheEndOfTheSeriesEndsTheProcessSilently,
    /// SensorDeathTest.ASampleThatIsNotThereEndsTheProcessToo; do not correct.
    void doupdate() override;

    void drawBBox() override {}

    /// The value is shared with SensorRep.
    RTTI_NODE_TYPE getType() const override { return RTTI_USER1; }
    void userEvent(UserEvent*) override {}
    void addTexture(Texture*) override {}
    Texture* getTexture() override { return nullptr; }
    void computeBBox() override {}
    BBox* getBBox() override { return nullptr; }
    void addGeometry(Geometry*) override {}
    Geometry* getGeometry() override { return nullptr; }
    void print() override {}
    void cleanup() override {}

private:
    Vec3* recordedPosition();
    void place(const Vec3& recorded);
    void limitSpeed(float prevX, float prevY);
    void tiltBody();
};
