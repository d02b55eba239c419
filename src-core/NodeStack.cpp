#include "NodeStack.h"

void NodeStack::push(int value)
{
    stack.push_front(value);
}

int NodeStack::pop()
{
    const int value = stack.front();
    stack.pop_front();
    return value;
}

int NodeStack::size() const
{
    return static_cast<int>(stack.size());
}
