#pragma once

/// Makes the picture of the current projection larger or smaller, about the middle of the viewport:
/// what WallLayout::projectionScale asks for, after the camera has set its projection up.
/// Needs: current GL context. Changes: the projection matrix; a \p factor of 1 makes no GL call.
/// Restores: the matrix mode.
void scaleProjection(float factor);
