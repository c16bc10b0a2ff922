// Underlays: their definitions, frames and what they tell.
#include "tests/host/flat/support.h"

#include "host/db/underlay.h"

using namespace test_flat;

namespace {

TEST(Underlays, TellTheirFileAndDrawTheirFrame) {
    for (const char* kind : {"PDF", "DWF", "DGN"}) {
        const std::string name(kind);
        const std::string source = drawing(
            "",
            " 0 " + name +
                "UNDERLAY 100 AcDbEntity 8 0 100 AcDbUnderlayReference 340 50 10 10 20 0 30 0 41 2 "
                "42 2 43 2 50 90 280 3 281 100 282 0 11 0 21 0 11 4 21 3",
            " 0 " + name + "DEFINITION 5 50 100 AcDbUnderlayDefinition 1 plans/ground.pdf 2 1");
        const auto db = test_dxf::load(source);
        EXPECT_EQ(test_dxf::findings(*db), "");
        EXPECT_EQ(test_dxf::save(*db), source);
        auto* underlay = test_dxf::first_entity<AcDbUnderlayReference>(*db);
        ASSERT_NE(underlay, nullptr);
        EXPECT_EQ(underlay->dxfName(), name + "UNDERLAY");
        EXPECT_TRUE(underlay->isClipped());
        std::vector<AcDbDrawFinding> findings;
        underlay->drawFindings(findings);
        ASSERT_EQ(findings.size(), 1U);
        EXPECT_STREQ(findings[0].code, "underlay");
        EXPECT_EQ(findings[0].detail, "plans/ground.pdf");
        const auto calls = drawn(*underlay);
        ASSERT_EQ(calls.size(), 1U);
        EXPECT_EQ(calls[0].points.size(), 5U);
        AcDbExtents box;
        ASSERT_EQ(underlay->getGeomExtents(box), Acad::eOk);
        EXPECT_NEAR(box.minPoint().x, 10 - 6, 1e-9) << "turned by 90 degrees";
        EXPECT_NEAR(box.maxPoint().y, 8, 1e-9);
    }
}

} // namespace
