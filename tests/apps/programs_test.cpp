// The programs as a user runs them: arguments in, files and exit codes out.
#include "platform/files.h"
#include "platform/process.h"

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <thread>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

/// A red box on a grey slab, 3DFACEs of an old release, in a form that any reader takes.
std::string small_drawing() {
    std::string text = "0\nSECTION\n2\nENTITIES\n";
    const auto face = [&](const char* layer, int color, std::initializer_list<double> points) {
        text += "0\n3DFACE\n8\n" + std::string(layer) + "\n62\n" + std::to_string(color) + "\n";
        int code = 10, axis = 0;
        for (const double value : points) {
            std::ostringstream number;
            number << value;
            text += std::to_string(code + axis * 10) + "\n" + number.str() + "\n";
            code += axis == 2 ? 1 : 0;
            axis = (axis + 1) % 3;
        }
    };
    face("Slab", 8, {-5, -5, 0, 5, -5, 0, 5, 5, 0, -5, 5, 0});
    face("Box", 1, {-1, -1, 0, 1, -1, 0, 1, -1, 2, -1, -1, 2});
    face("Box", 1, {1, -1, 0, 1, 1, 0, 1, 1, 2, 1, -1, 2});
    face("Box", 1, {-1, -1, 2, 1, -1, 2, 1, 1, 2, -1, 1, 2});
    return text + "0\nENDSEC\n0\nEOF\n";
}

struct Outcome {
    int code = -1;
    std::string out, err;
};

class Programs : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "qorvane_programs_XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
        setenv("QORVANE_HOME", (folder_ / "home").c_str(), 1);
        unsetenv("DISPLAY");
        unsetenv("WAYLAND_DISPLAY");
        write("box.dxf", small_drawing());
    }
    void TearDown() override {
        std::error_code ignored;
        fs::permissions(folder_, fs::perms::owner_all, ignored);
        fs::remove_all(folder_, ignored);
    }
    fs::path write(const std::string& name, const std::string& text) {
        std::ofstream(folder_ / name, std::ios::binary) << text;
        return folder_ / name;
    }
    std::string read(const fs::path& path) const {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    static fs::path program() { return fs::path(QORVANE_BUILD_DIR) / "omb_bin" / "qorvane"; }
    std::int64_t start(const std::vector<std::string>& arguments) {
        std::vector<std::string> words{"-c", R"(exec "$0" "$@" > out.txt 2> err.txt)",
                                       program().string()};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::string error;
        const auto started = platform::start_process("/bin/sh", words, folder_, error);
        EXPECT_TRUE(started) << error;
        return started ? started->process_id : 0;
    }
    Outcome finish(std::int64_t process) {
        Outcome outcome;
        outcome.code = platform::wait_process(process, 240).value_or(-1);
        outcome.out = read(folder_ / "out.txt");
        outcome.err = read(folder_ / "err.txt");
        return outcome;
    }
    Outcome run(const std::vector<std::string>& arguments) { return finish(start(arguments)); }
    std::vector<float> pixels(const fs::path& path, OIIO::ImageSpec& spec) {
        auto in = OIIO::ImageInput::open(path.string());
        EXPECT_TRUE(in) << path << ": " << OIIO::geterror();
        if (!in) {
            return {};
        }
        spec = in->spec();
        std::vector<float> data(static_cast<std::size_t>(spec.width) * spec.height *
                                spec.nchannels);
        in->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::FLOAT, data.data());
        return data;
    }
    bool no_leftovers(const fs::path& folder) {
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (entry.path().string().ends_with(".tmp")) {
                return false;
            }
        }
        return true;
    }
    fs::path folder_;
};

TEST_F(Programs, RenderMakesAPictureOfTheDrawing) {
    const Outcome r = run({"render", "box.dxf", "-s", "120x80", "--passes", "2"});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_NE(r.out.find("box.png"), std::string::npos) << r.out;
    OIIO::ImageSpec spec;
    const std::vector<float> data = pixels(folder_ / "box.png", spec);
    ASSERT_EQ(spec.width, 120);
    ASSERT_EQ(spec.height, 80);
    // The middle shows the red box, the corners the ground; nothing is black or burnt out.
    const auto at = [&](int x, int y, int c) {
        return data[(static_cast<std::size_t>(y) * spec.width + x) * spec.nchannels + c];
    };
    EXPECT_GT(at(62, 30, 0), 1.5 * at(62, 30, 1)) << "the box is red";
    EXPECT_LT(at(4, 70, 0), 1.3 * at(4, 70, 1)) << "the ground is not";
    EXPECT_GT(at(4, 2, 2), 0.2) << "the background is not dark";
    EXPECT_NE(read(folder_ / "box.png").find("Qorvane"), std::string::npos)
        << "the picture names the program";
    EXPECT_TRUE(no_leftovers(folder_));
    EXPECT_EQ(run({"render", "box.dxf", "-s", "60x40", "--passes", "1"}).code, 0)
        << "a picture of ours may be replaced";
}

TEST_F(Programs, PixelsDoNotDependOnThreads) {
    ASSERT_EQ(run({"render", "box.dxf", "-s", "96x64", "--passes", "2", "-j1", "-o", "a.exr"}).code,
              0);
    ASSERT_EQ(run({"render", "box.dxf", "-s", "96x64", "--passes", "2", "-j2", "-o", "b.exr"}).code,
              0);
    OIIO::ImageSpec a, b;
    EXPECT_EQ(pixels(folder_ / "a.exr", a), pixels(folder_ / "b.exr", b));
}

TEST_F(Programs, ExtractingTwiceGivesEqualBytesButForTheTime) {
    ASSERT_EQ(run({"extract", "box.dxf", "--batch-folder", "one"}).code, 0);
    ASSERT_EQ(run({"extract", "box.dxf", "--batch-folder", "two"}).code, 0);
    const auto without_time = [&](const fs::path& path) {
        std::istringstream in(read(path));
        std::string line, text;
        for (int number = 1; std::getline(in, line); ++number) {
            text += number == 2 ? "#;time\n" : line + "\n";
        }
        return text;
    };
    const std::string one = without_time(folder_ / "one" / "batch_file.txt");
    EXPECT_EQ(one, without_time(folder_ / "two" / "batch_file.txt"));
    EXPECT_NE(one.find("\nEND;\n"), std::string::npos);
    for (const char* name : {"qor_view.txt", "option_globals.txt"}) {
        EXPECT_EQ(read(folder_ / "one" / name), read(folder_ / "two" / name)) << name;
        EXPECT_FALSE(read(folder_ / "one" / name).empty()) << name;
    }
    EXPECT_TRUE(fs::exists(folder_ / "one" / "qor_render_params.txt"));
    EXPECT_TRUE(fs::exists(folder_ / "one" / "qor_doc.xml"));
}

struct BadInput {
    const char* name;
    const char* bytes; ///< null: a folder
    int code;
    const char* words;
};

TEST_F(Programs, APictureThatLiesBesideTheDrawingIsReadAndSaved) {
    const fs::path samples = fs::path(QORVANE_SOURCE_DIR) / "samples";
    std::string drawing = read(samples / "everything.dxf");
    const std::string stored = ".\\everything_picture.png", lost = "X:\\lost\\scan.png";
    const std::size_t at = drawing.find(stored);
    ASSERT_NE(at, drawing.npos);
    drawing.replace(at, stored.size(), lost);
    write("drawing.dxf", drawing);
    fs::copy_file(samples / "everything_picture.png", folder_ / "scan.png");
    ASSERT_EQ(run({"extract", "drawing.dxf", "--batch-folder", "one"}).code, 0);
    const auto picture = OIIO::ImageInput::open((folder_ / "one/Decals/DECAL - scan.png").string());
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->spec().width, 300);
    EXPECT_NE(read(folder_ / "one/batch_file.txt").find("DECL;DECAL - scan.png\n"),
              std::string::npos);
}

TEST_F(Programs, BadInputsGiveOneClearLineAndTheirCode) {
    const BadInput cases[] = {
        {"empty.dxf", "", 3, "empty"},
        {"picture.dxf", "\x89PNG\r\n\x1a\n and so on", 3, "not a DXF file"},
        {"letter.dxf", "Dear Sir,\n\nthe house is finished.\n", 3, "not a DXF file"},
        {"folder.dxf", nullptr, 3, "directory"},
    };
    for (const BadInput& bad : cases) {
        if (bad.bytes == nullptr) {
            fs::create_directory(folder_ / bad.name);
        } else {
            write(bad.name, bad.bytes);
        }
        for (const char* verb : {"render", "inspect"}) {
            const Outcome r = run({verb, bad.name});
            EXPECT_EQ(r.code, bad.code) << verb << " " << bad.name;
            EXPECT_NE(r.err.find(bad.words), std::string::npos) << r.err;
            EXPECT_EQ(r.err.find(std::string("qorvane: ") + bad.name), 0U) << r.err;
            EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
        }
    }
    const Outcome missing = run({"render", "none.dxf"});
    EXPECT_EQ(missing.code, 3);
    EXPECT_EQ(missing.err, "qorvane: none.dxf: does not exist\n");
}

TEST_F(Programs, OutputsThatCannotBeWrittenAreToldBeforeTheWork) {
    EXPECT_EQ(run({"render", "box.dxf", "-o", "no/such/folder/a.png"}).code, 5);
    EXPECT_EQ(run({"render", "box.dxf", "-o", "a.bmpx"}).code, 2);
    write("mine.png", "a picture that someone else made");
    const Outcome kept = run({"render", "box.dxf", "-o", "mine.png"});
    EXPECT_EQ(kept.code, 5);
    EXPECT_NE(kept.err.find("--force replaces it"), std::string::npos);
    EXPECT_EQ(read(folder_ / "mine.png"), "a picture that someone else made");
    EXPECT_EQ(
        run({"render", "box.dxf", "-o", "mine.png", "--force", "-s", "60x40", "--passes", "1"})
            .code,
        0);
    write("file", "");
    EXPECT_EQ(run({"extract", "box.dxf", "--batch-folder", "file/below"}).code, 5);
}

TEST_F(Programs, AnEmptyDrawingIsToldInOneLine) {
    write("empty_model.dxf", "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n");
    const Outcome r = run({"render", "empty_model.dxf", "--log-file", "trace.log"});
    EXPECT_EQ(r.code, 1);
    EXPECT_NE(r.err.find("Cannot Render. No entities found to render in this view."),
              std::string::npos)
        << r.err;
    EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
    EXPECT_FALSE(read(folder_ / "trace.log").empty());
}

TEST_F(Programs, BlocksThatInsertThemselvesAreToldOnceAndDrawnOnce) {
    const std::string insert = "0\nINSERT\n8\n0\n2\nA\n10\n3\n20\n0\n30\n0\n";
    const std::string face = "0\n3DFACE\n8\n0\n10\n0\n20\n0\n30\n0\n11\n1\n21\n0\n31\n0\n12\n1\n"
                             "22\n1\n32\n0\n13\n0\n23\n1\n33\n0\n";
    write("self.dxf", "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n8\n0\n2\nA\n70\n0\n10\n0\n20\n0\n30\n0\n" +
                          face + insert + "0\nENDBLK\n8\n0\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" +
                          insert + insert + "0\nENDSEC\n0\nEOF\n");
    const Outcome r = run({"extract", "self.dxf", "--batch-folder", "folder"});
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.err, "qorvane: Block \"A\" inserts itself; the inner one is not drawn.\n");
    const std::string stream = read(folder_ / "folder" / "batch_file.txt");
    std::size_t faces = 0;
    for (std::size_t at = stream.find("\nFACE;"); at != std::string::npos;
         at = stream.find("\nFACE;", at + 1)) {
        ++faces;
    }
    EXPECT_EQ(faces, 4U) << "two references, two triangles each";
}

TEST_F(Programs, AnInterruptSavesThePictureSoFar) {
    const std::int64_t process =
        start({"render", "box.dxf", "-s", "400x300", "--passes", "30000", "--progress", "ndjson"});
    for (int i = 0; i < 1200; ++i) {
        if (read(folder_ / "out.txt").find("\"progress\"") != std::string::npos) {
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    ASSERT_TRUE(platform::interrupt_process(process));
    const Outcome r = finish(process);
    EXPECT_EQ(r.code, 130) << r.err;
    OIIO::ImageSpec spec;
    EXPECT_EQ(pixels(folder_ / "box.png", spec).size(), 400U * 300 * 3);
    EXPECT_TRUE(no_leftovers(folder_));
}

TEST_F(Programs, ABatchProcessThatIsKilledIsTold) {
    const std::int64_t process = start(
        {"render", "box.dxf", "-s", "400x300", "--passes", "5000", "--quiet", "-o", "killed.png"});
    std::int64_t batch = 0;
    for (int i = 0; i < 1200 && batch == 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(25));
        for (const platform::ProcessInfo& entry : platform::process_snapshot()) {
            batch = entry.parent_id == process && entry.name.starts_with("KestraBatch")
                        ? entry.process_id
                        : batch;
        }
    }
    ASSERT_NE(batch, 0);
    kill(static_cast<pid_t>(batch), SIGKILL);
    const Outcome outcome = finish(process);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.err,
              "qorvane: the batch process was ended by signal 9; there is no picture\n");
    EXPECT_FALSE(fs::exists(folder_ / "killed.png"));
}

TEST_F(Programs, ATimeLimitEndsWellWithThePicture) {
    const Outcome r =
        run({"render", "box.dxf", "-s", "200x150", "--passes", "30000", "--time", "2"});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_TRUE(fs::exists(folder_ / "box.png"));
}

TEST_F(Programs, ProgressLinesAreJson) {
    const Outcome r =
        run({"render", "box.dxf", "-s", "60x40", "--passes", "2", "--progress", "ndjson"});
    ASSERT_EQ(r.code, 0) << r.err;
    std::istringstream lines(r.out);
    std::string line, last;
    std::set<std::string> seen;
    while (std::getline(lines, line)) {
        const auto json = nlohmann::json::parse(line, nullptr, false);
        ASSERT_TRUE(json.is_object()) << line;
        last = json.value("event", "");
        seen.insert(last);
    }
    EXPECT_EQ(last, "end");
    for (const char* event : {"start", "phase", "progress", "image"}) {
        EXPECT_TRUE(seen.contains(event)) << event;
    }
}

TEST_F(Programs, InspectTellsFactsAsJson) {
    const Outcome r = run({"inspect", "box.dxf", "--json"});
    ASSERT_EQ(r.code, 0) << r.err;
    const auto json = nlohmann::json::parse(r.out, nullptr, false);
    ASSERT_TRUE(json.is_object()) << r.out;
    EXPECT_EQ(json["modelspace"]["3DFACE"], 4);
    EXPECT_TRUE(json["layers"].contains("Slab"));
    EXPECT_EQ(json["extents_plain"][1][2], 2.0);
}

TEST_F(Programs, ConvertKeepsEveryByteAndNeverOverwritesUnasked) {
    ASSERT_EQ(run({"convert", "box.dxf", "copy.dxf"}).code, 0);
    EXPECT_EQ(read(folder_ / "copy.dxf"), small_drawing());
    EXPECT_EQ(run({"convert", "box.dxf", "copy.dxf"}).code, 5);
    ASSERT_EQ(run({"convert", "box.dxf", "b.dxf", "--binary"}).code, 0);
    EXPECT_EQ(read(folder_ / "b.dxf").find("AutoCAD Binary DXF"), 0U);
    ASSERT_EQ(run({"convert", "b.dxf", "back.dxf", "--ascii"}).code, 0);
    const Outcome r = run({"inspect", "back.dxf", "--json"});
    EXPECT_EQ(nlohmann::json::parse(r.out)["modelspace"]["3DFACE"], 4);
}

TEST_F(Programs, ScriptsRunHostCommands) {
    write("script.txt", "; a comment\n\nQORB\nnonsense\n");
    const Outcome r = run({"run", "box.dxf", "--script", "script.txt"});
    EXPECT_EQ(r.code, 1) << "an unknown command fails the script";
    EXPECT_NE(r.out.find("not there yet"), std::string::npos) << r.out;
    EXPECT_NE(r.err.find("'nonsense' (line 4)"), std::string::npos) << r.err;
}

TEST_F(Programs, ADrawingSavedUnderANewNameTakesItsBatchFolderAlong) {
    write("there.dxf", "old");
    // The layer dialog makes the folder, and is not there yet.
    write("script.txt", "omb_ac_layer_materials\nSAVEAS cottage.dxf\nSAVEAS there.dxf\nno\n");
    const Outcome r = run({"run", "box.dxf", "--script", "script.txt"});
    EXPECT_NE(r.out.find("Qorvane Batch settings copied from 'box' to: cottage"), std::string::npos)
        << r.out << r.err;
    EXPECT_EQ(read(folder_ / "there.dxf"), "old");
    EXPECT_EQ(run({"inspect", "cottage.dxf"}).code, 0);
}

TEST_F(Programs, TheBatchProcessNeedsItsFolder) {
    const fs::path batch = fs::path(QORVANE_BUILD_DIR) / "OMB_BATCH" / "KestraBatch64";
    std::string error;
    const auto wait = [&](const std::vector<std::string>& words) {
        std::vector<std::string> shell{"-c", R"(exec "$0" "$@" > out.txt 2> err.txt)",
                                       batch.string()};
        shell.insert(shell.end(), words.begin(), words.end());
        const auto started = platform::start_process("/bin/sh", shell, folder_, error);
        return started ? platform::wait_process(started->process_id, 60).value_or(-1) : -1;
    };
    EXPECT_EQ(wait({}), 2);
    EXPECT_EQ(wait({"none/qor_render_params.txt"}), 3);
    ASSERT_EQ(run({"extract", "box.dxf", "--batch-folder", "folder"}).code, 0);
    fs::remove(folder_ / "folder" / "batch_file.txt");
    EXPECT_EQ(wait({"folder/qor_render_params.txt"}), 4);
    EXPECT_NE(read(folder_ / "err.txt").find("batch_file.txt"), std::string::npos);
}

/// A drawing in metres that shows a house of another one in millimetres, and lacks two things.
struct Referenced {
    static std::string tags(const std::string& header, const std::string& blocks,
                            const std::string& entities) {
        return "0\nSECTION\n2\nHEADER\n" + header + "0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n" + blocks +
               "0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n";
    }
    static std::string face(const char* layer) {
        return std::string("0\n3DFACE\n8\n") + layer +
               "\n10\n0\n20\n0\n30\n0\n11\n1000\n21\n0\n31\n0\n12\n1000\n22\n1000\n32\n0\n13\n0\n"
               "23\n1000\n33\n0\n";
    }
    static std::string block(const std::string& name, const std::string& path) {
        return "0\nBLOCK\n8\n0\n2\n" + name + "\n70\n4\n10\n0\n20\n0\n30\n0\n3\n" + name + "\n1\n" +
               path + "\n0\nENDBLK\n8\n0\n";
    }
    static std::string insert(const std::string& name, const char* handle) {
        return std::string("0\nINSERT\n5\n") + handle + "\n8\n0\n2\n" + name +
               "\n10\n5\n20\n0\n30\n0\n";
    }
    static std::string house() {
        return tags("9\n$INSUNITS\n70\n4\n", "", face("Wall") + "0\nPOINT\n5\n1F\n8\n0\n10\n0\n");
    }
    static std::string plot() {
        return tags("9\n$INSUNITS\n70\n6\n",
                    block("House", "C:\\jobs\\house.dwg") + block("Gone", "gone.dxf"),
                    insert("House", "50") + insert("House", "51") + insert("Gone", "52"));
    }
};

TEST_F(Programs, ReferencesAreDrawnAndWhatIsMissingIsTold) {
    write("house.dxf", Referenced::house());
    write("plot.dxf", Referenced::plot());
    const Outcome extract =
        run({"extract", "plot.dxf", "--batch-folder", "one", "--progress", "ndjson"});
    ASSERT_EQ(extract.code, 0) << extract.err;
    const std::string stream = read(folder_ / "one/batch_file.txt");
    EXPECT_NE(stream.find("LAY:House|Wall"), std::string::npos);
    EXPECT_NE(stream.find("VERT;(0.1524,0.0254, 0)"), std::string::npos)
        << "a metre in the reference is a metre here";
    std::map<std::string, nlohmann::json> warnings;
    std::istringstream lines(extract.out);
    for (std::string line; std::getline(lines, line);) {
        const auto event = nlohmann::json::parse(line);
        if (event["event"] == "warning") {
            warnings[event["code"]] = event;
        }
    }
    ASSERT_EQ(warnings.size(), 2u);
    EXPECT_EQ(warnings["point"]["count"], 2);
    EXPECT_EQ(warnings["point"]["handles"], nlohmann::json::array({"House|1F"}));
    EXPECT_EQ(warnings["external-reference-missing"]["handles"], nlohmann::json::array({"52"}));
    EXPECT_EQ(warnings["external-reference-missing"]["share"], 0);

    const Outcome inspect = run({"inspect", "plot.dxf", "--json"});
    const auto facts = nlohmann::json::parse(inspect.out);
    EXPECT_EQ(facts["blocks"], 2);
    EXPECT_EQ(facts["layers"].size(), 2u) << "those of the reference are not the drawing's";
    ASSERT_EQ(facts["not_drawn"].size(), 2u);
    EXPECT_EQ(facts["not_drawn"][0]["code"], "point");
    EXPECT_EQ(facts["not_drawn"][1]["details"], nlohmann::json::array({"gone.dxf"}));
    EXPECT_TRUE(facts["approximate"].empty());
    EXPECT_EQ(facts["external_references"][0]["status"], "resolved");
    EXPECT_EQ(facts["external_references"][1]["status"], "missing");

    const Outcome render = run({"render", "plot.dxf", "-s", "60x40", "--passes", "1"});
    EXPECT_EQ(render.code, 0);
    EXPECT_NE(render.out.find(", 3 not drawn\n"), std::string::npos) << render.out;
    EXPECT_NE(render.err.find("qorvane: Not in the picture:\n"), std::string::npos) << render.err;
    EXPECT_NE(render.err.find("qorvane:   2 points have no body [point]: handles House|1F"),
              std::string::npos)
        << render.err;
    ASSERT_EQ(run({"convert", "plot.dxf", "copy.dxf"}).code, 0);
    EXPECT_EQ(read(folder_ / "copy.dxf"), read(folder_ / "plot.dxf"));
}

} // namespace
