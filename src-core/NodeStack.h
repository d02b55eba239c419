#pragma once

#include <list>

/// A last-in, first-out stack of slot indices: free child slots of nodes, free slots of
/// grid buckets.
class NodeStack {
public:
    std::list<int> stack; ///< top first

    /// Puts \p value on top.
    void push(int value);

    /// Takes the value on top. The stack must not be empty: test size() first.
    int pop();

    int size() const;
};
