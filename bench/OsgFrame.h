#pragma once

#include <memory>

class FrozenScene;

/// The frozen scene's picture as a scene of OpenSceneGraph: a node with a transform for each thing,
/// state shared by what looks alike.
class OsgFrame {
public:
    /// Needs: current GL context, one of its own.
    explicit OsgFrame(const FrozenScene& scene);
    OsgFrame(const OsgFrame&) = delete;
    OsgFrame& operator=(const OsgFrame&) = delete;
    ~OsgFrame();

    /// Needs: the context of the construction.
    void draw();

private:
    struct Viewer;
    std::unique_ptr<Viewer> viewer;
};
