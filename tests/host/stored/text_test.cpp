// Texts with thickness: bodies of letters, and how they lie to their points.
#include "bodies.h"

#include "../draw/drawing.h"
#include "host/db/text_drawing.h"
#include "host/db/text_style.h"
#include "platform/fonts.h"

#include <cmath>
#include <numbers>

#include <ft2build.h>
#include FT_FREETYPE_H

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr double kPi = std::numbers::pi;

/// The area inside a glyph's outline, capitals 1 high: exact, from the curves themselves. Contours
/// must not overlap.
double outlineArea(const std::filesystem::path& file, char32_t character) {
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    FT_Init_FreeType(&library);
    FT_New_Face(library, file.c_str(), 0, &face);
    FT_Load_Char(face, U'H', FT_LOAD_NO_SCALE);
    const double capital = static_cast<double>(face->glyph->metrics.horiBearingY);
    FT_Load_Char(face, character, FT_LOAD_NO_SCALE);
    const FT_Outline& outline = face->glyph->outline;
    double twice = 0;
    for (int c = 0, first = 0; c < outline.n_contours; first = outline.contours[c++] + 1) {
        const int count = outline.contours[c] - first + 1;
        const auto at = [&](int i) {
            const FT_Vector& v = outline.points[first + (i + count) % count];
            return AcGePoint2d{static_cast<double>(v.x), static_cast<double>(v.y)};
        };
        const auto on = [&](int i) { return (outline.tags[first + (i + count) % count] & 1) != 0; };
        const auto middle = [](AcGePoint2d a, AcGePoint2d b) {
            return AcGePoint2d{(a.x + b.x) / 2, (a.y + b.y) / 2};
        };
        const auto cross = [](AcGePoint2d a, AcGePoint2d b) { return a.x * b.y - a.y * b.x; };
        for (int i = 0; i < count; ++i) {
            if (on(i) && on(i + 1)) {
                twice += cross(at(i), at(i + 1));
            } else if (!on(i)) { // a parabola about this point
                const AcGePoint2d a = on(i - 1) ? at(i - 1) : middle(at(i - 1), at(i));
                const AcGePoint2d b = on(i + 1) ? at(i + 1) : middle(at(i), at(i + 1));
                twice += (2 * cross(a, at(i)) + 2 * cross(at(i), b) + cross(a, b)) / 3;
            }
        }
    }
    FT_Done_Face(face);
    FT_Done_FreeType(library);
    return std::abs(twice / 2) / (capital * capital);
}

class ThickText : public testing::Test {
protected:
    void SetUp() override {
        font = platform::find_font("", false, false);
        if (font.path.empty()) {
            GTEST_SKIP() << "no font is installed";
        }
        recorder.chord_deviation = 1e-3;
    }
    AcDbText* text(const std::string& string, double height = 1, double thickness = 2) {
        auto* made = drawing.make<AcDbText>(drawing.model());
        made->setTextString(string);
        made->setHeight(height);
        made->setThickness(thickness);
        return made;
    }
    AcDbExtents drawn(AcDbText* what) {
        recorder.calls.clear();
        recorder.record(what);
        AcDbExtents box;
        for (const gi::RecordedCall& call : recorder.calls) {
            for (const AcGePoint3d& p : call.points) {
                box.addPoint(p);
            }
        }
        return box;
    }
    double volume(AcDbText* what) {
        drawn(what);
        return bodies::volume(recorder);
    }
    Drawing drawing;
    gi::Recorder recorder{&drawing.db};
    platform::FontFile font;
};

TEST_F(ThickText, LettersAreClosedBodiesOfTheirAreaTimesTheThickness) {
    for (const char letter : {'I', 'O', 'B', '8', '&'}) {
        AcDbText* made = text(std::string(1, letter), 3, 2);
        EXPECT_NEAR(volume(made), outlineArea(font.path, static_cast<char32_t>(letter)) * 9 * 2,
                    letter == 'I' ? 1e-9 : 0.02)
            << letter;
        ASSERT_THAT(recorder.calls, SizeIs(1));
        EXPECT_TRUE(bodies::isClosed(recorder.calls[0])) << letter;
        EXPECT_STREQ(made->notRenderedReason(), nullptr);
    }
    // However it is turned and mirrored, the outside is outside.
    for (const int flags : {0, 2, 4, 6}) {
        for (const double thickness : {2.0, -2.0}) {
            AcDbText* made = text("R", 1, thickness);
            made->setGenerationFlags(flags);
            made->setNormal({1, 1, -1});
            made->setOblique(0.3);
            EXPECT_NEAR(volume(made), outlineArea(font.path, U'R') * 2, 0.01) << flags;
        }
    }
}

TEST_F(ThickText, FinerDeviationsGiveFinerLetters) {
    recorder.chord_deviation = 0.1;
    drawn(text("O"));
    const std::size_t coarse = recorder.calls[0].points.size();
    recorder.chord_deviation = 0.001;
    drawn(text("O"));
    EXPECT_GT(recorder.calls[0].points.size(), 2 * coarse);
}

TEST_F(ThickText, WithoutThicknessThereIsNoBody) {
    AcDbText* thin = text("I", 1, 0);
    drawn(thin);
    EXPECT_THAT(recorder.calls, IsEmpty());
    EXPECT_STREQ(thin->notRenderedReason(), "text");
    AcDbExtents box;
    EXPECT_EQ(thin->getGeomExtents(box), Acad::eNullExtents);
}

TEST_F(ThickText, WidthObliqueAndMirrorsActAboutTheStart) {
    const AcDbExtents plain = drawn(text("H", 2));
    EXPECT_NEAR(plain.minPoint().y, 0, 1e-9);
    EXPECT_NEAR(plain.maxPoint().y, 2, 1e-9);
    EXPECT_NEAR(plain.maxPoint().z, 2, 1e-9);
    AcDbText* made = text("H", 2);
    made->setWidthFactor(3);
    EXPECT_NEAR(drawn(made).maxPoint().x, 3 * plain.maxPoint().x, 1e-9);
    made->setWidthFactor(1);
    made->setOblique(kPi / 4);
    EXPECT_NEAR(drawn(made).maxPoint().x, plain.maxPoint().x + 2, 1e-9);
    made->setOblique(0);
    made->setGenerationFlags(2);
    EXPECT_NEAR(drawn(made).minPoint().x, -plain.maxPoint().x, 1e-9);
    made->setGenerationFlags(4);
    EXPECT_NEAR(drawn(made).minPoint().y, -2, 1e-9);
    made->setGenerationFlags(0);
    made->setPosition({5, 6, 7});
    made->setRotation(kPi / 2);
    made->setNormal({0, -1, 0}); // its X is the world's X, its Y the world's Z
    const AcDbExtents upright = drawn(made);
    EXPECT_NEAR(upright.maxPoint().x, 5, 1e-9);
    EXPECT_NEAR(upright.minPoint().x, 3, 1e-9);
    EXPECT_NEAR(upright.minPoint().z, 6 + plain.minPoint().x, 1e-9);
    EXPECT_NEAR(upright.minPoint().y, -9, 1e-9);
}

TEST_F(ThickText, AlignmentsMoveTheLineToItsPoint) {
    draw::TextLine line;
    line.text = "HIH";
    line.height = 2;
    const draw::TextSize size = draw::measureText(line);
    const AcDbExtents plain = drawn(text("HIH", 2));
    struct Case {
        AcDbText::HorzMode horizontal;
        AcDbText::VertMode vertical;
        double left, down;
    };
    const double w = size.width;
    for (const Case& c : {Case{AcDbText::kTextCenter, AcDbText::kTextBase, w / 2, 0},
                          Case{AcDbText::kTextRight, AcDbText::kTextBase, w, 0},
                          Case{AcDbText::kTextMid, AcDbText::kTextBase, w / 2, 1},
                          Case{AcDbText::kTextLeft, AcDbText::kTextTop, 0, 2},
                          Case{AcDbText::kTextCenter, AcDbText::kTextVertMid, w / 2, 1},
                          Case{AcDbText::kTextRight, AcDbText::kTextBottom, w, -size.descent}}) {
        AcDbText* made = text("HIH", 2);
        made->setAlignment(c.horizontal, c.vertical, {100, 50, 0});
        const AcGePoint3d low = drawn(made).minPoint();
        EXPECT_NEAR(low.x, plain.minPoint().x + 100 - c.left, 1e-9);
        EXPECT_NEAR(low.y, 50 - c.down, 1e-9);
        AcDbExtents told;
        ASSERT_EQ(made->getGeomExtents(told), Acad::eOk);
        EXPECT_LE(told.minPoint().x, low.x + 1e-9);
        EXPECT_LE(told.minPoint().y, low.y + 1e-9);
    }
    AcDbText* fit = text("HIH", 2);
    fit->setAlignment(AcDbText::kTextFit, AcDbText::kTextBase, {4 * w, 0, 0});
    EXPECT_NEAR(drawn(fit).maxPoint().x, 4 * plain.maxPoint().x, 1e-9);
    EXPECT_NEAR(drawn(fit).maxPoint().y, 2, 1e-9);
    AcDbText* aligned = text("HIH", 2);
    aligned->setAlignment(AcDbText::kTextAlign, AcDbText::kTextBase, {0, 4 * w, 0});
    EXPECT_NEAR(drawn(aligned).maxPoint().y, 4 * plain.maxPoint().x, 1e-9);
    EXPECT_NEAR(drawn(aligned).minPoint().x, -8, 1e-9);
}

TEST_F(ThickText, CodesStandForCharactersAndLines) {
    const auto same = [&](const std::string& coded, const std::string& plain) {
        return std::abs(volume(text(coded)) - volume(text(plain))) < 1e-9;
    };
    EXPECT_TRUE(same("%%d%%P", "\u00b0\u00b1"));
    EXPECT_TRUE(same("%%065%%%", "A%"));
    EXPECT_TRUE(same("\\U+00C4", "\u00c4"));
    EXPECT_TRUE(same("5%%", "5%%")); // no code: stands as it is
    EXPECT_GT(volume(text("%%c")), 0);
    const double letter = volume(text("H"));
    draw::TextLine line;
    line.text = "H";
    const double bar = draw::measureText(line).width * 0.08 * 2;
    EXPECT_NEAR(volume(text("%%uH")), letter + bar, 1e-9);
    EXPECT_NEAR(volume(text("%%o%%uH%%u%%oH")), 2 * letter + 2 * bar, 1e-9);
}

TEST_F(ThickText, AnyBytesAreSomeText) {
    for (const std::string bytes :
         {"\xff\xfe", "\xf0\x9f", "%%", "%", "\\U+12", "%%99", "\x01\n"}) {
        drawn(text(bytes));
        for (const gi::RecordedCall& call : recorder.calls) {
            EXPECT_TRUE(bodies::isClosed(call));
        }
    }
}

TEST_F(ThickText, FontsComeFromTheStyle) {
    const auto code = [&](const std::string& file, const std::string& family) {
        auto style = std::make_unique<AcDbTextStyleTableRecord>();
        style->setFileName(file);
        style->setFont(family, false, false);
        std::vector<AcDbDrawFinding> findings;
        draw::noteFont(style->font(), findings);
        return findings.empty() ? std::string()
                                : std::string(findings[0].code) + " " + findings[0].detail;
    };
    EXPECT_EQ(code("txt.shx", ""), "font-substituted txt.shx");
    EXPECT_EQ(code("NoSuchFont.ttf", ""), "font-substituted NoSuchFont.ttf");
    EXPECT_EQ(code("", "No Such Family"), "font-substituted No Such Family");
    EXPECT_EQ(code(font.path.filename().string(), ""), "");
    EXPECT_EQ(code("", ""), "");
}

TEST_F(ThickText, AttributesAreDrawnWithTheirReferenceDefinitionsOnlyWhenConstant) {
    const AcDbObjectId block = drawing.block("door");
    auto* definition = drawing.make<AcDbAttributeDefinition>(block);
    definition->setTextString("H");
    definition->setTag("TAG");
    definition->setThickness(1);
    auto* reference = drawing.insert(drawing.model(), block);
    auto attribute = std::make_unique<AcDbAttribute>();
    attribute->setTextString("I");
    attribute->setThickness(1);
    AcDbAttribute* raw = attribute.get();
    reference->appendAttribute(
        drawing.db.addAcDbObject(std::move(attribute), reference->objectId()));
    const auto bodies_of = [&] {
        recorder.calls.clear();
        recorder.record(reference);
        return recorder.callsOf(gi::Primitive::kShell).size();
    };
    EXPECT_EQ(bodies_of(), 1U); // the attribute
    definition->setFlags(2);
    EXPECT_EQ(bodies_of(), 2U);
    raw->setFlags(1);
    EXPECT_EQ(bodies_of(), 1U);
    definition->setFlags(3);
    EXPECT_EQ(bodies_of(), 0U);
}

} // namespace
