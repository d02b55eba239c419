#include "ViewMotion.h"

#include "PivotNode.h"
#include "RootNode.h"
#include "UnderwaterScene.h"
#include "View.h"

#include <algorithm>
#include <cmath>

namespace {

/// Of what is left to do: more than anybody waits for.
constexpr double MOST_STEPS = 30;
constexpr double MOST_PICTURES = 10;
constexpr double MOST_DEGREES = 720;

/// Adds to what is left.
void add(double& left, double more, double most)
{
    left = std::clamp(left + more, -most, most);
}

/// Takes an update's part away from what is left; what is hardly visible is done at once.
double takePart(double& left, double visible)
{
    const double part = std::abs(left) < visible ? left : left / 4;
    left -= part;
    return part;
}

/// Moves a value, but not farther outside of \p low .. \p high.
double moved(double value, double way, double low, double high)
{
    return std::clamp(value + way, std::min(value, low), std::max(value, high));
}

} // namespace

void ViewMotion::zoom(double steps)
{
    add(zooming, steps, MOST_STEPS);
}

void ViewMotion::move(double right, double up)
{
    add(moving.x, right, MOST_PICTURES);
    add(moving.y, up, MOST_PICTURES);
}

void ViewMotion::turn(double right, double up)
{
    add(turning.x, right, MOST_DEGREES);
    add(turning.y, up, MOST_DEGREES);
}

void ViewMotion::advance(UnderwaterScene& scene, float& pscale, double aspect)
{
    constexpr double WHEEL = 1.25; // a step's factor
    constexpr double VISIBLE_STEPS = 0.01;
    constexpr double VISIBLE_PART = 0.0005; // of the picture
    constexpr double VISIBLE_DEGREES = 0.05;

    float* const root = scene.root->transformmat;
    if (zooming != 0) {
        const double before = static_cast<double>(root[0]);
        const double wanted = before * std::pow(WHEEL, takePart(zooming, VISIBLE_STEPS));
        const auto factor =
            static_cast<float>(moved(before, wanted - before, SMALLEST_ZOOM, LARGEST_ZOOM));
        if (record::View::zoom(root, factor)) {
            pscale = factor;
        }
    }
    if (moving != Place{}) {
        // The height of the picture where the water is: 60 degrees, seen from 1.
        const double height = 2 / std::sqrt(3.0);
        const double halfWater = 0.6 * static_cast<double>(root[0]);
        const Place way{takePart(moving.x, VISIBLE_PART) * height * aspect,
                        takePart(moving.y, VISIBLE_PART) * height};
        root[12] =
            static_cast<float>(moved(static_cast<double>(root[12]), way.x, -halfWater, halfWater));
        root[13] =
            static_cast<float>(moved(static_cast<double>(root[13]), way.y, -halfWater, halfWater));
    }
    if (turning != Place{}) {
        scene.pivot->rotate(0, 1, 0, static_cast<float>(takePart(turning.x, VISIBLE_DEGREES)));
        scene.pivot->rotate(1, 0, 0, static_cast<float>(-takePart(turning.y, VISIBLE_DEGREES)));
    }
}
