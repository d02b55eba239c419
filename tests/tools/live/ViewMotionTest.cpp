#include "ViewMotion.h"

#include "PivotNode.h"
#include "RootNode.h"
#include "UnderwaterScene.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

class ViewMotionTest : public testing::Test {
protected:
    void advance(int updates)
    {
        for (int i = 0; i < updates; ++i) {
            motion.advance(scene, pscale, ASPECT);
        }
    }

    static constexpr double ASPECT = 1.5;
    UnderwaterScene scene;
    float* const root = scene.root->transformmat;
    float* const pivot = scene.pivot->transformmat;
    float pscale = 1;
    ViewMotion motion;
};

} // namespace

TEST_F(ViewMotionTest, AZoomIsThatOfTheWheelInTheEndAndKeepsTheMiddle)
{
    root[12] = 0.2F;
    motion.zoom(2);
    advance(1);
    EXPECT_NEAR(root[0], std::pow(1.25, 0.5), 1e-6) << "a quarter of it";
    EXPECT_EQ(root[5], root[0]);
    advance(60);
    EXPECT_NEAR(root[0], 1.5625, 1e-5);
    EXPECT_NEAR(root[12], 0.2 * 1.5625, 1e-5);
    EXPECT_EQ(pscale, root[0]);
    const float there = root[0];
    advance(1);
    EXPECT_EQ(root[0], there);
}

TEST_F(ViewMotionTest, AMoveIsInPartsOfThePicture)
{
    // The picture is 2 tan(30 degrees) high where the water is, and half as wide again.
    motion.move(0.1, -0.25);
    advance(60);
    EXPECT_NEAR(root[12], 0.1 * 1.5 * 1.1547005, 1e-6);
    EXPECT_NEAR(root[13], -0.25 * 1.1547005, 1e-6);
}

TEST_F(ViewMotionTest, ATurnIsInDegreesToTheRightAndUpwards)
{
    motion.turn(90, 0);
    advance(80);
    // The front, z, comes to the right.
    EXPECT_NEAR(pivot[8], 1, 1e-5);
    EXPECT_NEAR(pivot[10], 0, 1e-5);
    motion.turn(-90, 90);
    advance(80);
}

TEST_F(ViewMotionTest, ATurnUpwardsBringsTheFrontUp)
{
    motion.turn(0, 90);
    advance(80);
    EXPECT_NEAR(pivot[9], 1, 1e-5);
    EXPECT_NEAR(pivot[10], 0, 1e-5);
}

TEST_F(ViewMotionTest, WhateverIsAskedForTheWaterStaysInThePicture)
{
    for (int i = 0; i < 300; ++i) {
        motion.zoom(10);
        motion.move(1, 1);
        motion.turn(180, 180);
        advance(1);
    }
    EXPECT_NEAR(root[0], 20, 1e-4);
    EXPECT_LE(root[12], 0.6F * root[0]);
    EXPECT_LE(root[13], 0.6F * root[0]);
    for (int i = 0; i < 300; ++i) {
        motion.zoom(-10);
        motion.move(-1, -1);
        advance(1);
    }
    EXPECT_NEAR(root[0], 0.1, 1e-6);
    EXPECT_GE(root[12], -0.6F * root[0] - 1e-6F);
    EXPECT_GE(root[13], -0.6F * root[0] - 1e-6F);
    for (int i = 0; i < 16; ++i) {
        EXPECT_TRUE(std::isfinite(root[i]));
        EXPECT_TRUE(std::isfinite(pivot[i]));
    }
}

TEST_F(ViewMotionTest, AViewThatThePersonHasBroughtOutsideIsNotPulledBack)
{
    root[0] = root[5] = 50; // by the mouse
    root[12] = 100;
    motion.zoom(1);
    motion.move(0.1, 0);
    advance(60);
    EXPECT_EQ(root[0], 50);
    EXPECT_EQ(root[12], 100);
    motion.zoom(-1);
    advance(60);
    EXPECT_NEAR(root[0], 40, 1e-3);
}
