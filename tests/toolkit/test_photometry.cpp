// Measured distributions: files whose light is known in closed form, symmetry, and damage.
#include "toolkit/ts_light.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <numbers>

namespace {

constexpr double pi = std::numbers::pi;
constexpr double degree = pi / 180;

CTsPhotometricWeb read(const std::string& text) {
    CTsPhotometricWeb web;
    std::string error;
    EXPECT_TRUE(web.ReadText(text, "lamp.ies", error)) << error;
    return web;
}

std::string refusal(const std::string& text) {
    CTsPhotometricWeb web;
    std::string error;
    EXPECT_FALSE(web.ReadText(text, "lamp.ies", error));
    EXPECT_TRUE(web.Empty());
    return error;
}

std::string list(const std::vector<double>& values, const char* between = " ") {
    std::string text;
    for (const double value : values) {
        text += std::to_string(value) + between;
    }
    return text;
}

std::vector<double> steps(double from, double to, double by) {
    std::vector<double> values;
    for (double value = from; value < to + by / 2; value += by) {
        values.push_back(value);
    }
    return values;
}

using Lamp = std::function<double(double vertical, double horizontal)>; // degrees to candela

struct Form {
    std::string header = "IESNA:LM-63-2002\n[TEST] 1\n";
    std::string tilt = "TILT=NONE\n";
    std::string lumens = "1000", factors = "1 1 50";
    int type = 1;
    const char* between = " ";
};

std::string ies(const Lamp& lamp, const std::vector<double>& vertical,
                const std::vector<double>& horizontal, const Form& form) {
    std::string text = form.header + form.tilt + "1 " + form.lumens + " 1 " +
                       std::to_string(vertical.size()) + " " + std::to_string(horizontal.size()) +
                       " " + std::to_string(form.type) + " 2 0 0 0\n" + form.factors + "\n" +
                       list(vertical, form.between) + list(horizontal, form.between);
    for (const double h : horizontal) {
        for (const double v : vertical) {
            text += std::to_string(lamp(v, h)) + form.between;
        }
    }
    return text;
}

double uniform(double, double) { return 100; }
double cosine(double v, double) { return v < 90 ? 100 * std::cos(v * degree) : 0; }
/// Symmetric about both planes, so that every kind of symmetry can tell it.
double waisted(double v, double h) {
    return 100 + 50 * std::sin(v * degree) * std::sin(v * degree) * std::cos(2 * h * degree);
}

} // namespace

TEST(Photometry, FluxInClosedForm) {
    const std::vector<double> v = steps(0, 180, 5), one{0};
    EXPECT_NEAR(read(ies(uniform, v, one, {})).Flux(), 400 * pi, 0.01);
    EXPECT_NEAR(read(ies(uniform, {0, 180}, one, {})).Flux(), 400 * pi, 0.01);
    EXPECT_NEAR(read(ies(uniform, {0, 90}, one, {})).Flux(), 200 * pi, 0.01) << "half a sphere";
    EXPECT_NEAR(read(ies(cosine, steps(0, 90, 1), one, {})).Flux(), 100 * pi, 0.02);
    // A turn of cos(2 h) adds nothing.
    EXPECT_NEAR(read(ies(waisted, v, steps(0, 360, 15), {})).Flux(), 400 * pi, 0.01);
}

TEST(Photometry, SymmetricFilesTellTheSameLight) {
    const std::vector<double> v = steps(0, 180, 5);
    const CTsPhotometricWeb whole = read(ies(waisted, v, steps(0, 360, 15), {}));
    const std::vector<std::pair<double, double>> reaches{{0, 345},   {0, 180},  {0, 90},  {90, 270},
                                                         {180, 360}, {-90, 90}, {15, 360}};
    for (const auto& [from, to] : reaches) {
        const CTsPhotometricWeb web = read(ies(waisted, v, steps(from, to, 15), {}));
        EXPECT_NEAR(web.Flux(), whole.Flux(), 0.01) << from << " to " << to;
        for (double h = -400; h < 800; h += 7) {
            EXPECT_NEAR(web.Candela(1.234, h * degree), whole.Candela(1.234, h * degree), 1e-3)
                << from << " to " << to << " at " << h;
        }
    }
    EXPECT_NEAR(whole.Candela(90 * degree, 0), 150, 1e-3);
    EXPECT_NEAR(whole.Candela(90 * degree, 90 * degree), 50, 1e-3);
    EXPECT_NEAR(whole.Candela(90 * degree, 7.5 * degree),
                (150 + 50 * std::cos(30 * degree) + 100) / 2, 1e-3)
        << "straight lines in between";
    const CTsPhotometricWeb half = read(ies(uniform, {0, 90}, {0}, {}));
    EXPECT_NEAR(half.Candela(pi / 2, 3), 100, 1e-3);
    EXPECT_EQ(half.Candela(91 * degree, 3), 0) << "nothing was measured there";
    EXPECT_EQ(half.Candela(-0.1, 3), 0);
    EXPECT_EQ(half.Candela(std::nan(""), 0), 0);
}

TEST(Photometry, HalfTurnsAreMirroredAboutTheRightPlane) {
    const std::vector<double> v = steps(0, 180, 5);
    // More light where h is 0 than opposite: 0 to 180 has both, 90 to 270 has them once each.
    const Lamp to_x = [](double, double h) { return 100 + 50 * std::cos(h * degree); };
    const Lamp to_y = [](double, double h) { return 100 + 50 * std::sin(h * degree); };
    const CTsPhotometricWeb x = read(ies(to_x, v, steps(0, 180, 15), {}));
    const CTsPhotometricWeb y = read(ies(to_y, v, steps(90, 270, 15), {}));
    for (double h = 0; h < 360; h += 30) {
        EXPECT_NEAR(x.Candela(1, h * degree), to_x(0, h), 1e-3) << h;
        EXPECT_NEAR(y.Candela(1, h * degree), to_y(0, h), 1e-3) << h;
    }
}

TEST(Photometry, EveryAgeOfTheFormIsRead) {
    const std::vector<double> v = steps(0, 90, 10), h{0, 90};
    Form form;
    const double flux = read(ies(cosine, v, h, form)).Flux();
    const auto factor = [&] { return read(ies(cosine, v, h, form)).Flux() / flux; };
    form.factors = "0.9 0.5 50";
    EXPECT_NEAR(factor(), 0.9, 1e-6) << "a field kept for the future is no factor";
    form.header = "IES:LM-63-2019\n[TEST] x\n[_MORE] TILT=\n", form.factors = "0.9 1.10000 50";
    EXPECT_NEAR(factor(), 0.9, 1e-6) << "how the file was made is no factor";
    form.factors = "0.9 0.5 50", form.header = "IESNA91\n[MANUFAC] y\n";
    EXPECT_NEAR(factor(), 0.45, 1e-6) << "ballast and ballast-lamp factor";
    form.header = "A LAMP OF 1986\nMADE SOMEWHERE\n";
    EXPECT_NEAR(factor(), 0.45, 1e-6);
    form.header = "";
    EXPECT_NEAR(factor(), 0.45, 1e-6);
    form = {};
    form.lumens = "-1";
    EXPECT_NEAR(factor(), 1, 1e-6) << "absolute photometry";
    form.factors = "0 0 50";
    EXPECT_NEAR(factor(), 1, 1e-6) << "nothing told";
    form = {};
    form.tilt = "TILT=INCLUDE\n1\n3\n0 45 90\n1 .9 .8\n";
    EXPECT_NEAR(factor(), 1, 1e-6);
    form.tilt = " Tilt=LAMP.TLT \n";
    EXPECT_NEAR(factor(), 1, 1e-6);
    form = {};
    form.between = ",";
    EXPECT_NEAR(factor(), 1, 1e-6);
    form.between = "\r\n", form.tilt = "TILT=NONE\r\n",
    form.header = "\xEF\xBB\xBFIESNA:LM-63-1995\r\n";
    EXPECT_NEAR(factor(), 1, 1e-6);
    form.between = " \r+", form.tilt = "TILT=NONE\r", form.header = "IESNA:LM-63-1995\r";
    EXPECT_NEAR(read(ies(cosine, v, h, form) + "0").Flux() / flux, 1, 1e-6) << "signs ahead";
    const CTsPhotometricWeb web =
        read("X\nTILT=NONE\n1 1 1.5 2 1 1 1 0 0 0 1 1 1 0 180 0 1e1 2.E1");
    EXPECT_NEAR(web.Candela(0, 0), 15, 1e-6);
    EXPECT_NEAR(web.Candela(90 * degree, 0), 22.5, 1e-4);
}

TEST(Photometry, TypesAAndBTurnAboutTheirOwnAxes) {
    // A narrow beam to one side: 40 degrees along H at V 0, then along V at H 0. Both axes meet the
    // beam at H 0 or V 0, so both types agree there; off the axes they do not.
    const auto spot_at = [](double at_h, double at_v) {
        return Lamp([=](double v, double h) {
            return std::abs(v - at_v) < 1 && std::abs(h - at_h) < 1 ? 100 : 0;
        });
    };
    const std::vector<double> angles = steps(-90, 90, 10);
    Form a, b;
    a.type = 3, b.type = 2;
    for (const Form& form : {a, b}) {
        const CTsPhotometricWeb right = read(ies(spot_at(40, 0), angles, angles, form));
        EXPECT_NEAR(right.Candela(40 * degree, 0), 100, 1e-3) << "along the x axis";
        EXPECT_NEAR(right.Candela(40 * degree, 90 * degree), 0, 1e-3);
        const CTsPhotometricWeb up = read(ies(spot_at(0, 40), angles, angles, form));
        EXPECT_NEAR(up.Candela(40 * degree, 90 * degree), 100, 1e-3);
        EXPECT_NEAR(read(ies(uniform, angles, angles, form)).Flux(), 200 * pi, 0.1);
        const std::vector<double> quarter = steps(0, 90, 10);
        const CTsPhotometricWeb four = read(ies(spot_at(40, 0), quarter, quarter, form));
        EXPECT_NEAR(four.Candela(40 * degree, pi), 100, 1e-2) << "and to the other side";
    }
    // 60 to the right and 60 up: type A stands on the plane that is 60 up from the level, type B
    // 60 off the upright plane.
    const double side = std::cos(60 * degree) * std::sin(60 * degree);
    const double top = std::sin(60 * degree), ahead = std::cos(60 * degree) * std::cos(60 * degree);
    const Lamp lamp = spot_at(60, 60);
    EXPECT_GT(read(ies(lamp, angles, angles, a)).Candela(std::acos(ahead), std::atan2(top, side)),
              80);
    EXPECT_GT(read(ies(lamp, angles, angles, b)).Candela(std::acos(ahead), std::atan2(side, top)),
              80);
}

namespace {

/// A EULUMDAT file of planes every 15 degrees, one kilolumen times `flux` / 1000.
std::string ldt(const Lamp& lamp, int symmetry, const char* flux, const char* end = "\r\n") {
    const std::vector<double> planes = steps(0, 345, 15), rows = steps(0, 180, 5);
    std::vector<std::string> lines{"Maker", "3",    std::to_string(symmetry),
                                   "24",    "15",   "37",
                                   "5,0",   "r",    "lamp",
                                   "1",     "f",    "d",
                                   "100",   "0",    "0",
                                   "0",     "0",    "0",
                                   "0",     "0",    "0",
                                   "100",   "80.0", "1.0",
                                   "0",     "2"};
    for (int set = 0; set < 2; ++set) {
        lines.insert(lines.end(), {"1", "LED", set == 0 ? flux : "77", "3000", "1A", "20"});
    }
    lines.insert(lines.end(), 10, "0.5");
    for (const double plane : planes) {
        lines.push_back(std::to_string(plane));
    }
    for (const double row : rows) {
        lines.push_back(std::to_string(row));
    }
    const int first[] = {0, 0, 0, 18, 0}, count[] = {24, 1, 13, 13, 7};
    for (int i = 0; i < count[symmetry]; ++i) {
        for (const double row : rows) {
            lines.push_back(std::to_string(lamp(row, 15.0 * ((first[symmetry] + i) % 24))));
        }
    }
    std::string text;
    for (const std::string& line : lines) {
        text += line + end;
    }
    return text;
}

} // namespace

TEST(Photometry, EulumdatOfEverySymmetry) {
    for (const int symmetry : {0, 2, 3, 4}) {
        const CTsPhotometricWeb web = read(ldt(waisted, symmetry, "2500", "\n"));
        EXPECT_NEAR(web.Flux(), 400 * pi * 2.5, 0.05) << symmetry;
        // Plane C0 lies across the luminaire, and the x axis along it.
        EXPECT_NEAR(web.Candela(90 * degree, 0), 50 * 2.5, 1e-2) << symmetry;
        EXPECT_NEAR(web.Candela(90 * degree, 90 * degree), 150 * 2.5, 1e-2) << symmetry;
        EXPECT_NEAR(web.Candela(90 * degree, 180 * degree), 50 * 2.5, 1e-2) << symmetry;
    }
    EXPECT_NEAR(read(ldt(cosine, 1, "1000")).Flux(), 100 * pi, 0.3);
    EXPECT_NEAR(read(ldt(cosine, 1, "1000,0")).Flux(), 100 * pi, 0.3) << "a decimal comma";
    // Isym 3 mirrors about C90-C270: more light towards C90 stays on its side.
    const CTsPhotometricWeb web =
        read(ldt([](double, double h) { return 100 + 50 * std::sin(h * degree); }, 3, "1000"));
    EXPECT_NEAR(web.Candela(1, 0), 150, 1e-3);
    EXPECT_NEAR(web.Candela(1, 180 * degree), 50, 1e-3);
}

TEST(Photometry, DamagedFilesAreRefusedInWords) {
    const std::string good = ies(uniform, steps(0, 90, 10), {0, 90}, {});
    EXPECT_EQ(refusal(good.substr(0, good.size() - 12)),
              "lamp.ies: is cut short or holds what is no number (line 6)");
    EXPECT_EQ(refusal(""), "lamp.ies: is neither an LM-63 nor an EULUMDAT file");
    EXPECT_EQ(refusal("<xml/>\n\n"), "lamp.ies: is neither an LM-63 nor an EULUMDAT file");
    const auto head = [](const std::string& counts) {
        return refusal("IESNA91\nTILT=NONE\n1 1 1 " + counts + " 1 0 0 0 1 1 1 0 90 0 1 1");
    };
    EXPECT_EQ(head("3000 1 1"), "lamp.ies: has no usable number of angles (line 3)");
    EXPECT_EQ(head("1e9 1e9 1"), "lamp.ies: has no usable number of angles (line 3)");
    EXPECT_EQ(head("1999 1999 1"), "lamp.ies: has no usable number of angles (line 3)");
    EXPECT_EQ(head("2.5 1 1"), "lamp.ies: has no usable number of angles (line 3)");
    EXPECT_EQ(head("-2 1 1"), "lamp.ies: has no usable number of angles (line 3)");
    EXPECT_EQ(head("2 1 4"), "lamp.ies: has an unknown photometric type (line 3)");
    EXPECT_EQ(head("1 1 1"), "lamp.ies: has too few angles");
    EXPECT_EQ(head("2 1 nan"), "lamp.ies: is cut short or holds what is no number (line 3)");
    EXPECT_EQ(refusal(ies(uniform, {0, 90, 45}, {0}, {})),
              "lamp.ies: has angles that do not ascend");
    EXPECT_EQ(refusal(ies(uniform, {0, 200}, {0}, {})),
              "lamp.ies: has angles or values out of range");
    EXPECT_EQ(refusal("X\nTILT=INCLUDE\n1 1e9 1 2 3"),
              "lamp.ies: has a damaged tilt table (line 3)");
    const std::string eulumdat = ldt(waisted, 4, "1000", "\n");
    for (std::size_t size = 0; size < eulumdat.size() - 10; size += 7) {
        refusal(eulumdat.substr(0, size));
    }
    EXPECT_EQ(refusal(std::string((std::size_t{4} << 20) + 1, ' ')),
              "lamp.ies: is too large for a photometric file");
    CTsPhotometricWeb web;
    std::string error;
    EXPECT_FALSE(web.ReadFile("/nowhere/lamp.ies", error));
    EXPECT_EQ(error, "/nowhere/lamp.ies: No such file or directory");
}

namespace {

template <typename Value>
void append(std::vector<unsigned char>& bytes, Value value) {
    unsigned char raw[sizeof(Value)];
    std::memcpy(raw, &value, sizeof(Value)); // the tests run on little-endian machines
    bytes.insert(bytes.end(), raw, raw + sizeof(Value));
}

} // namespace

TEST(PhotometricBlock, IsReadAndWritten) {
    std::vector<unsigned char> bytes;
    append(bytes, 0), append(bytes, 2.5F), append(bytes, 0);
    append(bytes, 2), append(bytes, 3), append(bytes, 7);
    for (const float value : {0.F, 90.F, 0.F, 22.5F, 67.1F, 10.F, 20.F, 30.F, 40.F, 50.F, 60.F}) {
        append(bytes, value);
    }
    CTsPhotometricWeb web;
    ASSERT_TRUE(web.ReadBlock(bytes));
    EXPECT_EQ(web.m_Symmetry, 7);
    EXPECT_NEAR(web.Candela(0, 0), 25, 1e-6) << "the multiplier counts";
    EXPECT_NEAR(web.Candela(22.5 * degree, 90 * degree), 100, 1e-4) << "rows of vertical angles";
    EXPECT_EQ(web.WriteBlock(), bytes);
    for (std::size_t size = 1; size < bytes.size(); ++size) {
        EXPECT_FALSE(web.ReadBlock({bytes.begin(), bytes.begin() + static_cast<long>(size)}));
        EXPECT_TRUE(web.Empty());
    }
    for (const std::size_t at : {12U, 16U}) { // counts that no bytes could hold
        std::vector<unsigned char> damaged = bytes;
        damaged[at + 3] = 0xFF;
        EXPECT_FALSE(web.ReadBlock(damaged)) << at;
    }
    std::vector<unsigned char> damaged = bytes;
    damaged[bytes.size() - 1] = 0xFF, damaged[bytes.size() - 2] = 0xFF;
    EXPECT_FALSE(web.ReadBlock(damaged)) << "not a number";
    EXPECT_TRUE(web.ReadBlock({})) << "no block is no web";
    EXPECT_TRUE(web.WriteBlock().empty());
}

TEST(PhotometricBlock, AnglesOfFilesComeBackAsTheyWere) {
    std::vector<double> v = steps(0, 180, 2.5), h = steps(0, 345, 7.5);
    const CTsPhotometricWeb web = read(ies(waisted, v, h, {}));
    CTsPhotometricWeb back;
    ASSERT_TRUE(back.ReadBlock(web.WriteBlock()));
    back.m_Name = web.m_Name;
    EXPECT_EQ(back, web);
    const std::vector<unsigned char> bytes = web.WriteBlock();
    float angle = 0;
    std::memcpy(&angle, bytes.data() + 24 + 4 * 3, 4);
    EXPECT_EQ(angle, 22.5F) << "not a bit beside it";
}
