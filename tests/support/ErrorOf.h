#pragma once

#include <stdexcept>
#include <string>

/// What the action throws, in words; "no error" when it throws nothing.
template<typename Action>
std::string errorOf(Action action)
{
    try {
        action();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no error";
}
