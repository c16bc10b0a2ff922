// The sample generator: its bodies are closed and face outwards, walls lose exactly their openings,
// and the drawings in samples/ are what it writes.
#include "apps/make_samples/building.h"
#include "apps/make_samples/everything.h"
#include "apps/make_samples/samples.h"
#include "host/db/block_reference.h"
#include "host/db/database.h"
#include "host/gi/recorder.h"
#include "host/gs/view.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

namespace make_samples {
namespace {

/// Volume by the divergence theorem; positive for faces that turn outwards.
double volume_of(const Mesh& mesh) {
    double sum = 0;
    for (const std::vector<int>& f : mesh.faces) {
        for (std::size_t i = 1; i + 1 < f.size(); ++i) {
            const Vector a = mesh.points[f[0]].asVector(), b = mesh.points[f[i]].asVector();
            sum += a.dotProduct(b.crossProduct(mesh.points[f[i + 1]].asVector())) / 6;
        }
    }
    return sum;
}

/// Every edge is passed once in each direction.
bool is_closed(const Mesh& mesh) {
    std::map<std::pair<int, int>, int> passes;
    for (const std::vector<int>& f : mesh.faces) {
        for (std::size_t i = 0; i < f.size(); ++i) {
            ++passes[{f[i], f[(i + 1) % f.size()]}];
        }
    }
    for (const auto& [edge, count] : passes) {
        const auto back = passes.find({edge.second, edge.first});
        if (count != 1 || back == passes.end() || back->second != 1) {
            return false;
        }
    }
    return true;
}

TEST(MakeSamplesMesh, BodiesAreClosedAndFaceOutwards) {
    Random random(1);
    const double pi = radians(180);
    EXPECT_NEAR(volume_of(box({1, 2, 3}, {2, 4, 6})), 6, 1e-12);
    EXPECT_NEAR(volume_of(prism({{0, 0}, {2, 0}, {0, 2}}, 1, 4)), 6, 1e-12);
    EXPECT_NEAR(volume_of(turned({{1, 0}, {1, 2}}, 360)), 2 * pi, 0.001);
    EXPECT_NEAR(volume_of(tube({{0, 0, 0}, {3, 0, 0}}, {1, 1}, 360)), 3 * pi, 0.002);
    EXPECT_NEAR(volume_of(bar({0, 0, 0}, {0, 3, 4}, 0.5, 0.2)), 0.5, 1e-12);
    EXPECT_NEAR(volume_of(blob(1, 24, 0, random)), 4 * pi / 3, 0.02);
    const Mesh bodies[] = {soft_block(2, 1, 0.5, 0.1),
                           prism({{0, 0}, {1, 0}, {0, 1}}, 0, 1),
                           turned({{1, 0}, {0.5, 1}}, 7),
                           tube({{0, 0, 0}, {0, 1, 3}}, {1, 2}, 5),
                           blob(2, 3, 0.2, random),
                           bar({0, 0, 0}, {1, 1, 1}, 0.1, 0.1),
                           box({0, 0, 0}, {1, 1, 1}).stretch(-2, 1, 1)};
    for (const Mesh& body : bodies) {
        EXPECT_TRUE(is_closed(body));
        EXPECT_GT(volume_of(body), 0);
    }
}

TEST(MakeSamplesMesh, MovesKeepSizeAndSense) {
    Mesh mesh = box({0, 0, 0}, {1, 2, 3});
    mesh.turn(30).tilt(40).lean(50).move(7, 8, 9).stretch(1, -1, 1);
    EXPECT_NEAR(volume_of(mesh), 6, 1e-9);
    EXPECT_EQ(mesh.triangles(), 12U);
}

/// The volume between a wall's faces is its material: what is left beside the openings.
TEST(MakeSamplesWalls, OpeningsAreCutThrough) {
    Wall wall{{1, 1}, {1, 11}};
    wall.mitred = false;
    wall.thickness = 0.5;
    const double full = 10 * 3 * 0.5;
    // The underside is left open; it lies in z = 0 and adds nothing to the sum.
    EXPECT_NEAR(volume_of(wall_mesh(wall)), full, 1e-9);
    wall.openings = {{2, 1, 1, 1.5}, {7, 2, 0, 2.2}, {7, 1, 2.4, 0.4}};
    EXPECT_NEAR(volume_of(wall_mesh(wall)), full - 0.5 * (1.5 + 4.4 + 0.4), 1e-9);
}

struct Case {
    const char* file;
    void (*build)(Drawing&);
    const char* view;
    std::size_t faces_low, faces_high;
};

class Samples : public testing::TestWithParam<Case> {
protected:
    void SetUp() override {
        folder_ = std::filesystem::path(QORVANE_BUILD_DIR) / "make_samples_test";
        std::filesystem::create_directories(folder_);
        path_ = folder_ / GetParam().file;
        Drawing drawing;
        GetParam().build(drawing);
        std::string error;
        ASSERT_TRUE(drawing.write(path_, error)) << error;
    }
    std::filesystem::path folder_, path_;
};

std::string bytes_of(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void PrintTo(const Case& value, std::ostream* out) { *out << value.file; }

TEST_P(Samples, RepositoryHoldsWhatIsWritten) {
    const std::string fresh = bytes_of(path_);
    const std::string kept =
        bytes_of(std::filesystem::path(QORVANE_SOURCE_DIR) / "samples" / GetParam().file);
    ASSERT_FALSE(fresh.empty());
    EXPECT_TRUE(fresh == kept) << GetParam().file << " differs: run make_samples samples";
}

std::size_t faces_of(const gi::RecordedCall& call) {
    std::size_t faces = 0;
    for (std::size_t i = 0; i < call.faces.size();) {
        const auto corners = static_cast<std::size_t>(std::abs(call.faces[i]));
        faces += corners - 2;
        i += corners + 1;
    }
    if (call.primitive == gi::Primitive::kMesh) {
        faces += std::size_t{call.rows - 1} * (call.columns - 1) * 2;
    }
    return faces;
}

TEST_P(Samples, ReadsBackWholeAndDraws) {
    AcDbDatabase database(false);
    std::string error;
    ASSERT_EQ(database.dxfIn(path_, error), Acad::eOk) << error;
    for (const auto* findings : {&database.loadReport().lost, &database.loadReport().repaired}) {
        for (const AcDbLoadFinding& finding : *findings) {
            ADD_FAILURE() << finding.line << ": " << finding.code << ": " << finding.message;
        }
    }
    EXPECT_EQ(database.insunits(), 4);
    AcDbObjectId id;
    EXPECT_EQ(database.viewTable().getAt(GetParam().view, id), Acad::eOk);
    AcGsView view;
    ASSERT_TRUE(acgsGetViewParameters(database.activeViewportId(), view));
    EXPECT_TRUE(view.perspective);
    EXPECT_NEAR(view.field_width / view.field_height, 1.5, 1e-6);

    const AcDbObjectPointer<AcDbBlockTableRecord> model(database.modelSpaceId());
    ASSERT_TRUE(model);
    std::size_t faces = 0;
    for (const AcDbObjectId entity_id : model->entities()) {
        const AcDbObjectPointer<AcDbEntity> entity(entity_id);
        ASSERT_TRUE(entity);
        EXPECT_EQ(entity->notRenderedReason(), nullptr) << entity->dxfName();
        gi::Recorder recorder(&database);
        recorder.record(entity.object());
        for (const gi::RecordedCall& call : recorder.calls) {
            faces += faces_of(call);
        }
    }
    EXPECT_GE(faces, GetParam().faces_low);
    EXPECT_LE(faces, GetParam().faces_high);
}

INSTANTIATE_TEST_SUITE_P(
    All, Samples,
    testing::Values(Case{"courtyard.dxf", build_courtyard, "Courtyard", 15000, 200000},
                    Case{"room.dxf", build_room, "Room", 15000, 150000},
                    Case{"solids.dxf", build_solids, "StillLife", 50000, 600000},
                    Case{"tower.dxf", build_tower, "Tower", 200000, 1000000}),
    [](const testing::TestParamInfo<Case>& info) { return std::string(info.param.view); });

TEST(Everything, RepositoryHoldsWhatIsWritten) {
    const auto folder = std::filesystem::path(QORVANE_BUILD_DIR) / "make_samples_test";
    std::filesystem::create_directories(folder);
    Drawing drawing;
    build_everything(drawing);
    std::string error;
    ASSERT_TRUE(drawing.write(folder / "everything.dxf", error)) << error;
    ASSERT_TRUE(write_everything_files(folder, error)) << error;
    for (const char* name : {"everything.dxf", "everything_downlight.ies"}) {
        EXPECT_TRUE(bytes_of(folder / name) ==
                    bytes_of(std::filesystem::path(QORVANE_SOURCE_DIR) / "samples" / name))
            << name << " differs: run make_samples samples";
    }
    // Another release of the picture library may pack the same pixels into other bytes.
    EXPECT_FALSE(bytes_of(folder / "everything_picture.png").empty());
}

} // namespace
} // namespace make_samples
