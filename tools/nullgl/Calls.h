#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace nullgl {

/// How often one function was called. The counters of all functions form a list, which is complete
/// before main runs.
struct Counter {
    const char* function;
    std::int64_t calls = 0;
    Counter* next;

    explicit Counter(const char* name);
    Counter(const Counter&) = delete;
    Counter& operator=(const Counter&) = delete;
};

/// The first counter of the list.
Counter*& counters();

/// A function's name as a template argument.
template<std::size_t N>
struct FunctionName {
    char text[N];

    consteval FunctionName(const char (&literal)[N]) { std::copy_n(literal, N, text); }
};

template<FunctionName NAME>
inline Counter counter(NAME.text);

/// Counts a call: each function of OpenGL begins with it.
template<FunctionName NAME>
void called()
{
    ++counter<NAME>.calls;
}

} // namespace nullgl
