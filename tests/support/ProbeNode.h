#pragma once

#include "Node.h"

#include <string>
#include <vector>

/// What was called on nodes, in order: "root.cull", "child.doupdate", ...
using Journal = std::vector<std::string>;

/// A node that notes every call of an operation that is abstract in Node. It draws nothing.
class ProbeNode : public Node {
public:
    Journal& journal;                       ///< borrows
    int visible = 1;                        ///< what cull returns
    void (*onCull)(ProbeNode&) = nullptr;   ///< called in cull
    void (*onUpdate)(ProbeNode&) = nullptr; ///< called in doupdate

    ProbeNode(const char* label, Journal& notes) : journal(notes) { setName(label); }

    int cull() override
    {
        note("cull");
        if (onCull) {
            onCull(*this);
        }
        return visible;
    }
    void draw() override { note("draw"); }
    void doupdate() override
    {
        note("doupdate");
        if (onUpdate) {
            onUpdate(*this);
        }
    }
    void drawBBox() override { note("drawBBox"); }
    RTTI_NODE_TYPE getType() const override
    {
        note("getType");
        return RTTI_SPECIAL;
    }
    void userEvent(UserEvent*) override { note("userEvent"); }
    void addTexture(Texture*) override { note("addTexture"); }
    Texture* getTexture() override
    {
        note("getTexture");
        return nullptr;
    }
    void computeBBox() override { note("computeBBox"); }
    BBox* getBBox() override
    {
        note("getBBox");
        return nullptr;
    }
    void addGeometry(Geometry*) override { note("addGeometry"); }
    Geometry* getGeometry() override
    {
        note("getGeometry");
        return nullptr;
    }
    void print() override { note("print"); }
    void cleanup() override { note("cleanup"); }

protected:
    void note(const char* operation) const
    {
        journal.push_back(std::string(name) + "." + operation);
    }
};
