#pragma once

/// Kinds of events. The window sends MOUSE_CLICK only; the others are for nodes to send.
enum USER_EVENT {
    MOUSE_MOVE,
    MOUSE_DRAG,
    MOUSE_CLICK,
    MOUSE_WHEEL,
};

/// An input event, which SceneGraph::event hands to every node of the tree. To send one, a node
/// makes it with new and passes it to SceneGraph::event; the program has to give the node a pointer
/// to its SceneGraph.
///
/// \par Example
/// \snippet hello-node.cpp event
class UserEvent {
public:
    USER_EVENT eventType;

    /// For MOUSE_CLICK: [0] x and [1] y of the pointer in window pixels, origin at the top left,
    /// [2] the window's zoom factor. The other elements are not set.
    float eventData[10];

    /// Sets nothing.
    UserEvent() = default;

    /// Sets the kind only.
    explicit UserEvent(USER_EVENT type) : eventType(type) {}

    USER_EVENT getEventType() const { return eventType; }

    /// \return a pointer to the ten floats
    float* getEventData() { return eventData; }
};
