#pragma once

#include <cstddef>
#include <gtest/gtest.h>

/// Lets allocations fail while it lives, as when memory is used up: those of the code under test
/// and of the libraries that decode files for it, through operator new, malloc, calloc and realloc.
/// Those of the GL driver and OpenAL always succeed, and those of libvorbis, which does not check
/// its allocations. Under a sanitizer, whose malloc has to stay, operator new alone fails.
///
/// A program that links this replaces these functions from its start to its end. Only allocations
/// of the thread that makes the object fail.
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

    /// \return the number of blocks that were allocated while one of these lived, by code whose
    ///         allocations can fail or for files that it opened, and are not freed yet; 0 under a
    ///         sanitizer, which looks for leaks itself
    static std::size_t blocks();
};

/// Runs \p code twice and expects that the second run leaks nothing. The first one may allocate
/// what lives as long as the program.
template<typename Code>
void expectNothingLost(Code code)
{
    code();
    const std::size_t before = FailingMemory::blocks();
    code();
    EXPECT_EQ(FailingMemory::blocks(), before);
}

/// Runs an operation with the first allocation failing, then with the second, and so on until no
/// allocation fails; first with one failure each, then with all later allocations failing, too.
/// \param operation  returns a result. Nothing in it but the code under test may allocate
/// \param check      check(result, complete) checks the result and frees it. complete: no
///                   allocation failed, so the operation must have succeeded
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
