#include "View.h"

#include "Matrix.h"

#include <cmath>

namespace record::View {

bool zoom(float* root, float factor)
{
    const double ratio = static_cast<double>(factor) / static_cast<double>(root[0]);
    const auto x = static_cast<float>(static_cast<double>(root[12]) * ratio);
    const auto y = static_cast<float>(static_cast<double>(root[13]) * ratio);
    if (!std::isfinite(x) || !std::isfinite(y)) {
        return false;
    }
    root[0] = root[5] = factor;
    root[12] = x;
    root[13] = y;
    return true;
}

void center(float* root, const float* pivot, const float* water, float x, float y)
{
    float m[16];
    Matrix::do_multiply(m, pivot, water);
    root[12] = -root[0] * (m[0] * x + m[4] * y + m[12]);
    root[13] = -root[5] * (m[1] * x + m[5] * y + m[13]);
}

} // namespace record::View
