#pragma once

#include <charconv>
#include <filesystem>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <type_traits>
#include <vector>

/// The command line of every program: `--option VALUE` or `--option=VALUE`, `-h` or `--help`,
/// `--version`, and one wording of what is wrong.
namespace commandline {

/// A command line that makes no sense. The text says what is wrong with it.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What an option's value must be, and what becomes of it.
struct Value {
    std::string wanted; ///< for the message that refuses another text: "a power of two"

    /// Takes the text, which is empty for a flag alone. \return false for a text that is not what
    /// is wanted
    std::function<bool(const std::string& text)> take;
};

/// An option. When it is given several times, each value is taken, in their order.
struct Option {
    std::string name; ///< "--out"
    /// What --help calls the value: "DIR"; empty = a flag, without a value. A value of several
    /// words has a placeholder of as many: "C R".
    std::string placeholder;
    std::string about; ///< for --help; lines end with '\n', except the last one
    Value value;
};

/// What the command line asks for.
enum class Action { work, help, version };

/// A command line that makes sense.
struct Arguments {
    Action action = Action::work;   ///< if it is not work, what follows was not looked at
    std::vector<std::string> given; ///< the names of the options that were given, in their order
    std::vector<std::string> rest;  ///< the words that are no options
};

/// Words that are neither options nor their values: there are none; they follow "--"; or they stand
/// anywhere, and after "--" also those that look like options.
enum class Rest { refused, allowed, anywhere };

/// Reads a command line and hands each value to its option.
/// \param arguments  without the program's name
/// \throws UsageError at the first word that makes no sense
Arguments parse(const std::vector<std::string>& arguments, const std::vector<Option>& options,
                Rest rest = Rest::refused);

/// Takes words alone as the folder of media that --media names, too.
/// \throws UsageError at a second folder
void takeFolder(const std::vector<std::string>& words, std::filesystem::path& media);

/// The lines of --help about the options, --help and --version among them.
std::string describe(const std::vector<Option>& options);

/// Prints the version, or \p usage.
/// \param program  its name
void answer(Action action, const char* program, const std::string& usage);

/// Runs a program's \p work, and says on standard error why it ended by an exception: one line,
/// whatever the exception's text holds. Sets SIGCHLD to its default, so that \p work learns how its
/// children end.
/// \return what \p work returned; 2 after a UsageError, 1 after any other std::exception
int run(const char* program, const std::function<int()>& work);

/// Of a flag: sets \p target, which is borrowed and must live until the line is parsed.
Value flag(bool& target);

/// Any text. \param target  borrowed, like those below; must live until the line is parsed
Value text(std::filesystem::path& target);

/// Reads a number of decimal digits, with a sign, point and exponent where the type has them.
/// \return false for a text with anything before or after the number, for a number outside
///         \p low .. \p high, and for NaN. \p value is then undefined.
template<typename Number>
bool readNumber(const std::string& text, Number low, Number high, Number& value)
{
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end && value >= low && value <= high;
}

/// "a whole number from 1 to 9", or "a number from 1 to 9" for a floating-point type.
template<typename Number>
std::string rangeOf(Number low, Number high)
{
    std::ostringstream range;
    range.precision(15);
    range << (std::is_integral_v<Number> ? "a whole number" : "a number") << " from " << low
          << " to " << high;
    return range.str();
}

/// A number from \p low to \p high. \p target is only changed by such a number.
template<typename Number>
Value number(Number& target, Number low, Number high)
{
    return {rangeOf(low, high), [&target, low, high](const std::string& text) {
                Number value{};
                const bool good = readNumber(text, low, high, value);
                target = good ? value : target;
                return good;
            }};
}

} // namespace commandline
