#include "Reference.h"

template struct literal::Cell<Single>;
template struct literal::Boid<Single>;
template struct literal::Tentacles<Single>;
template struct literal::Sensor<Single>;
template class literal::World<Single>;

namespace reference {

Mat identity()
{
    return literal::identity<Single>();
}

Mat translation(Single x, Single y, Single z)
{
    return literal::translation<Single>({x, y, z});
}

Mat scaling(Single x, Single y, Single z)
{
    return literal::scaling<Single>({x, y, z});
}

Mat rotationAboutZ(Single degrees)
{
    return literal::rotationAboutZ(degrees);
}

Triple spherePoint(int i, int j)
{
    return literal::spherePoint<Single>(i, j);
}

Triple bodyPoint(const Triple& onSphere, int frame)
{
    return literal::bodyPoint(onSphere, frame);
}

Segment bodySegment(int frame, int segment)
{
    return literal::bodySegment<Single>(frame, segment);
}

std::vector<std::array<Triple, 4>> bodyQuads(int frame)
{
    return literal::bodyQuads<Single>(frame);
}

} // namespace reference
