#pragma once

class FrozenScene;

/// Draws the same pixels as the frozen scene, with as few GL calls as it takes: no nodes, no
/// computation, and state set once for all that share it. Needs: the scene's GL context.
void drawFlat(const FrozenScene& scene);
