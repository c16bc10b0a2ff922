// The parameter file: keys, repeated and unknown ones, paths, damage.
#include "KestraBatch/params_file.h"

#include "tests/KestraBatch/batch_texts.h"
#include "tests/test_folder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

using namespace KestraBatch;
using batch_test::good_params;
using batch_test::message_of;
using batch_test::with;

TEST(ParamsFile, KeysLandInTheirPlaces) {
    WarningList warnings;
    const Parameters params = parse_params(good_params, "/b/p.txt", warnings);
    EXPECT_EQ(params.calling_app, "QRAC");
    EXPECT_EQ(params.model_path, "/drawings/house.dxf");
    EXPECT_EQ(params.geometry_file, ".\\batch_file.txt");
    EXPECT_EQ(params.support_folders, (std::vector<std::string>{"/opt/a", "/opt/b"}));
    ASSERT_EQ(params.globals.size(), 2u);
    EXPECT_EQ(params.globals[1].first, "bks_kestra_qor_mode");
    EXPECT_EQ(params.globals[1].second, "1");
    EXPECT_TRUE(warnings.items().empty());
}

TEST(ParamsFile, PathsTakeEitherSeparatorFromTheFilesOwnFolder) {
    WarningList warnings;
    const Parameters params = parse_params(good_params, "/b/p.txt", warnings);
    EXPECT_EQ(params.resolve(".\\Materials\\x.csv"), "/b/Materials/x.csv");
    EXPECT_EQ(params.resolve("./Materials/x.csv"), "/b/Materials/x.csv");
    EXPECT_EQ(params.resolve("/else/x.csv"), "/else/x.csv");
    EXPECT_EQ(params.resolve("..\\x"), "/x");
}

TEST(ParamsFile, OddLinesAreWarnedOfWithTheirNumber) {
    struct Case {
        const char* line;
        const char* code;
        const char* text;
    };
    const Case cases[] = {
        {"*@KEY:COLOUR;red", "params-key-unknown", "p(1): unknown key 'COLOUR'"},
        {"nonsense", "params-line", "p(1): not a key and not a comment; the line is skipped"},
        {"*@KEY:VERSION", "params-line", "p(1): not a key and not a comment; the line is skipped"},
        {"*@KEY:GLOBAL;x", "params-global",
         "p(1): a GLOBAL key needs a name, a semicolon and a value"},
    };
    for (const Case& c : cases) {
        WarningList warnings;
        parse_params(std::string(c.line) + "\r\n" + good_params, "p", warnings);
        ASSERT_EQ(warnings.items().size(), 1u) << c.line;
        EXPECT_EQ(warnings.items()[0].code, c.code);
        EXPECT_EQ(warnings.items()[0].text, c.text);
    }
}

TEST(ParamsFile, UnknownKeysAreKeptAndOfDoublesTheLastCounts) {
    WarningList warnings;
    const Parameters params =
        parse_params(good_params + "*@KEY:FARM;a;b\n*@KEY:MODEL_NAME;barn", "p", warnings);
    ASSERT_EQ(params.unknown.size(), 1u);
    EXPECT_EQ(params.unknown[0].second, "a;b");
    EXPECT_EQ(params.model_name, "barn");
    ASSERT_EQ(warnings.items().size(), 2u);
    EXPECT_EQ(warnings.items()[1].text, "p(19): MODEL_NAME stands here again; the last one counts");
}

TEST(ParamsFile, DamageIsAnError) {
    const auto message = [](const std::string& text) {
        return message_of([&] {
            WarningList warnings;
            parse_params(text, "p", warnings);
        });
    };
    EXPECT_EQ(message(""), "p: no '*@KEY:' line in it; this is no parameter file");
    EXPECT_EQ(message(std::string("\0\x01\xff", 3)),
              "p: no '*@KEY:' line in it; this is no parameter file");
    EXPECT_EQ(message(with(good_params, "*@KEY:VIEW_FILE;.\\qor_view.txt\n", "")),
              "p(16): the file ends without a value for key 'VIEW_FILE'");
    EXPECT_EQ(message(with(good_params, ";.\\batch_file.txt", ";")),
              "p(17): the file ends without a value for key 'BATCH_GEOM_FILE'");
}

TEST(ParamsFile, SmallFilesAreReadWithALimit) {
    const auto folder = std::filesystem::path(testing::TempDir());
    const auto path = unique_test_path("small.txt");
    std::ofstream(path, std::ios::binary) << "12345";
    EXPECT_EQ(read_small_file(path, ExitCode::missing, 5), "12345");
    EXPECT_EQ(message_of([&] { read_small_file(path, ExitCode::missing, 4); }),
              path.string() + ": longer than 4 bytes");
    std::filesystem::remove(path);
    EXPECT_EQ(message_of([&] { read_small_file(folder, ExitCode::missing); }),
              folder.string() + ": this is a folder");
    try {
        read_small_file(folder / "absent.txt", ExitCode::missing);
        FAIL();
    } catch (const ReadError& error) {
        EXPECT_EQ(error.code(), ExitCode::missing);
        EXPECT_EQ(std::string(error.what()), (folder / "absent.txt").string() + ": no such file");
    }
}

} // namespace
