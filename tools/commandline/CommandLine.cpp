#include "CommandLine.h"

#include "Printable.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <iterator>
#include <new>

namespace commandline {

namespace {

constexpr const char* HELP = "--help";
constexpr const char* SHORT_HELP = "-h";
constexpr const char* VERSION = "--version";
constexpr const char* NO_VALUE = " takes no value";

/// A word of the command line, taken apart.
struct Word {
    std::string name;
    std::string value; ///< after '='
    bool hasValue;     ///< there is a '='
};

Word takeApart(const std::string& argument)
{
    const std::size_t equals = argument.starts_with("--") ? argument.find('=') : std::string::npos;
    if (equals == std::string::npos) {
        return {argument, "", false};
    }
    return {argument.substr(0, equals), argument.substr(equals + 1), true};
}

Action actionOf(const Word& word)
{
    const bool help = word.name == HELP || word.name == SHORT_HELP;
    if (!help && word.name != VERSION) {
        return Action::work;
    }
    if (word.hasValue) {
        throw UsageError(word.name + NO_VALUE);
    }
    return help ? Action::help : Action::version;
}

const Option& find(const std::vector<Option>& options, const Word& word,
                   const std::string& argument)
{
    const auto option = std::find_if(options.begin(), options.end(), [&](const Option& candidate) {
        return candidate.name == word.name;
    });
    if (option == options.end()) {
        const bool isWord = !argument.empty() && !argument.starts_with('-');
        throw UsageError(isWord ? "\"" + argument + "\" is one word too many"
                                : "unknown option \"" + argument + "\"");
    }
    return *option;
}

/// Goes on to the last word of an option's value, and puts a space between its words.
template<typename Iterator>
void takeValue(const Option& option, Iterator& at, Iterator end, std::string& value)
{
    const auto spaces = std::count(option.placeholder.begin(), option.placeholder.end(), ' ');
    for (auto left = spaces; left >= 0 && std::next(at) != end; --left) {
        value += (left < spaces ? " " : "") + *++at;
    }
}

void describe(const std::string& name, const std::string& about, std::size_t column,
              std::string& text)
{
    std::string start = "  " + name;
    std::istringstream lines(about);
    for (std::string line; std::getline(lines, line);) {
        start.resize(column, ' ');
        text += start + line + "\n";
        start.clear();
    }
}

} // namespace

Arguments parse(const std::vector<std::string>& arguments, const std::vector<Option>& options,
                Rest rest)
{
    Arguments result;
    for (auto at = arguments.begin(); at != arguments.end(); ++at) {
        if (*at == "--" && rest != Rest::refused) {
            result.rest.insert(result.rest.end(), std::next(at), arguments.end());
            break;
        }
        if (rest == Rest::anywhere && !at->empty() && !at->starts_with('-')) {
            result.rest.push_back(*at);
            continue;
        }
        Word word = takeApart(*at);
        result.action = actionOf(word);
        if (result.action != Action::work) {
            break;
        }
        const Option& option = find(options, word, *at);
        const bool isFlag = option.placeholder.empty();
        if (isFlag && word.hasValue) {
            throw UsageError(option.name + NO_VALUE);
        }
        if (!isFlag && !word.hasValue) {
            takeValue(option, at, arguments.end(), word.value);
        }
        if (!isFlag && word.value.empty()) {
            throw UsageError(option.name + " needs a value");
        }
        if (!option.value.take(word.value)) {
            throw UsageError(option.name + " takes " + option.value.wanted + ", not \"" +
                             word.value + "\"");
        }
        result.given.push_back(option.name);
    }
    return result;
}

void takeFolder(const std::vector<std::string>& words, std::filesystem::path& media)
{
    for (const std::string& word : words) {
        if (!media.empty()) {
            throw UsageError("two folders of media: \"" + media.string() + "\" and \"" + word +
                             "\"");
        }
        media = word;
    }
}

std::string describe(const std::vector<Option>& options)
{
    const std::string help = std::string(SHORT_HELP) + ", " + HELP;
    const auto nameOf = [](const Option& option) {
        return option.placeholder.empty() ? option.name : option.name + " " + option.placeholder;
    };
    std::size_t longest = help.size();
    for (const Option& option : options) {
        longest = std::max(longest, nameOf(option).size());
    }
    const std::size_t column = longest + 4;
    std::string text;
    for (const Option& option : options) {
        describe(nameOf(option), option.about, column, text);
    }
    describe(help, "prints this text", column, text);
    describe(VERSION, "prints the version", column, text);
    return text;
}

void answer(Action action, const char* program, const std::string& usage)
{
    if (action == Action::version) {
        std::printf("%s %s\n", program, KELPIX_VERSION);
    } else {
        std::fputs(usage.c_str(), stdout);
    }
}

int run(const char* program, const std::function<int()>& work)
{
    // A parent that ignores it hands that down, and the kernel then keeps no child's status.
    std::signal(SIGCHLD, SIG_DFL);
    try {
        return work();
    } catch (const UsageError& error) {
        std::fprintf(stderr, "%s: %s\n%s --help lists the options.\n", program,
                     Files::printable(error.what()).c_str(), program);
        return 2;
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "%s: not enough memory\n", program);
        return 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", program, Files::printable(error.what()).c_str());
        return 1;
    }
}

Value flag(bool& target)
{
    return {"no value", [&target](const std::string& /*text*/) {
                target = true;
                return true;
            }};
}

Value text(std::filesystem::path& target)
{
    return {"a text", [&target](const std::string& text) {
                target = text;
                return true;
            }};
}

} // namespace commandline
