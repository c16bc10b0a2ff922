// Whole runs: a picture from a folder on disk, its statistics, and every way in which it can fail.
#include "KestraBatch/run_batch.h"

#include "KestraBatch/saved_picture.h"
#include "tests/KestraBatch/folder_fixture.h"
#include "tests/renderer/picture_files.h"

#include <gtest/gtest.h>

#include <OpenImageIO/imageio.h>
#include <nlohmann/json.hpp>

namespace {

using namespace KestraBatch;
using batch_test::BatchFolderOnDisk;
using batch_test::OutputRecord;
using batch_test::with;

struct Picture {
    int width = 0, height = 0, channels = 0;
    std::vector<unsigned char> pixels;
    std::string settings, drawing;

    /// Mean of a channel over a rectangle given in shares of the picture, y from the top.
    double mean(int channel, double x0, double y0, double x1, double y1) const {
        double sum = 0;
        int count = 0;
        for (int y = static_cast<int>(y0 * height); y < static_cast<int>(y1 * height); ++y) {
            for (int x = static_cast<int>(x0 * width); x < static_cast<int>(x1 * width); ++x) {
                sum += pixels[static_cast<std::size_t>((y * width + x) * channels + channel)];
                ++count;
            }
        }
        return sum / count;
    }
};

Picture read_picture(const std::filesystem::path& path) {
    Picture picture;
    auto in = OIIO::ImageInput::open(path.string());
    if (!in) {
        return picture;
    }
    const OIIO::ImageSpec& spec = in->spec();
    picture.width = spec.width;
    picture.height = spec.height;
    picture.channels = spec.nchannels;
    picture.settings = spec.get_string_attribute("Settings");
    picture.drawing = spec.get_string_attribute("Drawing");
    picture.pixels.resize(static_cast<std::size_t>(spec.width * spec.height * spec.nchannels));
    in->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::UINT8, picture.pixels.data());
    return picture;
}

int run(const BatchFolderOnDisk& folder, OutputRecord& out, BatchRun options = {}) {
    options.threads = 1;
    return run_batch({folder.params()}, out, options);
}

/// A box of the fixture's depth and height, every coordinate times `factor` and moved in x and y.
std::string box_mesh_at(double x0, double x1, double factor, double offset,
                        const std::string& head) {
    const double s = factor / 0.0254, o = offset / 0.0254;
    return batch_test::box_mesh(x0 * s + o, o, x1 * s + o, 3 * s + o, 2 * s, head);
}

TEST(RunBatch, AFolderBecomesAPicture) {
    const BatchFolderOnDisk folder("picture");
    OutputRecord out;
    ASSERT_EQ(run(folder, out), 0) << (out.errors.empty() ? "" : out.errors[0]);
    const Picture picture = read_picture(folder.picture());
    ASSERT_EQ(picture.width, 64);
    ASSERT_EQ(picture.height, 48);
    const int red = 0, green = 1, blue = 2;
    // sky above, bluer than it is red; sunlit ground below, warmer than the sky
    EXPECT_GT(picture.mean(blue, 0, 0, 1, 0.15), picture.mean(red, 0, 0, 1, 0.15) + 10);
    EXPECT_GT(picture.mean(red, 0.3, 0.85, 0.7, 1), 40);
    EXPECT_GT(picture.mean(red, 0.3, 0.85, 0.7, 1) / picture.mean(blue, 0.3, 0.85, 0.7, 1), 1.0);
    // the red box stands on the left, the blue one on the right
    EXPECT_GT(picture.mean(red, 0.25, 0.5, 0.4, 0.6), picture.mean(blue, 0.25, 0.5, 0.4, 0.6) + 40);
    EXPECT_GT(picture.mean(blue, 0.6, 0.5, 0.75, 0.6), picture.mean(red, 0.6, 0.5, 0.75, 0.6) + 20);
    EXPECT_GT(picture.mean(red, 0.25, 0.5, 0.4, 0.6), picture.mean(green, 0.25, 0.5, 0.4, 0.6));
    EXPECT_NE(picture.settings.find("iks_resx; 64"), std::string::npos);
    EXPECT_EQ(picture.settings.find("iks_sun_intensity"), std::string::npos)
        << "a default is left out";
    EXPECT_EQ(picture.drawing, "/nowhere/house.dxf");
    EXPECT_TRUE(out.has_message("saved " + folder.picture().string()));
    EXPECT_TRUE(out.errors.empty());
}

TEST(RunBatch, ThePictureDoesNotDependOnThreads) {
    std::vector<Picture> pictures;
    for (const int threads : {1, 3}) {
        const BatchFolderOnDisk folder("threads");
        OutputRecord out;
        BatchRun options;
        options.threads = threads;
        ASSERT_EQ(run_batch({folder.params()}, out, options), 0);
        pictures.push_back(read_picture(folder.picture()));
    }
    EXPECT_EQ(pictures[0].pixels, pictures[1].pixels);
}

TEST(RunBatch, FarFromTheOriginThePictureIsTheSame) {
    const BatchFolderOnDisk near("near");
    const BatchFolderOnDisk far("far"); // the same in millimetres, five kilometres off
    const double f = 0.0254 * 1000, off = 5e6 * 0.0254;
    std::string stream = box_mesh_at(-4, -1, f, off, "COLR;0000ff\nMATL;0\n") +
                         box_mesh_at(1, 4, f, off, "COLR;ff0000\nMATL;0\n") + "END;\n";
    far.write("batch_file.txt", stream);
    far.write("qor_view.txt", with(with(with(batch_test::box_view, "(0,-12,3)", "(5000,4988,3)"),
                                        "(0,0,1)\nDir", "(5000,5000,1)\nDir"),
                                   "view_scale;1\n", "view_scale;0.001\n"));
    OutputRecord out;
    ASSERT_EQ(run(near, out), 0);
    ASSERT_EQ(run(far, out), 0) << out.errors.back();
    const Picture a = read_picture(near.picture()), b = read_picture(far.picture());
    double difference = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i) {
        difference += std::abs(static_cast<int>(a.pixels[i]) - static_cast<int>(b.pixels[i]));
    }
    EXPECT_LT(difference / static_cast<double>(a.pixels.size()), 1.0);
}

TEST(RunBatch, WithoutFacesSkyAndGroundAreRendered) {
    const BatchFolderOnDisk folder("empty");
    folder.write("batch_file.txt", "#;Qor Batch Geometry from AutoCad\nEND;\n");
    OutputRecord out;
    EXPECT_EQ(run(folder, out), 0);
    EXPECT_TRUE(out.has_message("the drawing gave no faces"));
    EXPECT_EQ(read_picture(folder.picture()).width, 64);
}

TEST(RunBatch, TheExtensionChoosesTheKindOfFile) {
    for (const char* name : {"out.jpg", "out.hdr", "out.exr"}) {
        const BatchFolderOnDisk folder("kinds");
        folder.write("option_globals.txt", with(folder.settings(), "sks_auto_image_name; out.png",
                                                "sks_auto_image_name; " + std::string(name)));
        OutputRecord out;
        EXPECT_EQ(run(folder, out), 0) << name;
        EXPECT_EQ(read_picture(folder.folder / name).width, 64) << name;
    }
}

TEST(RunBatch, AQorImageKeepsWhatTheWindowNeeds) {
    const BatchFolderOnDisk folder("native");
    folder.write("option_globals.txt",
                 with(folder.settings("rks_lighting_channel_intensity1; 3\n"),
                      "sks_auto_image_name; out.png", "sks_auto_image_name; out.QorImage"));
    OutputRecord out;
    EXPECT_EQ(run(folder, out), 0);
    renderer::QorImage image;
    std::string error;
    ASSERT_TRUE(open_saved_picture(folder.folder / "out.QorImage", image, error)) << error;
    EXPECT_EQ(image.picture.channels.size(), 2u);
    EXPECT_EQ(image.weights[1], 3);
}

TEST(RunBatch, DamageGivesItsExitCodeAndNoPicture) {
    struct Case {
        const char* file;
        const char* text; ///< null: the file is removed
        int code;
        const char* message; ///< behind the folder's path
    };
    const Case cases[] = {
        {"params.txt", nullptr, 3, "params.txt: no such file"},
        {"params.txt", "hello\n", 3,
         "params.txt: no '*@KEY:' line in it; this is no parameter file"},
        {"qor_view.txt", nullptr, 4, "qor_view.txt: no such file"},
        {"qor_view.txt", "Eye;(0,0,0)\n", 3,
         "qor_view.txt(1): the file ends without 'END_CURRENT;'"},
        {"batch_file.txt", nullptr, 4, "batch_file.txt: no such file"},
        {"batch_file.txt", "MESH;\n", 3,
         "batch_file.txt(1): the stream ends without 'END;': it was cut, or its writing did not "
         "finish"},
        {"qor_doc.xml", "<Other/>", 3, "qor_doc.xml(1): the root element is 'Other', not 'TsDoc'"},
    };
    for (const Case& c : cases) {
        const BatchFolderOnDisk folder("damage");
        if (c.text) {
            folder.write(c.file, c.text);
        } else {
            std::filesystem::remove(folder.folder / c.file);
        }
        OutputRecord out;
        EXPECT_EQ(run(folder, out), c.code) << c.message;
        ASSERT_EQ(out.errors.size(), 1u) << c.message;
        EXPECT_EQ(out.errors[0], (folder.folder / "").string() + c.message);
        EXPECT_FALSE(std::filesystem::exists(folder.picture()));
    }
}

TEST(RunBatch, AbsurdSizesAreRefusedInWords) {
    const BatchFolderOnDisk folder("absurd");
    folder.write("option_globals.txt", folder.settings("iks_resx; 100000\niks_resy; 100000\n"));
    OutputRecord out;
    EXPECT_EQ(run(folder, out), 6);
    ASSERT_EQ(out.errors.size(), 1u);
    EXPECT_EQ(out.errors[0], "a picture of 100000 by 100000 pixels is beyond the limit of "
                             "100000000 pixels");
}

TEST(RunBatch, MissingSettingsAndDocumentAreSurvived) {
    const BatchFolderOnDisk folder("missing");
    std::filesystem::remove(folder.folder / "qor_doc.xml");
    folder.write("option_globals.txt", folder.settings("bks_enable_fog; 1\n"));
    OutputRecord out;
    EXPECT_EQ(run(folder, out), 0);
    EXPECT_TRUE(out.has_message("qor_doc.xml: no such file; a perspective view is taken"));
    EXPECT_TRUE(out.has_message("bks_enable_fog asks for fog: not rendered yet"));
}

TEST(RunBatch, WhereNothingCanBeWrittenItSaysSoBeforeItRenders) {
    const BatchFolderOnDisk folder("unwritable");
    folder.write("option_globals.txt", with(folder.settings(), "sks_auto_image_folder; ",
                                            "sks_auto_image_folder; /nowhere/at/all\n#"));
    OutputRecord out;
    EXPECT_EQ(run(folder, out), 5);
    ASSERT_EQ(out.errors.size(), 1u);
    EXPECT_NE(out.errors[0].find("/nowhere/at/all/out.png: cannot be written: "), std::string::npos)
        << out.errors[0];

    folder.write("option_globals.txt", with(folder.settings(), "out.png", "out.gif"));
    EXPECT_EQ(run(folder, out), 5);
    EXPECT_NE(out.errors[1].find("out.gif: pictures of this kind are not written"),
              std::string::npos);
}

/// Asks to stop as soon as the render tells of itself.
class Stopper : public OutputRecord {
public:
    Stopper(std::atomic<int>& stop, int signal)
      : stop_(stop)
      , signal_(signal) {}
    void status(const std::string& text) override {
        if (text.starts_with("rendering ")) {
            stop_ = signal_;
        }
    }

private:
    std::atomic<int>& stop_;
    int signal_;
};

TEST(RunBatch, StoppedItSavesThePictureSoFar) {
    const BatchFolderOnDisk folder("stopped");
    folder.write("option_globals.txt", with(folder.settings(), "iks_max_render_passes; 4",
                                            "iks_max_render_passes; 500000"));
    std::atomic<int> stop{0};
    Stopper out(stop, 15);
    BatchRun options;
    options.stop = &stop;
    EXPECT_EQ(run(folder, out, options), 143);
    EXPECT_EQ(read_picture(folder.picture()).width, 64);
}

TEST(RunBatch, InterruptedInItsFirstPassItSavesADraftAndSaysSo) {
    const BatchFolderOnDisk folder("interrupted");
    const std::string large =
        with(folder.settings(), "iks_resx; 64\niks_resy; 48", "iks_resx; 400\niks_resy; 300");
    folder.write("option_globals.txt", with(large, "out.png", "out.hdr"));
    std::atomic<int> stop{0};
    Stopper out(stop, 2);
    BatchRun options;
    options.stop = &stop;
    EXPECT_EQ(run(folder, out, options), 130);
    EXPECT_TRUE(std::filesystem::exists(folder.folder / "out.hdr"));
    EXPECT_TRUE(out.has_message("before its first pass"));
}

TEST(RunBatch, StoppedBeforeItRendersItLeavesNothing) {
    const BatchFolderOnDisk folder("early");
    const std::atomic<int> stop{2};
    BatchRun options;
    options.stop = &stop;
    OutputRecord out;
    EXPECT_EQ(run(folder, out, options), 130);
    EXPECT_FALSE(std::filesystem::exists(folder.picture()));
}

TEST(RunBatch, ProgressIsOneJsonObjectALine) {
    const BatchFolderOnDisk folder("progress");
    const auto path = folder.folder / "progress.ndjson";
    setenv("QORVANE_PROGRESS", path.c_str(), 1);
    OutputRecord out;
    BatchRun options;
    options.program_version = "test 1";
    EXPECT_EQ(run(folder, out, options), 0);
    unsetenv("QORVANE_PROGRESS");
    EXPECT_TRUE(out.messages.empty());

    std::ifstream in(path);
    std::vector<nlohmann::json> events;
    for (std::string line; std::getline(in, line);) {
        events.push_back(nlohmann::json::parse(line));
    }
    ASSERT_GE(events.size(), 6u);
    EXPECT_EQ(events.front()["event"], "start");
    EXPECT_GT(events.front()["pid"].get<long>(), 0);
    EXPECT_EQ(events.back()["event"], "end");
    EXPECT_EQ(events.back()["exit_code"], 0);
    EXPECT_EQ(events.back()["outputs"][0], folder.picture().string());
    double last = 0;
    bool image = false;
    for (const auto& event : events) {
        if (event["event"] == "progress") {
            EXPECT_GE(event["done"].get<double>(), last);
            last = event["done"];
            EXPECT_EQ(event["passes"], 4);
            EXPECT_GT(event["rss_mb"].get<int>(), 0);
        }
        image = image || event["event"] == "image";
    }
    EXPECT_EQ(last, 1);
    EXPECT_TRUE(image);
}

TEST(RunBatch, ArgumentsAreChecked) {
    OutputRecord out;
    EXPECT_EQ(run_batch({}, out), 2);
    EXPECT_EQ(run_batch({"a", "b"}, out), 2);
    EXPECT_EQ(run_batch({"--fast"}, out), 2);
    EXPECT_EQ(run_batch({"--help"}, out), 0);
    EXPECT_EQ(run_batch({"/nowhere/params.txt"}, out), 3);
    EXPECT_EQ(out.errors.back(), "/nowhere/params.txt: no such file");
}

TEST(RunBatch, PlantsAndPicturesOfTheStreamAreSeen) {
    BatchFolderOnDisk folder("plants_and_pictures");
    const auto plants = folder.folder / "Plants", decals = folder.folder / "Decals";
    std::filesystem::create_directories(plants);
    std::filesystem::create_directories(decals);
    std::ofstream(plants / "ball_def.TsPlant")
        << "<TsPlantDef version=\"1\" Kind=\"2\" Height=\"2\" Diameter=\"3\" "
           "TrunkHeight=\"0.1\" LeafSize=\"0.2\" FoliageDensity=\"2\" SummerColor=\"0 1 0\"/>";
    picture_files::write_tga(decals / "quarters.tga", 64, 64,
                             [](int x, int y) { return picture_files::quarters(x, y, 64, 64); });
    std::ofstream(decals / "broken.png") << "no picture";
    const std::string records =
        "#;PLANT\nPLLB;TsPlant\nPLNM;ball_def.TsPlant\nPLLC;(-2.5,-1.8,0)\nPLRT;0\nPLSC;1\n"
        "PLNT;1\n#;\nDEC1;(-0.9,-2,0.5)\nDEC2;(0.9,-2,0.5)\nDECW;1.8\nDECH;2\nDECN;(0,-1,0)\n"
        "DECL;quarters.tga\n#;\nDEC1;(6,9,0)\nDEC2;(7,9,0)\nDECW;1\nDECH;1\nDECN;(0,-1,0)\n"
        "DECL;broken.png\n#;\n";
    folder.write("batch_file.txt", with(batch_test::box_stream(), "END;\n", records + "END;\n"));
    OutputRecord out;
    ASSERT_EQ(run(folder, out), 0);
    EXPECT_FALSE(out.has_message("not rendered yet"));
    EXPECT_TRUE(out.has_message("broken.png"));
    const Picture picture = read_picture(folder.picture());
    const auto brightest = [&](double x, double y) {
        const double r = picture.mean(0, x - 0.02, y - 0.03, x + 0.02, y + 0.03);
        const double g = picture.mean(1, x - 0.02, y - 0.03, x + 0.02, y + 0.03);
        const double b = picture.mean(2, x - 0.02, y - 0.03, x + 0.02, y + 0.03);
        return std::min({r, g, b}) > 0.8 * std::max({r, g, b}) ? 'w'
               : r > g && r > b                                ? 'r'
               : g > b                                         ? 'g'
                                                               : 'b';
    };
    EXPECT_EQ(brightest(0.455, 0.40), 'r') << "the picture hangs upright, unmirrored";
    EXPECT_EQ(brightest(0.545, 0.40), 'g');
    EXPECT_EQ(brightest(0.455, 0.54), 'b');
    EXPECT_EQ(brightest(0.545, 0.54), 'w');
    EXPECT_EQ(brightest(0.25, 0.52), 'g') << "a bush before the red box";
}

} // namespace
