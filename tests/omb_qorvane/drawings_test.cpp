// Real drawings through the whole extraction, when they are there.
#include "extraction_fixture.h"

namespace {

namespace fs = std::filesystem;

class Drawings : public ExtractionTest {};

TEST_F(Drawings, GiveWellFormedFolders) {
    const char* given = std::getenv("QORVANE_TEST_DRAWINGS");
    const fs::path shared =
        given != nullptr ? fs::path(given)
                         : fs::path(QORVANE_SOURCE_DIR).parent_path() / "shared" / "drawings";
    if (!fs::is_directory(shared)) {
        GTEST_SKIP() << "no drawings at " << shared;
    }
    int rendered = 0;
    for (const auto& entry : fs::directory_iterator(shared)) {
        if (entry.path().extension() != ".dxf") {
            continue;
        }
        SCOPED_TRACE(entry.path().filename());
        acDocManager()->closeAll();
        auto database = std::make_unique<AcDbDatabase>(false);
        std::string error;
        if (database->dxfIn(entry.path(), error) != Acad::eOk) {
            ADD_FAILURE() << error;
            continue;
        }
        acDocManager()->addDocument(std::move(database));
        if (!has_something_to_render()) {
            continue;
        }
        extract();
        std::map<std::string, std::string> params;
        std::map<std::string, double> view;
        EXPECT_THAT(checker::check_params(file("qor_render_params.txt"), params),
                    testing::IsEmpty());
        EXPECT_THAT(checker::check_view(file("qor_view.txt"), view), testing::IsEmpty());
        ++rendered;
    }
    EXPECT_GT(rendered, 0);
}

} // namespace
