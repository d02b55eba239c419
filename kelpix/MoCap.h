#pragma once

#include "OggSound.h"
#include "Vector.h"

#include <vector>

/// The recorded series of one tracked sensor in one data file. The three lists have one entry for
/// each record of the file.
class SensorData {
public:
    std::vector<Vec3*> pos;      ///< owns: positions in the recording's own frame and unit
    std::vector<Vec3*> ori;      ///< owns: orientations, three numbers as recorded
    std::vector<float> timestep; ///< the records' time values

    SensorData() = default;
    SensorData(const SensorData&) = delete;
    SensorData& operator=(const SensorData&) = delete;
    ~SensorData();
};

/// A motion-capture recording and the current step of its playback.
///
/// The step follows the playback position of a sound (see dataTimer): the recording stays in step
/// with what is heard, however fast frames are drawn.
///
/// The index file is text: the word MOCAP, the number of data files, the number of sensors to keep
/// of each, and the paths of the data files, relative to the working directory. A data file is text
/// too: records of 25 numbers (the time; for each of three sensors its position x y z and
/// orientation x y z; six numbers that are ignored). White space separates words; line breaks do
/// not matter.
///
/// \par Example
/// \snippet creature.cpp clock
class MoCap {
public:
    /// Owns all series, file by file: entry f * sensors per file + k is sensor k of file f.
    std::vector<SensorData*> sensorDataList;

    OggSound* sound = nullptr; ///< borrows: the clock; set it before the timer starts
    int step = 0;              ///< the current record, 0 .. numSteps; written by dataTimer
    int numSteps = 0;          ///< records that every series has: the length of the shortest one

    MoCap() = default;
    MoCap(const MoCap&) = delete;
    MoCap& operator=(const MoCap&) = delete;

    /// Frees the series and removes the dataTimer of this object from FLTK's timers.
    ~MoCap();

    /// Reads the index file and every data file that it names, and reports on standard output.
    /// Call it once.
    ///
    /// An index that does not start with MOCAP (a missing one too) or a data file that cannot be
    /// opened ends the process with status 0 after a message. A word that is no number counts as
    /// 0. A record that the file cuts short is completed with the last word that was read; a file
    /// without any word gives one record of zeros. Only the first three sensors of a file are ever
    /// filled: with more per file, numSteps is 0. Words are cut to 4095 characters, and at most
    /// 4096 sensors per file are kept. A pipe or a device counts as a file that cannot be opened.
    /// \return 1
    int read(const char* indexPath);

    /// The step of a playback position: the ceiling of numSteps * fraction, a product in
    /// single precision.
    ///
    /// Fixed behavior: MoCap::stepAt does not limit the step to the last record. A fraction of 1
    /// gives numSteps, which is one record beyond the end of the shortest series. Pinned by
    /// MoCapStepTest.TheStepIsTheCeilingOfTheProduct; do not correct.
    /// \param fraction  0 .. 1 of the sound
    /// \return 0 when no int can hold the result
    static int stepAt(int numSteps, float fraction);
};

/// The motion-capture clock, a callback of FLTK's timers: sets the step from the sound's position
/// and re-arms itself for the next tick (Rates::CLOCK_TICKS). Without a sound the step is 0.
/// \param arg  borrows: the MoCap, or null to only re-arm the timer
void dataTimer(void* arg);
