#pragma once

#include "LiteralBody.h"
#include "LiteralWorld.h"
#include "Single.h"

/// The literal scene in the tests' number type. Reference.cpp compiles it, once for all tests.
namespace reference {

using Triple = literal::Triple<Single>;
using Mat = literal::Mat<Single>;
using Cell = literal::Cell<Single>;
using Boid = literal::Boid<Single>;
using Tentacles = literal::Tentacles<Single>;
using Sensor = literal::Sensor<Single>;
using Recording = literal::Recording<Single>;
using World = literal::World<Single>;
using Segment = literal::Segment<Single>;

using literal::BODY_SEGMENTS;
using literal::product;

Mat identity();
Mat translation(Single x, Single y, Single z);
Mat scaling(Single x, Single y, Single z);
Mat rotationAboutZ(Single degrees);

Triple spherePoint(int i, int j);
Triple bodyPoint(const Triple& onSphere, int frame);
Segment bodySegment(int frame, int segment);
std::vector<std::array<Triple, 4>> bodyQuads(int frame);

} // namespace reference

extern template struct literal::Cell<Single>;
extern template struct literal::Boid<Single>;
extern template struct literal::Tentacles<Single>;
extern template struct literal::Sensor<Single>;
extern template class literal::World<Single>;
