// `qorvane dialog` as an author of dialogs runs it, and the shipped dialogs under it.
#include "tests/apps/program_fixture.h"

#include <nlohmann/json.hpp>
#include <png.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

class Dialogs : public ProgramTest {
protected:
    Outcome run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "dialog");
        return run_program(std::move(arguments));
    }
    json run_json(std::vector<std::string> arguments, int code = 0) const {
        arguments.emplace_back("--json");
        const Outcome r = run(std::move(arguments));
        EXPECT_EQ(r.code, code) << r.err;
        return json::parse(r.out, nullptr, false);
    }
};

/// The dialogs that are shipped, by file.
std::vector<fs::path> shipped_dialogs() {
    std::vector<fs::path> files;
    const fs::path appl = fs::path(QORVANE_SOURCE_DIR) / "support" / "appl";
    for (const auto& entry : fs::recursive_directory_iterator(appl)) {
        if (entry.path().extension() == ".dcl") {
            files.push_back(entry.path());
        }
    }
    std::ranges::sort(files);
    return files;
}

TEST_F(Dialogs, TokensTellTextOrNumber) {
    write("test_words.dcl", "test_words : dialog {\n    width = 10.5;\n}\n");
    const json tokens = run_json({"tokens", "test_words.dcl"});
    ASSERT_EQ(tokens.size(), 9U) << tokens;
    EXPECT_EQ(tokens[0]["code"], 266);
    EXPECT_EQ(tokens[0]["text"], "test_words");
    EXPECT_TRUE(tokens[0]["int"].is_null());
    EXPECT_EQ(tokens[1]["code"], ':');
    EXPECT_TRUE(tokens[1]["text"].is_null() && tokens[1]["int"].is_null());
    EXPECT_EQ(tokens[4]["code"], 263);
    EXPECT_TRUE(tokens[4]["text"].is_null() && tokens[4]["int"].is_number());
    EXPECT_EQ(tokens[6]["text"], "10.5");
    EXPECT_EQ(tokens[6]["line"], 2);
    const Outcome text = run({"tokens", "test_words.dcl"});
    EXPECT_NE(text.out.find("    2  DCL_DOUBLE_VARIABLE        width\n"), std::string::npos)
        << text.out;
    EXPECT_EQ(run({"tokens", "nowhere.dcl"}).code, 3);
}

TEST_F(Dialogs, CheckTellsMistakesAsCompilersDo) {
    write("test_bad.dcl", "test_bad : dialog {\n"
                          "    row {\n"
                          "\twidth = \"a\";\n"
                          "        text { label = \"b\" }\n"
                          "    }\n"
                          "}\n");
    const Outcome r = run({"check", "test_bad.dcl"});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.out.find("test_bad.dcl:3:"), 0U) << r.out;
    EXPECT_NE(r.out.find("error: Cannot set this variable to a string. Floating point value "
                         "expected."),
              std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("    3 | \twidth = \"a\";\n      | \t"), std::string::npos)
        << "the line, and a caret that tabs do not move\n"
        << r.out;
    EXPECT_EQ(r.out.find('\x1b'), std::string::npos) << "no colours in a file";
    const json report = run_json({"check", "test_bad.dcl"}, 1);
    EXPECT_EQ(report["ok"], false);
    ASSERT_FALSE(report["errors"].empty());
    EXPECT_EQ(report["errors"][0]["line"], 3);
    EXPECT_TRUE(report["trace"].is_array() && !report["trace"].empty());
    write("test_twice.dcl", "test_twice : dialog { no = 1; no = 1; }\n");
    const json twice = run_json({"check", "test_twice.dcl"}, 1)["errors"];
    ASSERT_EQ(twice.size(), 2U) << "two mistakes of one line that read the same";
    EXPECT_EQ(twice[0]["message"], twice[1]["message"]);
}

TEST_F(Dialogs, CheckTakesEveryDialogOrTheOneThatIsNamed) {
    write("test_two.dcl", "test_one : dialog { text { label = \"a\"; } }\n"
                          "test_two : dialog { text { command = foo; } }\n"
                          "test_three : dialog { not_there; }\n");
    EXPECT_EQ(run_json({"check", "test_two.dcl", "--dialog", "test_one"})["ok"], true);
    EXPECT_EQ(run_json({"check", "test_two.dcl", "--dialog", "test_two"}, 1)["ok"], false);
    EXPECT_EQ(run_json({"check", "test_two.dcl"}, 1)["errors"][0]["line"], 2);
    EXPECT_EQ(run({"check", "test_two.dcl", "--dialog", "test_four"}).code, 4);
    const json third = run_json({"check", "test_two.dcl", "--dialog", "test_three"});
    EXPECT_NE(third["warnings"].dump().find("not_there"), std::string::npos) << third;
}

TEST_F(Dialogs, TreeFollowsTheSettings) {
    write("test_tree.dcl", "test_tree : dialog {\n"
                           "    label = \"Tree - %VER%\";\n"
                           "    column {\n"
                           "        edit_box { sid = \"a\"; width = 10; }\n"
                           "        edit_box { sid = \"b\"; width = 20; skip_if_global = "
                           "\"btree_short\"; }\n"
                           "    }\n"
                           "}\n");
    const std::vector<std::string> call{"tree", "test_tree", "--file", "test_tree.dcl"};
    const json tree = run_json(call);
    ASSERT_EQ(tree["controls"].size(), 3U) << tree;
    EXPECT_EQ(tree["controls"][0]["parent"], -1);
    EXPECT_EQ(tree["controls"][1]["window_id"], 7010);
    EXPECT_EQ(tree["controls"][1]["width"], 80) << "it grows to its column";
    EXPECT_EQ(tree["controls"][2]["sid"], "b");
    std::vector<std::string> short_call = call;
    short_call.insert(short_call.end(), {"--set", "btree_short=yes"});
    const json short_tree = run_json(short_call);
    EXPECT_EQ(short_tree["controls"][2]["skip"], true);
    EXPECT_EQ(short_tree["controls"][1]["width"], 40);
    EXPECT_LT(short_tree["height"], tree["height"]);
    EXPECT_EQ(run({"tree", "test_none", "--file", "test_tree.dcl"}).code, 1);
    EXPECT_EQ(run({"tree", "test_tree", "--set", "x=1"}).code, 2);
}

TEST_F(Dialogs, ShowPlaysAScriptAndKeepsTheProfile) {
    write("test_ask.dcl", "test_ask : dialog {\n"
                          "    init_command = dc_set_global_int(\"iask\", 7);\n"
                          "    exit_command = dc_test_command();\n"
                          "    edit_box { sid = \"size\"; profile = \"iks_dialog_wd\"; }\n"
                          "    ok_cancel;\n"
                          "}\n");
    write("ok.txt", "# a user's part\nsize type 77\nIDOK click\n");
    write("cancel.txt", "window escape\n");
    const std::vector<std::string> call{"show", "test_ask", "--file", "test_ask.dcl", "--script"};
    const auto show = [&](std::vector<std::string> more) {
        std::vector<std::string> words = call;
        words.insert(words.end(), more.begin(), more.end());
        return run(words);
    };
    const Outcome ok = show({"ok.txt", "--log"});
    EXPECT_EQ(ok.code, 0) << ok.err;
    EXPECT_EQ(ok.out.substr(ok.out.size() - 3), "OK\n") << ok.out;
    std::size_t at = 0;
    for (const char* line :
         {"* init_command test_ask\n", "* exchange to_controls test_ask\n", "> size type 77\n",
          "> IDOK click\n", "* ok test_ask\n", "* exchange to_globals test_ask\n",
          "* save_all_changed\n", "* exit_command test_ask\n"}) {
        const std::size_t found = ok.out.find(line, at);
        EXPECT_NE(found, std::string::npos) << line << "in its order in\n" << ok.out;
        at = found == std::string::npos ? at : found;
    }
    const Outcome cancel = show({"cancel.txt"});
    EXPECT_EQ(cancel.out, "Cancel\n");
    EXPECT_EQ(cancel.code, 0) << "a cancel is no failure";
    for (const auto& entry : fs::recursive_directory_iterator(folder_ / "home")) {
        EXPECT_FALSE(entry.is_regular_file()) << entry.path() << ": an author's tool keeps nothing";
    }
    const Outcome nobody = run({"show", "test_ask", "--file", "test_ask.dcl"});
    EXPECT_EQ(nobody.code, 1);
    EXPECT_NE(nobody.err.find("there is no display"), std::string::npos) << nobody.err;
    const Outcome logged = run({"show", "kestra_about", "--log"}); // opens and is cancelled
    EXPECT_EQ(logged.code, 0) << logged.err;
    EXPECT_NE(logged.out.find("* cancel kestra_about\n"), std::string::npos) << logged.out;
}

TEST_F(Dialogs, GrabWritesAPictureAtItsScale) {
    const auto size_of = [&](const std::string& name) {
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        const std::string path = (folder_ / name).string();
        EXPECT_NE(png_image_begin_read_from_file(&image, path.c_str()), 0) << name;
        const auto size = std::make_pair(image.width, image.height);
        png_image_free(&image);
        return size;
    };
    write("tick.txt", "no_limit check 1\n");
    const Outcome r = run({"show", "kestra_start_rendering_modal", "--grab", "one.png", "--theme",
                           "dark", "--script", "tick.txt"});
    ASSERT_EQ(r.code, 0) << r.err;
    ASSERT_EQ(
        run({"show", "kestra_start_rendering_modal", "--grab", "two.png", "--scale", "2"}).code, 0);
    const auto one = size_of("one.png"), two = size_of("two.png");
    EXPECT_GT(one.first, 300U);
    EXPECT_EQ(two, std::make_pair(2 * one.first, 2 * one.second));
    EXPECT_EQ(run({"show", "kestra_about", "--grab", "none/x.png"}).code, 5);
    write("browse.txt", "browse_folder click\n"); // a box would wait for somebody
    EXPECT_EQ(
        run({"show", "kestra_start_rendering_modal", "--grab", "box.png", "--script", "browse.txt"})
            .code,
        0);
    write("wrong.txt", "nobody click\n");
    const Outcome wrong = run({"show", "kestra_about", "--grab", "x.png", "--script", "wrong.txt"});
    EXPECT_EQ(wrong.code, 1);
    EXPECT_NE(wrong.err.find("wrong.txt:1: cannot be done: nobody click"), std::string::npos)
        << wrong.err;
}

TEST_F(Dialogs, ShippedDialogsAreWithoutMistakesAndNothingLiesOverAnother) {
    const std::vector<fs::path> files = shipped_dialogs();
    EXPECT_GE(files.size(), 10U);
    for (const fs::path& file : files) {
        const json report = run_json({"check", file.string()});
        EXPECT_EQ(report["ok"], true) << file << report["errors"];
        EXPECT_EQ(report["warnings"], json::array()) << file;
        for (const json& name : report["dialogs"]) {
            const json tree = run_json({"tree", name, "--file", file.string()});
            const auto leaves = [&](const json& row) {
                return row["skip"] == false && row["width"] > 0 &&
                       std::ranges::none_of(tree["controls"], [&](const json& other) {
                           return other["parent"] == row["number"];
                       });
            };
            std::vector<json> rows;
            std::ranges::copy_if(tree["controls"], std::back_inserter(rows), leaves);
            for (std::size_t i = 0; i < rows.size(); ++i) {
                const int right = rows[i]["x"].get<int>() + rows[i]["width"].get<int>();
                const int bottom = rows[i]["y"].get<int>() + rows[i]["height"].get<int>();
                EXPECT_LE(right, tree["width"]) << name << rows[i];
                EXPECT_LE(bottom, tree["height"]) << name << rows[i];
                for (std::size_t j = i + 1; j < rows.size(); ++j) {
                    EXPECT_FALSE(
                        rows[j]["x"] < right && rows[j]["y"] < bottom &&
                        rows[i]["x"] < rows[j]["x"].get<int>() + rows[j]["width"].get<int>() &&
                        rows[i]["y"] < rows[j]["y"].get<int>() + rows[j]["height"].get<int>())
                        << name << rows[i] << rows[j];
                }
            }
        }
    }
}

} // namespace
