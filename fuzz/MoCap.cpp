/// The input is the index of a recording (index.txt) and its data files (a, b, c), in this order,
/// divided by lines "@@@".

#include "Harness.h"
#include "MoCap.h"

#include <unistd.h>

void fuzz::test(std::string_view input)
{
    // The index names its files relative to the working directory.
    expect(chdir(folder().c_str()) == 0, "the folder is there");
    const char* const names[] = {"index.txt", "a", "b", "c"};
    const std::vector<std::string_view> files = parts(input);
    for (std::size_t i = 0; i < std::min<std::size_t>(files.size(), 4); ++i) {
        place(names[i], files[i]);
    }
    MoCap recording;
    int result = 0;
    const bool ended = ends({{0, "No MOCAP specified!\n"}, {0, "Couldn't read file.\n"}},
                            [&] { result = recording.read(names[0]); });
    closeFiles();
    for (const SensorData* series : recording.sensorDataList) {
        expect(series->pos.size() == series->ori.size() || ended, "series have the same length");
        expect(series->pos.size() == series->timestep.size() || ended, "also that of the times");
        expect(recording.numSteps <= static_cast<int>(series->pos.size()) || ended,
               "all steps are there");
    }
    expect(result == 1 || ended, "the result is 1");
}
