// The drawing's sun: what its tags mean, and where it stands.
#include "tests/host/references/files.h"

#include "host/db/sun.h"
#include "host/gs/view.h"

#include <cmath>
#include <numbers>

using namespace refs;

namespace {

double turned(double a, double b) { return std::abs(std::remainder(a - b, 360.0)); }

TEST(Sun, StandsWherePublishedTablesHaveIt) {
    const struct {
        const char* what;
        AcDbDate date;
        double seconds;
        AcDbPlace place;
        double azimuth, altitude;
    } kCases[] = {
        // I. Reda, A. Andreas, "Solar Position Algorithm for Solar Radiation Applications", A.5
        {"Colorado", {2003, 10, 17}, 45030, {39.742476, -105.1786, -7}, 194.34024, 39.87},
        // The Sun's place at solstice noon on the meridian of Greenwich.
        {"41 S", {2012, 12, 22}, 43200, {-41, 0, 0}, 359.09, 72.43},
        {"3 N", {2012, 12, 22}, 43200, {3, 0, 0}, 180.62, 63.56},
        {"41 N", {2012, 12, 22}, 43200, {41, 0, 0}, 180.30, 25.56},
        {"Helsinki", {2022, 9, 4}, 47969, {60.17, 24.94, 3}, 180.05, 36.93},
    };
    for (const auto& c : kCases) {
        const AcDbSunPosition sun =
            acdbSunPosition(acdbJulianDay(c.date), c.seconds, false, c.place);
        EXPECT_LT(turned(sun.azimuth, c.azimuth), 0.06) << c.what << " " << sun.azimuth;
        EXPECT_NEAR(sun.altitude, c.altitude, 0.03) << c.what;
        AcDbPlace summer = c.place;
        summer.zone -= 1;
        const AcDbSunPosition same =
            acdbSunPosition(acdbJulianDay(c.date), c.seconds, true, summer);
        EXPECT_LT(turned(sun.azimuth, same.azimuth), 1e-9) << "summer time is an hour of the zone";
    }
}

TEST(Sun, DatesOfJulianDays) {
    const struct {
        std::int64_t day;
        AcDbDate date;
    } kCases[] = {{2440588, {1970, 1, 1}},  {2451545, {2000, 1, 1}}, {2458383, {2018, 9, 21}},
                  {2451604, {2000, 2, 29}}, {2415021, {1900, 1, 1}}, {1721426, {1, 1, 1}}};
    for (const auto& c : kCases) {
        const AcDbDate date = acdbDateOfJulianDay(c.day);
        EXPECT_EQ(date.year, c.date.year) << c.day;
        EXPECT_EQ(date.month, c.date.month) << c.day;
        EXPECT_EQ(date.day, c.date.day) << c.day;
        EXPECT_EQ(acdbJulianDay(c.date), c.day);
    }
    for (const std::int64_t day : {std::int64_t{0}, std::int64_t{-5}, std::int64_t{1} << 60}) {
        EXPECT_EQ(acdbDateOfJulianDay(day).year, 0);
    }
    EXPECT_EQ(acdbJulianDay({2023, 2, 29}), 0);
}

struct SunInDrawings : Folder {
    /// A drawing whose viewport has a sun with these tags.
    const AcDbSun& sun(const std::string& tags, const std::string& header = "") {
        Text text{header,
                  "0\nTABLE\n2\nVPORT\n70\n1\n0\nVPORT\n5\n31\n2\n*ACTIVE\n70\n0\n361\n5A\n"
                  "0\nENDTAB\n",
                  "",
                  face(0) +
                      "0\nENDSEC\n0\nSECTION\n2\nOBJECTS\n0\nDICTIONARY\n5\nC\n"
                      "0\nSUN\n5\n5A\n330\n31\n90\n1\n" +
                      tags};
        write("a.dxf", text);
        db = open("a.dxf");
        const AcDbObjectPointer<AcDbViewportTableRecord> viewport(db->activeViewportId());
        return *AcDbSun::cast(viewport->sunId().stub()->object);
    }
    std::unique_ptr<AcDbDatabase> db;
};

TEST_F(SunInDrawings, Tags) {
    const std::string tags = "290\n1\n63\n3\n421\n16711935\n40\n0.5\n291\n0\n91\n2458383\n92\n"
                             "54000000\n292\n1\n70\n2\n71\n512\n280\n3\n";
    const AcDbSun& read = sun(tags);
    EXPECT_TRUE(read.isOn());
    EXPECT_EQ(read.sunColor().word() & 0xffffff, 0xff00ffU);
    EXPECT_EQ(read.intensity(), 0.5);
    EXPECT_FALSE(read.castsShadows());
    EXPECT_EQ(read.date().day, 21);
    EXPECT_EQ(read.milliseconds(), 54000000);
    EXPECT_TRUE(read.isDayLightSavingsOn());
    EXPECT_EQ(read.shadowType(), AcDbSun::kSampled);
    EXPECT_EQ(read.shadowMapSize(), 512);
    EXPECT_EQ(read.shadowSoftness(), 3);
    EXPECT_FALSE(sun("").isOn()) << "a sun without tags is off";
}

TEST_F(SunInDrawings, TimesInSecondsAndInThousandths) {
    EXPECT_EQ(sun("92\n54000\n").milliseconds(), 54000000);
    EXPECT_EQ(sun("92\n86399\n").milliseconds(), 86399000);
    EXPECT_EQ(sun("92\n-1\n").milliseconds(), 0);
    EXPECT_EQ(sun("92\n2000000000\n").milliseconds(), 86399999);
}

TEST_F(SunInDrawings, PlaceZoneAndNorth) {
    const std::string when = "91\n2458383\n92\n54000000\n";
    const AcDbSun& usual = sun(when);
    EXPECT_DOUBLE_EQ(db->latitude(), 37.795);
    EXPECT_DOUBLE_EQ(db->longitude(), -122.394);
    EXPECT_EQ(db->timeZone(), -8000);
    const AcDbSunPosition san_francisco = usual.position();
    EXPECT_LT(turned(san_francisco.azimuth, 239), 3) << "three in the afternoon: south-west";

    const auto header = [](double latitude, double longitude, int zone, double north) {
        return fmt::format("9\n$LATITUDE\n40\n{}\n9\n$LONGITUDE\n40\n{}\n9\n$TIMEZONE\n70\n{}\n"
                           "9\n$NORTHDIRECTION\n40\n{}\n",
                           latitude, longitude, zone, north);
    };
    const AcDbSunPosition delhi = sun(when, header(28.6, 77.2, 5300, 0)).position();
    EXPECT_DOUBLE_EQ(db->timeZoneHours(), 5.5);
    const AcDbSunPosition same = acdbSunPosition(2458383, 54000, false, {28.6, 77.2, 5.5});
    EXPECT_DOUBLE_EQ(delhi.azimuth, same.azimuth);
    const AcDbSunPosition turned_plan =
        sun(when, header(28.6, 77.2, 5300, std::numbers::pi / 2)).position();
    EXPECT_NEAR(turned(turned_plan.azimuth, same.azimuth + 90), 0, 1e-9);
    EXPECT_DOUBLE_EQ(turned_plan.altitude, same.altitude);
    sun(when, header(28.6, 77.2, -3300, 0));
    EXPECT_DOUBLE_EQ(db->timeZoneHours(), -3.5);
}

TEST_F(Folder, PlaceOfGeographicData) {
    write("a.dxf",
          "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1024\n0\nENDSEC\n0\nSECTION\n2\nTABLES\n"
          "0\nTABLE\n2\nBLOCK_RECORD\n5\n1\n100\nAcDbSymbolTable\n70\n1\n0\nBLOCK_RECORD\n5\n1F\n"
          "102\n{ACAD_XDICTIONARY\n360\nD1\n102\n}\n330\n1\n100\nAcDbSymbolTableRecord\n"
          "100\nAcDbBlockTableRecord\n2\n*Model_Space\n0\nENDTAB\n0\nENDSEC\n0\nSECTION\n2\n"
          "OBJECTS\n0\nDICTIONARY\n5\nC\n100\nAcDbDictionary\n0\nDICTIONARY\n5\nD1\n330\n1F\n"
          "100\nAcDbDictionary\n3\nACAD_GEOGRAPHICDATA\n350\nD2\n0\nGEODATA\n5\nD2\n330\nD1\n"
          "100\nAcDbGeoData\n90\n2\n70\n3\n10\n1\n20\n2\n30\n0\n11\n8.5\n21\n47.25\n31\n0\n"
          "12\n1.0\n22\n1.0\n0\nENDSEC\n0\nEOF\n");
    const auto db = open("a.dxf");
    EXPECT_DOUBLE_EQ(db->latitude(), 47.25);
    EXPECT_DOUBLE_EQ(db->longitude(), 8.5);
    EXPECT_NEAR(db->northDirection(), std::numbers::pi / 4, 1e-12);
}

// ---- named views, which have suns as well

struct NamedViews : Folder {
    AcGsView view(const std::string& tags) {
        write("a.dxf",
              Text{"",
                   "0\nTABLE\n2\nVIEW\n70\n1\n0\nVIEW\n2\nGarden\n70\n0\n" + tags + "0\nENDTAB\n",
                   "", face(0)});
        db = open("a.dxf");
        AcDbObjectId id;
        EXPECT_EQ(db->viewTable().getAt("garden", id), Acad::eOk);
        AcGsView view;
        EXPECT_TRUE(acgsGetViewParameters(id, view));
        return view;
    }
    static std::string vectors(const AcGeVector3d& direction, const AcGePoint3d& target) {
        return fmt::format("11\n{}\n21\n{}\n31\n{}\n12\n{}\n22\n{}\n32\n{}\n", direction.x,
                           direction.y, direction.z, target.x, target.y, target.z);
    }
    std::unique_ptr<AcDbDatabase> db;
};

TEST_F(NamedViews, PerspectiveWithLensAndTwist) {
    const AcGsView v =
        view("40\n30\n41\n40\n" + vectors({0, -20, 0}, {1, 2, 3}) +
             "42\n42\n50\n90\n71\n1\n110\n9\n120\n9\n130\n9\n111\n0\n121\n1\n131\n0\n");
    EXPECT_TRUE(v.perspective);
    EXPECT_EQ(v.position.y, -18);
    EXPECT_EQ(v.target.z, 3);
    EXPECT_NEAR(std::hypot(v.field_width, v.field_height), 20, 1e-9) << "42 mm on 42 mm at 20";
    EXPECT_NEAR(v.field_width / v.field_height, 4.0 / 3, 1e-12);
    EXPECT_NEAR(v.up.x, 1, 1e-12) << "the picture turned by 90 degrees; a UCS does not count";
}

TEST_F(NamedViews, OrthographicWithACentreOfItsOwn) {
    const AcGsView v = view("40\n10\n41\n15\n10\n5\n20\n7\n" + vectors({0, -1, 0}, {100, 0, 0}) +
                            "42\n50\n71\n0\n281\n0\n72\n1\n79\n5\n");
    EXPECT_FALSE(v.perspective);
    EXPECT_NEAR(v.target.x, 105, 1e-12);
    EXPECT_NEAR(v.target.z, 7, 1e-12);
    EXPECT_EQ(v.field_width, 15);
}

TEST_F(NamedViews, ACameraThatLiesInItsTarget) {
    for (const char* mode : {"71\n0\n", "71\n1\n"}) {
        const AcGsView v =
            view("40\n10\n41\n15\n" + vectors({0, 0, 0}, {1, 2, 3}) + "42\n50\n" + mode);
        EXPECT_EQ(v.position - v.target, AcGeVector3d::kZAxis) << "it looks down";
        EXPECT_TRUE(v.field_width > 0 && v.field_height > 0);
        EXPECT_NEAR(v.up.y, 1, 1e-12);
    }
    const AcGsView odd = view("40\n-1\n41\nnan\n42\n0\n71\n1\n50\n1e999\n");
    EXPECT_TRUE(std::isfinite(odd.field_width) && odd.field_width > 0);
    EXPECT_TRUE(std::isfinite(odd.up.x));
}

} // namespace
