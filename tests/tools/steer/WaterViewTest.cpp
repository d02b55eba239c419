#include "WaterView.h"

#include "Matrix.h"

#include <GL/glu.h>
#include <cmath>
#include <gtest/gtest.h>

namespace {

/// The scene's transforms, and what is seen through them.
struct View {
    float root[16];
    float pivot[16];
    float water[16];

    View()
    {
        Matrix::load_identity(root);
        Matrix::load_identity(pivot);
        Matrix::load_identity(water);
        water[0] = water[5] = 1.2F;
        water[12] = water[13] = -0.6F;
    }

    WaterView of(double aspect, double scale = 1) const
    {
        return {root, pivot, water, aspect, scale};
    }

    /// As GLU projects it, with the camera's matrices.
    Place projected(Place place, double aspect) const
    {
        const double f = 1 / std::tan(std::acos(-1.0) / 6);
        const double near = 0.01;
        const double far = 100;
        const double projection[16] = {f / aspect,
                                       0,
                                       0,
                                       0,
                                       0,
                                       f,
                                       0,
                                       0,
                                       0,
                                       0,
                                       (far + near) / (near - far),
                                       -1,
                                       0,
                                       0,
                                       2 * far * near / (near - far),
                                       0};
        float model[16];
        Matrix::do_multiply(model, pivot, water);
        Matrix::do_multiply(model, root, model);
        double eye[16];
        std::copy(model, model + 16, eye);
        eye[14] -= 1; // the eye is at z = 1
        const GLint viewport[4] = {0, 0, 1, 1};
        double x = 0;
        double y = 0;
        double z = 0;
        EXPECT_TRUE(gluProject(place.x, place.y, 0, eye, projection, viewport, &x, &y, &z));
        return {x, y};
    }
};

} // namespace

TEST(WaterViewTest, TheSquarePictureShowsTheMiddleOfTheWater)
{
    // tan(30 degrees) / 1.2 to each side of the middle.
    const WaterView view = View().of(1);
    const auto corner = view.placeAt(0, 0);
    ASSERT_TRUE(corner);
    EXPECT_NEAR(corner->x, 0.5 - 0.4811252, 1e-6);
    EXPECT_NEAR(corner->y, 0.5 - 0.4811252, 1e-6);
    const auto other = view.placeAt(1, 1);
    ASSERT_TRUE(other);
    EXPECT_NEAR(other->x, 0.9811252, 1e-6);
    const auto middle = view.placeAt(0.5, 0.5);
    ASSERT_TRUE(middle);
    EXPECT_NEAR(middle->x, 0.5, 1e-6);
    EXPECT_NEAR(middle->y, 0.5, 1e-6);
    const auto right = view.pictureOf({0.9811252, 0.5});
    ASSERT_TRUE(right);
    EXPECT_NEAR(right->x, 1, 1e-6);
    EXPECT_NEAR(right->y, 0.5, 1e-6);
}

TEST(WaterViewTest, PlacesBesideTheWaterBecomeTheNearestOnesInIt)
{
    const WaterView wide = View().of(16.0 / 9);
    const auto place = wide.placeAt(0, 0.5);
    ASSERT_TRUE(place);
    EXPECT_EQ(place->x, 0);
    EXPECT_NEAR(place->y, 0.5, 1e-6);
    EXPECT_EQ(wide.placeAt(1, 0.5)->x, 1);
}

TEST(WaterViewTest, ThePictureMayBeLargerThanTheCameras)
{
    const auto corner = View().of(1, 2).placeAt(0, 0);
    ASSERT_TRUE(corner);
    EXPECT_NEAR(corner->x, 0.5 - 0.4811252 / 2, 1e-6);
}

TEST(WaterViewTest, ATurnedAndZoomedWaterIsSeenWhereOpenGLDrawsIt)
{
    View view;
    view.root[0] = view.root[5] = 1.5F;
    view.root[12] = 0.2F;
    view.root[13] = -0.1F;
    Matrix::rotation(view.pivot, 0.3F, 1, 0.2F, 35);
    const double aspect = 1.25;
    const WaterView water = view.of(aspect);
    for (double x = 0; x <= 1; x += 0.25) {
        for (double y = 0; y <= 1; y += 0.25) {
            const Place expected = view.projected({x, y}, aspect);
            const auto seen = water.pictureOf({x, y});
            ASSERT_TRUE(seen);
            EXPECT_NEAR(seen->x, expected.x, 1e-6);
            EXPECT_NEAR(seen->y, expected.y, 1e-6);
            const auto place = water.placeAt(expected.x, expected.y);
            ASSERT_TRUE(place);
            EXPECT_NEAR(place->x, x, 1e-5);
            EXPECT_NEAR(place->y, y, 1e-5);
        }
    }
}

TEST(WaterViewTest, WaterThatIsSeenEdgeOnOrBehindTheEyeHasNoPlaces)
{
    View view;
    Matrix::rotation(view.pivot, 0, 1, 0, 90);
    EXPECT_FALSE(view.of(1).placeAt(0.3, 0.3));
    View behind;
    behind.root[14] = 2;
    EXPECT_FALSE(behind.of(1).placeAt(0.3, 0.3));
    EXPECT_FALSE(behind.of(1).pictureOf({0.5, 0.5}));
}
