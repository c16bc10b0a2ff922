// The sun of the drawing's viewport in the render document.
#include "extraction_fixture.h"

#include "host/db/sun.h"
#include "omb_qorvane/host_reading.h"
#include "omb_qorvane/the_app.h"

#include <numbers>
#include <stdexcept>

namespace {

constexpr double degree = std::numbers::pi / 180;

class HostSun : public ExtractionTest {
protected:
    void SetUp() override {
        ExtractionTest::SetUp();
        ASSERT_TRUE(theApp().refresh_document());
        db().setHeaderVar("$LATITUDE", {AcDbValue(40, 28.6)});
        db().setHeaderVar("$LONGITUDE", {AcDbValue(40, 77.2)});
        db().setHeaderVar("$TIMEZONE", {AcDbValue(70, std::int64_t{5300})});
    }
    AcDbSun& add_sun(const AcDbDate& date, int milliseconds) {
        auto made = std::make_unique<AcDbSun>();
        AcDbSun& raw = *made;
        raw.setDateTime(date, milliseconds);
        const AcDbObjectId id = db().addAcDbObject(std::move(made), db().activeViewportId());
        AcDbObjectPointer<AcDbViewportTableRecord>(db().activeViewportId(), AcDb::kForWrite)
            ->setSun(id);
        return raw;
    }
    CTsSun& sun() { return theApp().tsdoc->m_Sun; }
};

TEST_F(HostSun, GoesIntoTheDocument) {
    constexpr int minute = 60000;
    AcDbSun& host = add_sun({2024, 3, 1}, 930 * minute + 59999);
    host.setDayLightSavingsOn(true);
    read_sun_from_host();
    EXPECT_EQ(sun().GetDate(), 61) << "1 March of a leap year";
    EXPECT_EQ(sun().GetTime(), 930) << "whole minutes";
    EXPECT_EQ(sun().GetTimeZone(), 5) << "whole hours";
    EXPECT_TRUE(sun().GetDaylightTime());
    EXPECT_DOUBLE_EQ(sun().GetLatitude(), 28.6);
    EXPECT_DOUBLE_EQ(sun().GetLongitude(), 77.2);
    EXPECT_EQ(sun().GetFlags(), 1);
    EXPECT_NEAR(sun().GetAzimuth(), host.azimuth() * degree, 1e-12);
    EXPECT_NEAR(sun().GetAltitude(), host.altitude() * degree, 1e-12);
    const double height = std::sin(sun().GetAltitude());
    EXPECT_NEAR(sun().GetDirection().z, height, 1e-12) << "the derived state is valid";
    EXPECT_LT(sun().GetDirection().x, 0) << "an afternoon: the sun stands in the west";
}

TEST_F(HostSun, NothingChangesWithoutOne) {
    const CTsSun before = sun();
    read_sun_from_host();
    EXPECT_TRUE(sun() == before);
}

TEST_F(HostSun, ADateThatIsNoneIsRefused) {
    AcDbSun& host = add_sun({1899, 12, 31}, 0);
    const CTsSun before = sun();
    EXPECT_THROW(read_sun_from_host(), std::invalid_argument);
    host.setDateTime({}, 0);
    EXPECT_THROW(read_sun_from_host(), std::invalid_argument);
    EXPECT_TRUE(sun() == before);
}

TEST(HostSunAngles, AreBroughtIntoTheirRanges) {
    EXPECT_EQ(wrapped_azimuth(360), 0);
    EXPECT_EQ(wrapped_azimuth(-10), 350);
    EXPECT_EQ(wrapped_azimuth(725), 5);
    EXPECT_EQ(wrapped_altitude(200), -160);
    EXPECT_EQ(wrapped_altitude(180), -180);
    EXPECT_EQ(wrapped_altitude(30), 30);
    EXPECT_EQ(wrapped_altitude(-190), 170);
}

} // namespace
