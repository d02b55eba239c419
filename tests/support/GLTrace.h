#pragma once

#include <stdexcept>
#include <string>
#include <vector>

/// One call of GL or GLX, as apitrace prints it.
struct GLCall {
    std::string name;
    std::vector<std::string> arguments; ///< values without their names
    std::string result;                 ///< empty: none

    /// The call as it was printed, without its number.
    std::string text;
};

/// Reads what "apitrace dump" prints with a call on each line; skips all else.
std::vector<GLCall> readTrace(const std::string& dump);

/// The numbers of an array argument "{1, 0.5, ...}".
std::vector<double> numbersOf(const std::string& array);

/// Reads a trace from front to back, call by call, and throws Mismatch at one that is not expected.
class TraceReader {
public:
    class Mismatch : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    explicit TraceReader(const std::vector<GLCall>& calls) : trace(calls) {}

    bool atEnd() const { return at == trace.size(); }

    /// Whether the next call is \p name, and has these arguments if any are given.
    bool isNext(const std::string& name, const std::vector<std::string>& arguments = {}) const;

    /// Takes the next call, which must be \p name, with these arguments if any are given.
    const GLCall& take(const std::string& name, const std::vector<std::string>& arguments = {});

    /// Goes behind the next call \p name. \return false when there is none
    bool skipTo(const std::string& name);

private:
    const std::vector<GLCall>& trace;
    std::size_t at = 0;
};
