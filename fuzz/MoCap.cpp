/// The input is the index of a recording (index.txt) and its data files (a, b, c), in this order,
/// divided by lines "@@@".

#include "MoCap.h"
#include "Harness.h"

#include <filesystem>

namespace {

/// The index names its files relative to the working directory.
class InFolder {
public:
    InFolder() { std::filesystem::current_path(fuzz::folder()); }
    InFolder(const InFolder&) = delete;
    InFolder& operator=(const InFolder&) = delete;
    ~InFolder() { std::filesystem::current_path(before); }

private:
    std::filesystem::path before = std::filesystem::current_path();
};

} // namespace

void fuzz::test(std::string_view input)
{
    const InFolder inFolder;
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
    dataTimer(&recording);
    expect(recording.step == 0, "without a sound the step is 0");
}
