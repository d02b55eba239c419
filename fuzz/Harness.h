#pragma once

/// What the targets share: the files of an input, and what happens when the code under test ends
/// the process. A target is one source file that defines fuzz::test.

#include "Memory.h"

#include <algorithm>
#include <csetjmp>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

/// Defined by each target: hands one input to the code under test, whose output is not shown.
/// One input in 16 is replayed with an allocation that fails. Only allocations inside call() and
/// ends() can fail; std::bad_alloc may then leave this function.
void test(std::string_view input);

/// Ends the fuzzing with a finding, told in \p text, unless \p holds.
void expect(bool holds, const char* text);

/// Ends the fuzzing with a finding unless all these bytes can be read, as far as AddressSanitizer
/// knows.
void reach(const unsigned char* bytes, std::size_t count);

// ---- Files --------------------------------------------------------------------------------------

/// The folder of this process for the files of an input, with a slash at its end. It is empty at
/// the start of each input.
const std::string& folder();

/// Writes a file in the folder.
/// \return its path
std::string place(const std::string& name, std::string_view bytes);

/// Splits an input that holds several files at its lines "@@@".
std::vector<std::string_view> parts(std::string_view input);

/// Takes numbers from the front of an input; zeros when it is used up.
class Numbers {
public:
    explicit Numbers(std::string_view bytes) : left(bytes) {}

    bool done() const { return left.empty(); }

    template<typename Number>
    Number take()
    {
        Number number{};
        const std::size_t size = std::min(left.size(), sizeof number);
        std::memcpy(&number, left.data(), size);
        left.remove_prefix(size);
        return number;
    }

    /// \return 0 .. bound - 1
    int below(int bound) { return take<unsigned char>() % bound; }

private:
    std::string_view left;
};

// ---- Ends of the process ------------------------------------------------------------------------

/// The status of an end by abort.
inline constexpr int ABORTED = 128 + 6;

/// A documented end of the process: its status, and how the last message ends.
struct End {
    int status;
    std::string message;
};

/// Where to go on when the code under test calls exit or abort. No exception may leave these two,
/// so this is a longjmp, which skips the destructors of the code under test: it must not own memory
/// then.
class Escape {
public:
    Escape();
    Escape(const Escape&) = delete;
    Escape& operator=(const Escape&) = delete;
    ~Escape();

    static std::jmp_buf back;
    static bool armed; ///< one of these lives

    /// Ends the fuzzing with a finding unless the process would have ended in a documented way.
    static void check(const std::vector<End>& documented);
};

/// Runs code that may end the process in a documented way; any other end is a finding.
/// \return whether it did
template<typename Code>
bool ends(const std::vector<End>& documented, Code code)
{
    const Escape escape;
    if (setjmp(Escape::back) == 0) {
        code();
        return false;
    }
    Escape::check(documented);
    return true;
}

/// Runs code that does not end the process.
template<typename Code>
auto call(Code code)
{
    struct Counting {
        Counting() { memory::enter(); }
        ~Counting() { memory::leave(); }
    };
    const Counting counting;
    return code();
}

/// Closes the files that code inside ends() has left open. Not for code that hands a file to a
/// library, which may close it.
void closeFiles();

} // namespace fuzz
