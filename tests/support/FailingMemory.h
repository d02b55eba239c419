#pragma once

#include <cstddef>
#include <gtest/gtest.h>

/// Lets allocations fail while it lives, as they do when memory is used up: those that the code
/// under test makes, and those of the libraries that decode files for it, through operator new,
/// malloc, calloc and realloc. The GL driver's and OpenAL's own are left alone, and those of
/// libvorbis, which does not look whether it got any. Under a sanitizer, whose malloc has to stay,
/// operator new alone fails.
///
/// A program that links this replaces these functions for good. Only the thread that makes the
/// object is concerned.
class FailingMemory {
public:
    enum Duration { ONCE, FOR_EVER };

    /// \param n  allocations that succeed before the first one that fails
    FailingMemory(long n, Duration duration);
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;
    ~FailingMemory();

    /// Whether an allocation has failed.
    bool hasFailed() const;

    /// Without such an object: lets every allocation of the program itself fail while \p condition
    /// holds, in all threads. Those of its libraries succeed, so that it is known who meets the
    /// failure.
    static void failWhile(bool (*condition)());

    /// The blocks of memory that were made while one of these lived, by those whose allocations
    /// fail and for the files that they opened, and are held now; 0 under a sanitizer, which looks
    /// for leaks itself.
    static std::size_t blocks();
};

/// Runs \p code, a second time too, and expects that this leaves no more memory behind: the first
/// time may fill what lives as long as the program.
template<typename Code>
void expectNothingLost(Code code)
{
    code();
    const std::size_t before = FailingMemory::blocks();
    code();
    EXPECT_EQ(FailingMemory::blocks(), before);
}

/// Runs an operation with the first allocation failing, then with the second, and so on until it
/// completes without meeting the failure; with one failure each, and then with all that follow
/// failing too.
/// \param operation  what fails; gives a result. Nothing in it asks for memory but the code under
///                   test
/// \param check      looks at the result and releases it. Its second argument tells whether the
///                   operation met no failure: then it has to have succeeded
template<typename Operation, typename Check>
void failEachAllocation(Operation operation, Check check)
{
    for (const FailingMemory::Duration duration : {FailingMemory::ONCE, FailingMemory::FOR_EVER}) {
        bool complete = false;
        for (long n = 0; !complete; ++n) {
            ASSERT_LT(n, 20000) << "it never completes";
            SCOPED_TRACE("allocation " + std::to_string(n) + " fails" +
                         (duration == FailingMemory::ONCE ? "" : ", and all after it"));
            const auto attempt = [&] {
                const FailingMemory memory(n, duration);
                auto result = operation();
                complete = !memory.hasFailed();
                return result;
            };
            const auto result = attempt();
            check(result, complete);
            if (testing::Test::HasFailure()) {
                return;
            }
        }
    }
}
