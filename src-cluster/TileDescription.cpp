#include "TileDescription.h"

#include "MemoryWords.h"
#include "Printable.h"
#include "TileReader.h"

std::string TileProblem::text() const
{
    return Files::printable(file) + (line > 0 ? ":" + std::to_string(line) : "") + ": " + what;
}

TileDescription::TileDescription() : records_(std::make_unique<TileRecords>())
{
}

// Where TileRecords is known.
TileDescription::~TileDescription() = default;
TileDescription::TileDescription(TileDescription&& other) noexcept = default;
TileDescription& TileDescription::operator=(TileDescription&& other) noexcept = default;

std::optional<TileProblem> TileDescription::parse(std::string_view bytes, const std::string& name)
{
    cluster = Cluster();
    records_ = std::make_unique<TileRecords>();
    lines_.clear();

    Files::MemoryWords words(bytes);
    // A word would end at it, unseen.
    if (const std::size_t at = bytes.find('\0'); at != std::string_view::npos) {
        return TileProblem{name, words.lineAt(at + 1), "there is a NUL character: no text"};
    }
    std::string what;
    std::vector<std::size_t> windowAt;
    TileReader reader(words.file(), *records_, what, windowAt);
    const bool complete = reader.readStart() && reader.readCluster(cluster);
    for (const std::size_t at : windowAt) {
        lines_.push_back(words.lineAt(at));
    }
    if (!complete) {
        return TileProblem{name, words.line(), what};
    }
    return {};
}

long TileDescription::lineOf(std::size_t window) const
{
    return window < lines_.size() ? lines_[window] : 0;
}
