#pragma once

#include <cstdlib>

/// Random numbers of the scene alone: what libraries draw between its updates and draws does not
/// change them. A library's thread that called rand() meanwhile would; those of OpenAL, Open MPI
/// and Mesa do not.
class RandomNumbers {
public:
    RandomNumbers()
    {
        char* const outer = initstate(1, state, sizeof state);
        setstate(outer);
    }
    RandomNumbers(const RandomNumbers&) = delete;
    RandomNumbers& operator=(const RandomNumbers&) = delete;

    /// While it lives, rand() and srand() use these numbers.
    class Use {
    public:
        explicit Use(RandomNumbers& numbers) : outer(setstate(numbers.state)) {}
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use() { setstate(outer); }

    private:
        char* outer; ///< borrows
    };

private:
    /// As many as a process starts with, so that the numbers of a seed are the same.
    alignas(long) char state[128];
};
