#include "MemoryWords.h"

#include "TextWords.h"

#include <algorithm>
#include <new>

namespace Files {

MemoryWords::MemoryWords(std::string_view text)
    // A file that is opened for reading leaves its bytes alone.
    : text_(text), file_(fmemopen(const_cast<char*>(text.data()), text.size(), "r"))
{
    if (file_ == nullptr) {
        throw std::bad_alloc();
    }
}

bool MemoryWords::next(std::span<char> word)
{
    return readWord(file_.get(), word);
}

std::size_t MemoryWords::position() const
{
    const long at = std::ftell(file_.get());
    return at > 0 ? static_cast<std::size_t>(at) : 0;
}

long MemoryWords::lineAt(std::size_t position)
{
    // The character after a word is read with it, and may be the end of its line.
    const std::size_t end = std::min(position > 0 ? position - 1 : 0, text_.size());
    if (end < counted_) {
        counted_ = 0;
        ends_ = 0;
    }
    const std::string_view between = text_.substr(counted_, end - counted_);
    ends_ += static_cast<long>(std::count(between.begin(), between.end(), '\n'));
    counted_ = end;
    return 1 + ends_;
}

} // namespace Files
