// How drawings are divided over sheets of paper.
#include "draw/pages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace tessera_draw {
namespace {

TEST(DrawPages, WhatFitsIsOnOnePageInTheBetterOrientation) {
    const PagePlan small = planPages({400, 300}, Paper::a4);
    EXPECT_EQ(small.count(), 1U);
    EXPECT_EQ(small.scale, 1) << "nothing is enlarged";
    const PagePlan wide = planPages({1200, 500}, Paper::a4);
    EXPECT_EQ(wide.count(), 1U);
    EXPECT_GT(wide.paper.width, wide.paper.height);
    // 841.89 points less two margins of 34, at 0.75 points for each pixel.
    EXPECT_NEAR(wide.scale, (841.89 - 68) / (1200 * 0.75), 1e-9);
    const PagePlan high = planPages({500, 1200}, Paper::letter);
    EXPECT_EQ(high.count(), 1U);
    EXPECT_LT(high.paper.width, high.paper.height);
}

TEST(DrawPages, MoreThanAPageIsDividedAtAReadableScale) {
    // At 0.6, one page on its side shows 773.89 / 0.45 = 1,719 pixels.
    EXPECT_EQ(planPages({1719, 500}, Paper::a4).count(), 1U);
    const PagePlan two = planPages({1730, 500}, Paper::a4);
    EXPECT_EQ(two.count(), 2U);
    EXPECT_GE(two.scale, minPaperScale);
    EXPECT_EQ(planPages({1730, 500}, Paper::a3).count(), 1U);
}

TEST(DrawPages, PartsCoverTheDrawingOnceAndOverlap) {
    for (const Size drawing : {Size{4017, 578}, Size{900, 7000}, Size{5000, 5000}, Size{50, 50}}) {
        const PagePlan plan = planPages(drawing, Paper::a4);
        const double pixel = pointsPerPixel * plan.scale;
        EXPECT_LE(plan.part(0, 0).own.x, 0);
        EXPECT_LE(plan.part(0, 0).own.y, 0);
        const PagePart last = plan.part(plan.columns - 1, plan.rows - 1);
        EXPECT_GE(last.own.right(), drawing.width - 1e-6);
        EXPECT_GE(last.own.bottom(), drawing.height - 1e-6);
        if (plan.columns == 1) {
            EXPECT_NEAR(-plan.part(0, 0).own.x, last.own.right() - drawing.width, 1e-6) << "in the middle";
        } else {
            EXPECT_EQ(plan.part(0, 0).own.x, 0) << "at the margin";
        }
        for (std::uint32_t i = 1; i < plan.columns; ++i) {
            const PagePart before = plan.part(i - 1, 0);
            const PagePart after = plan.part(i, 0);
            EXPECT_NEAR(before.own.right(), after.own.x, 1e-6);
            EXPECT_NEAR((before.shown.right() - after.shown.x) * pixel, paperOverlap, 1e-6);
        }
        for (std::uint32_t i = 1; i < plan.rows; ++i)
            EXPECT_NEAR(plan.part(0, i - 1).own.bottom(), plan.part(0, i).own.y, 1e-6);
    }
}

TEST(DrawPages, VeryLargeDrawingsAreScaledDown) {
    const PagePlan large = planPages({40000, 30000}, Paper::a4);
    EXPECT_LE(large.count(), maxPages);
    EXPECT_GT(large.count(), maxPages / 2) << "not farther down than they have to be";
    EXPECT_LT(large.scale, minPaperScale);
    const PagePlan endless = planPages({1e12, 10}, Paper::a3);
    EXPECT_LE(endless.count(), maxPages);
    EXPECT_LT(endless.scale, 1e-5);
    EXPECT_EQ(planPages({0, 0}, Paper::a4).count(), 1U);
}

}  // namespace
}  // namespace tessera_draw
