// Real drawings through the whole extraction: the project's samples, and others when they are
// there.
#include "extraction_fixture.h"

#include <fstream>

namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

class Drawings : public ExtractionTest {
protected:
    void make_current(const fs::path& drawing) {
        acDocManager()->closeAll();
        auto database = std::make_unique<AcDbDatabase>(false);
        std::string error;
        EXPECT_EQ(database->dxfIn(drawing, error), Acad::eOk) << error;
        acDocManager()->addDocument(std::move(database));
    }
    /// The number of drawings whose folder was written and found good.
    int check_all(const fs::path& drawings) {
        int checked = 0;
        for (const auto& entry : fs::directory_iterator(drawings)) {
            if (entry.path().extension() != ".dxf") {
                continue;
            }
            SCOPED_TRACE(entry.path().filename());
            make_current(entry.path());
            if (!has_something_to_render()) {
                continue;
            }
            first_use();
            EXPECT_EQ(plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY), 1) << port.written;
            EXPECT_THAT(checker::check_folder(folder), IsEmpty());
            ++checked;
        }
        return checked;
    }
};

TEST_F(Drawings, OfTheProjectGiveGoodFolders) {
    EXPECT_GE(check_all(fs::path(QORVANE_SOURCE_DIR) / "samples"), 4);
}

std::string without(std::string text, const std::string& path, const char* stand_in) {
    for (std::size_t at = text.find(path); at != text.npos; at = text.find(path, at)) {
        text.replace(at, path.size(), stand_in);
    }
    return text;
}

/// The stream as it was read line by line when it was kept; paths and the time are left out.
TEST_F(Drawings, TheStreamOfEverythingIsTheOneThatWasReviewed) {
    const fs::path samples = fs::path(QORVANE_SOURCE_DIR) / "samples";
    const fs::path kept = fs::path(QORVANE_SOURCE_DIR) / "tests/omb_qorvane/everything.stream";
    make_current(samples / "everything.dxf");
    first_use();
    ASSERT_EQ(plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY), 1) << port.written;
    std::string text = file("batch_file.txt");
    const std::size_t second = text.find('\n') + 1;
    text.replace(second, text.find('\n', second) - second, "#;TIME");
    text = without(without(text, folder.string(), "FOLDER"), samples.string(), "SAMPLES");
    if (text != checker::read_text(kept.string())) {
        const fs::path now = fs::path(QORVANE_BUILD_DIR) / "everything.stream";
        std::ofstream(now, std::ios::binary) << text;
        ADD_FAILURE() << "compare " << kept << " with " << now;
    }
}

TEST_F(Drawings, OfOthersGiveGoodFolders) {
    const char* named = std::getenv("QORVANE_SHARED_DRAWINGS");
    const fs::path shared =
        named != nullptr ? fs::path(named)
                         : fs::path(QORVANE_SOURCE_DIR).parent_path() / "shared" / "drawings";
    if (!fs::is_directory(shared)) {
        GTEST_SKIP() << "no drawings at " << shared;
    }
    EXPECT_GT(check_all(shared), 0);
}

} // namespace
