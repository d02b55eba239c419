#include "GLTrace.h"

#include <cctype>
#include <sstream>

namespace {

/// The arguments of "name = value, name = {value, value}", without their names.
std::vector<std::string> argumentsOf(const std::string& text)
{
    std::vector<std::string> arguments;
    std::string argument;
    int braces = 0;
    const auto finish = [&] {
        const std::size_t equals = argument.find(" = ");
        arguments.push_back(equals == std::string::npos ? argument : argument.substr(equals + 3));
        argument.clear();
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        braces += text[i] == '{' ? 1 : text[i] == '}' ? -1 : 0;
        if (braces == 0 && text.compare(i, 2, ", ") == 0) {
            finish();
            ++i;
        } else {
            argument += text[i];
        }
    }
    if (!argument.empty()) {
        finish();
    }
    return arguments;
}

} // namespace

std::vector<GLCall> readTrace(const std::string& dump)
{
    std::vector<GLCall> calls;
    std::istringstream lines(dump);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t open = line.find('(');
        const std::size_t close = line.rfind(')');
        const std::size_t space = line.find(' ');
        if (line.empty() || std::isdigit(static_cast<unsigned char>(line[0])) == 0 ||
            open == std::string::npos || close == std::string::npos) {
            continue;
        }
        GLCall call;
        call.text = line.substr(space + 1);
        call.name = line.substr(space + 1, open - space - 1);
        call.arguments = argumentsOf(line.substr(open + 1, close - open - 1));
        if (line.compare(close, 4, ") = ") == 0) {
            call.result = line.substr(close + 4);
        }
        calls.push_back(call);
    }
    return calls;
}

std::vector<double> numbersOf(const std::string& array)
{
    std::vector<double> numbers;
    std::istringstream stream(array.substr(array.find('{') + 1));
    for (double number = 0; stream >> number;) {
        numbers.push_back(number);
        stream.ignore(); // the comma, or the closing brace
    }
    return numbers;
}

bool TraceReader::isNext(const std::string& name, const std::vector<std::string>& arguments) const
{
    return !atEnd() && trace[at].name == name &&
           (arguments.empty() || trace[at].arguments == arguments);
}

const GLCall& TraceReader::take(const std::string& name, const std::vector<std::string>& arguments)
{
    if (!isNext(name, arguments)) {
        std::string expected = name;
        for (const std::string& argument : arguments) {
            expected += " " + argument;
        }
        std::string message = "expected " + expected + " after\n";
        for (std::size_t i = at < 5 ? 0 : at - 5; i < at; ++i) {
            message += "  " + trace[i].text + "\n";
        }
        throw Mismatch(message + "but found " + (atEnd() ? "the end" : trace[at].text));
    }
    return trace[at++];
}

bool TraceReader::skipTo(const std::string& name)
{
    while (!atEnd()) {
        if (trace[at++].name == name) {
            return true;
        }
    }
    return false;
}
