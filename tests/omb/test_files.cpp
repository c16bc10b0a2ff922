// Lines, CSV fields, buffered writing with errors, name services and the guards of clearing.
#include "omb/base/files.h"
#include "omb/base/number_text.h"
#include "omb/base/text.h"
#include "tests/omb/fixture.h"

namespace fs = std::filesystem;
using Files = StoreTest;

namespace {

std::vector<std::string> fields(std::string line, char separator = ',') {
    std::vector<std::string> all;
    while (!line.empty()) {
        all.push_back(read_field_csv(line, separator));
    }
    return all;
}

using list = std::vector<std::string>;

} // namespace

TEST_F(Files, LinesOfEveryKind) {
    put("a", "\xEF\xBB\xBFone\r\ntwo\n\rthree");
    cl_input_file file;
    ASSERT_TRUE(file.open(path("a")));
    EXPECT_EQ(file.line_count(), -1);
    list read;
    for (std::string line; file.read_line(line);) {
        read.push_back(line);
    }
    EXPECT_EQ(read, (list{"one", "two", "", "three"}));
    EXPECT_EQ(file.line_count(), 3);
    EXPECT_FALSE(file.open(path("none")));
    EXPECT_NE(file.error_text().find("No such file"), std::string::npos);
    EXPECT_FALSE(file.open(folder.string()));
    EXPECT_FALSE(file.open(path("a"), 5)) << "larger than the limit";
    put("empty", "");
    ASSERT_TRUE(file.open(path("empty")));
    std::string line;
    EXPECT_FALSE(file.read_line(line));
}

TEST_F(Files, CsvFields) {
    EXPECT_EQ(fields("a, b ,,  ,c"), (list{"a", "b", "", "", "c"}));
    EXPECT_EQ(fields("\"a,b\",c"), (list{"a,b", "c"}));
    EXPECT_EQ(fields("\"say \"\"hi\"\", then\",x"), (list{"say \"hi\", then", "x"}));
    EXPECT_EQ(fields("\"two\"nlines\"rhere\";x", ';'), (list{"two\nlines\rhere", "x"}));
    EXPECT_EQ(fields("\"open,to the end"), (list{"open,to the end"}));
    EXPECT_EQ(fields("a\nrest"), (list{"a", "rest"}));
    EXPECT_EQ(fields("\"end\""), (list{"end"}));
    EXPECT_EQ(fields("\"a\"xb\",c"), (list{"axb", "c"}));
    EXPECT_EQ(traced(1, "Bad \\ escape character: 120 x (\"a\"xb\",c)"), 1);
    std::string line = "only";
    EXPECT_EQ(read_field_csv(line), "only");
    EXPECT_TRUE(line.empty());
}

TEST_F(Files, CsvFieldsThatAreOdd) {
    EXPECT_EQ(fields(",,"), (list{"", ""}));
    EXPECT_EQ(fields(" \t ,"), (list{""})) << "a field of blanks is trimmed to nothing";
    EXPECT_EQ(fields("\"\",x"), (list{"", "x"}));
    EXPECT_EQ(fields("\"\"\"\",x"), (list{"\"", "x"}));
    EXPECT_EQ(fields("a\"\"b,c"), (list{"a\"b", "c"})) << "an escape without opening quotes";
    EXPECT_EQ(fields("a\",b"), (list{"a", "b"})) << "the mark and the separator end any field";
    EXPECT_EQ(fields("\"a\"\nb"), (list{"a", "b"}));
    EXPECT_EQ(fields("\"a,\nb,c"), (list{"a,", "b", "c"})) << "a line feed ends quotes as well";
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(fields(" \"a,b\",c"), (list{"a", "b", "c"}))
        << "quotes open at the very first character only";
    lines.clear();
    EXPECT_EQ(fields("\"a\"üb\",c"), (list{"aüb", "c"}));
    EXPECT_EQ(traced(1, "Bad \\ escape character: 252 ü (\"a\"üb\",c)"), 1);
    std::string_view view = "a;b";
    EXPECT_EQ(read_field_csv(view, ';'), "a");
    EXPECT_EQ(view, "b");
}

TEST_F(Files, FieldsComeBackAsTheyWereWritten) {
    const std::pair<const char*, const char*> cases[] = {{"", ""},
                                                         {"plain", "plain"},
                                                         {"in ner", "in ner"},
                                                         {"a,b", "\"a,b\""},
                                                         {" a", "\" a\""},
                                                         {"a ", "\"a \""},
                                                         {"a;b", "a;b"},
                                                         {"say \"x\"", "\"say \"\"x\"\"\""},
                                                         {"\"", "\"\"\"\""},
                                                         {"a\r\nb", "\"a\"r\"nb\""},
                                                         {"Küche 厨", "Küche 厨"},
                                                         {",", "\",\""},
                                                         {"n", "n"}};
    cl_output_file file;
    ASSERT_TRUE(file.open(path("out.csv")));
    for (const auto& [field, written] : cases) {
        EXPECT_EQ(field_csv(field), written);
        file.write_field_csv(field);
        file.write_field_csv(field, ',', true);
    }
    ASSERT_TRUE(file.close());
    EXPECT_TRUE(get("out.csv").starts_with(",\"\",plain,\"plain\",in ner,"));
    cl_input_file in;
    ASSERT_TRUE(in.open(path("out.csv")));
    std::string line;
    ASSERT_TRUE(in.read_line(line));
    for (const auto& [field, written] : cases) {
        EXPECT_EQ(in.read_field_csv(line), omb::trim(field)) << written;
        EXPECT_EQ(read_field_csv(line), omb::trim(field)) << written << " in quotes";
    }
    EXPECT_EQ(line, "");
    EXPECT_FALSE(in.read_line(line)) << "no field breaks the line";
    EXPECT_EQ(field_csv("a,b", ';'), "a,b");
    EXPECT_EQ(field_csv("a;b", ';'), "\"a;b\"");
}

TEST_F(Files, BufferedWriting) {
    cl_output_file file;
    ASSERT_TRUE(file.open(path("out")));
    std::string expected;
    for (int i = 0; i < 40000; ++i) {
        char* begin = file.reserve(2 * number_text::max_chars);
        ASSERT_NE(begin, nullptr);
        char* end = number_text::write_g9(begin, i / 8.0);
        *end++ = '\n';
        expected.append(begin, end);
        file.commit(end);
        file.write_fmt("%s;%d;%.4g\n", std::string("Küche"), i, i / 3.0);
        expected += fmt::sprintf("%s;%d;%.4g\n", "Küche", i, i / 3.0);
    }
    const std::string large(300000, 'x');
    file.write_data(large);
    EXPECT_TRUE(file.close());
    EXPECT_EQ(get("out"), expected + large);
    ASSERT_TRUE(file.open_for_append(path("out")));
    file.write_data("tail");
    EXPECT_TRUE(file.close());
    EXPECT_TRUE(get("out").ends_with("xtail"));
}

TEST_F(Files, FullDiskIsToldAtClose) {
    cl_output_file file;
    if (!file.open("/dev/full")) {
        GTEST_SKIP() << "no /dev/full here";
    }
    file.write_data("lost");
    EXPECT_FALSE(file.close());
    EXPECT_EQ(file.error_text(), "/dev/full: No space left on device");
    { // nobody asks: the destructor says so
        cl_output_file other;
        ASSERT_TRUE(other.open("/dev/full"));
        other.write_data("lost");
    }
    EXPECT_EQ(traced(1, "Cannot write file: /dev/full: No space left on device"), 1);
}

TEST_F(Files, AtomicFilesAppearWhole) {
    put("f", "old");
    {
        cl_output_file file;
        ASSERT_TRUE(file.open_atomic(path("f")));
        file.write_data("new");
        EXPECT_TRUE(file.flush());
        EXPECT_EQ(get("f"), "old");
    }
    EXPECT_EQ(get("f"), "new");
    std::string error;
    EXPECT_FALSE(write_whole_file(path("no/f"), "x", error));
    EXPECT_NE(error.find("No such file"), std::string::npos);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1) << "no temporary is left";
}

TEST_F(Files, AskingBeforeWriting) {
    put("f.csv", "old");
    EXPECT_FALSE(check_file_for_write(path("f.csv"), "Scheme", true));
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, "File " + path("f.csv") + " already exists. OK to Overwrite?");
    EXPECT_EQ(boxes[0].title, "Scheme file exists");
    EXPECT_TRUE(boxes[0].type & message_box::on_top);
    answers = {message_box::id_ok};
    EXPECT_TRUE(check_file_for_write(path("f.csv"), "Scheme", true));
    EXPECT_EQ(get("f.csv"), "old") << "the test leaves the file alone";
    EXPECT_TRUE(check_file_for_write(path("new.csv"), "Scheme", true));
    EXPECT_FALSE(file_exists(path("new.csv")));
    boxes.clear();
    answers = {message_box::id_ok, message_box::id_cancel};
    EXPECT_FALSE(check_file_for_write(path("no/f"), "Scheme", false));
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_TRUE(boxes[0].text.starts_with("Cannot create Scheme file"));
    EXPECT_EQ(boxes[1].text, "Still cannot write to file: \n\n'" + path("no/f") +
                                 "\n\nClick OK to retry or Cancel to exit.");
    EXPECT_EQ(traced(1, "Cannot write to Scheme file: " + path("no/f")), 2);
}

TEST_F(Files, AFileThatGrowsIsNotAskedFor) {
    put("f.csv", "old");
    EXPECT_TRUE(check_file_for_write(path("f.csv"), "Scheme", true, file_write_mode::append));
    EXPECT_TRUE(boxes.empty());
    EXPECT_FALSE(check_file_for_write(path("no/f"), "Scheme", true, file_write_mode::append));
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_TRUE(boxes[0].text.ends_with(
        path("no/f") + "\n\nTry closing the program using it and click OK to retry."));
}

TEST_F(Files, RetryingSucceedsWhenTheReasonHasGone) {
    class Mender : public cl_window_port {
    public:
        explicit Mender(fs::path missing)
          : missing_(std::move(missing)) {}
        int message_box(const std::string&, const std::string&, unsigned,
                        cl_window_handle) override {
            fs::create_directories(missing_);
            return message_box::id_ok;
        }
        bool error_dialog(const cl_error_dialog&) override { return true; }

    private:
        fs::path missing_;
    };
    set_window_port(std::make_unique<Mender>(folder / "no"));
    EXPECT_TRUE(check_file_for_write(path("no/f"), "Scheme", false));
    EXPECT_EQ(traced(1, "Cannot write to Scheme file: " + path("no/f")), 1);
}

TEST_F(Files, UniqueNames) {
    EXPECT_EQ(get_unique_name_for_file(path("a.b.png")), path("a.b_1.png"));
    put("a_1.png", ""), put("a_2.png", "");
    EXPECT_EQ(get_unique_name_for_file(path("a.png")), path("a_3.png"));
    EXPECT_EQ(get_unique_name_for_file(path("bare")), path("bare_1"));
    fs::create_symlink("nowhere", folder / "bare_1");
    EXPECT_EQ(get_unique_name_for_file(path("bare")), path("bare_2")) << "a link has its name, too";
    EXPECT_EQ(get_unique_name_for_file(path("a.png"), 2), "");
    EXPECT_EQ(traced(1, "Could new create unique file name: " + path("a.png")), 1);
}

TEST_F(Files, ClearFolderRefusesWhatIsNotAFolderBelowTheRoot) {
    const std::pair<std::string, const char*> cases[] = {
        {"", "File to remove not set properly"},     {"name", "Name must contain a backslash"},
        {"C:\\", "must not be the entire drive."},   {"\\\\", "must not be the entire drive."},
        {"C:", "Name must contain a backslash"},     {"/", "must not be the entire drive."},
        {"//", "must not be the entire drive."},     {"/tmp/..", "must not be the entire drive."},
        {"/./", "must not be the entire drive."},    {"a/b", "must not be the entire drive."},
        {"../b", "must not be the entire drive."},   {"C:\\\\", "must not be the entire drive."},
        {"C:/./", "must not be the entire drive."},  {"C:\\a\\..", "must not be the entire drive."},
        {"\\\\\\", "must not be the entire drive."}, {"1:\\a", "must not be the entire drive."}};
    for (const auto& [name, message] : cases) {
        lines.clear();
        EXPECT_FALSE(clear_folder(name, true)) << name;
        EXPECT_EQ(traced(1, message), 1) << name;
        EXPECT_FALSE(delete_folder_tree(name)) << name;
    }
}

TEST_F(Files, ClearFolder) {
    fs::create_directories(folder / "sub/deep");
    for (const char* name : {"a.TXT", "b.txt", "c.png", "sub/d.txt", "sub/deep/e.txt"}) {
        put(name, "x");
    }
    EXPECT_TRUE(clear_folder(folder.string(), false, ".txt"));
    EXPECT_FALSE(file_exists(path("a.TXT")));
    EXPECT_TRUE(file_exists(path("c.png")));
    EXPECT_TRUE(file_exists(path("sub/d.txt")));
    put("outside", "keep");
    fs::create_directories(folder / "links");
    fs::create_directory_symlink(folder / "sub", folder / "links/sub");
    EXPECT_TRUE(clear_folder(path("links"), true));
    EXPECT_TRUE(file_exists(path("sub/d.txt"))) << "a link is removed, not followed";
    EXPECT_FALSE(fs::exists(folder / "links/sub"));
    EXPECT_TRUE(clear_folder(folder.string(), true));
    EXPECT_FALSE(file_exists(path("sub/deep/e.txt")));
    EXPECT_TRUE(folder_exists(path("sub/deep"))) << "the folders stay";
    EXPECT_TRUE(clear_folder(path("never made"), true));
}

TEST_F(Files, TreesAreCopiedAndDeleted) {
    fs::create_directories(folder / "from/sub");
    put("from/sub/a", "content");
    EXPECT_TRUE(copy_folder(path("from"), path("to/deep")));
    EXPECT_EQ(get("to/deep/sub/a"), "content");
    EXPECT_TRUE(delete_folder_tree(path("from")));
    EXPECT_FALSE(folder_exists(path("from")));
    EXPECT_FALSE(copy_folder(path("from"), path("again")));
    put("to/deep/sub/a", "old"), put("to/deep/b", "other");
    fs::create_directories(folder / "from/sub");
    put("from/sub/a", "content");
    EXPECT_TRUE(copy_folder(path("from"), path("to/deep")));
    EXPECT_EQ(get("to/deep/sub/a"), "content");
    EXPECT_EQ(get("to/deep/b"), "other") << "what stands there and is not replaced stays";
    EXPECT_FALSE(copy_folder(path("from"), path("from/sub/inner"))) << "it would have no end";
    EXPECT_FALSE(copy_folder(path("from") + "/", path("from/../from")));
    EXPECT_FALSE(folder_exists(path("from/sub/inner")));
    EXPECT_TRUE(copy_folder(path("from"), path("from2"))) << "a longer name is no folder in it";
}

TEST_F(Files, MaterialNamesAsFileStems) {
    const std::pair<const char*, const char*> cases[] = {
        {"Oak-2_b", "Oak-2_b"}, {"a b", "a%20b"},   {"a/b:c", "a%2fb%3ac"}, {"50%", "50%25"},
        {"\t", "% 9"},          {"ü", "%fc"},       {"厨", "%a8"},          {"😀", "%3d%0"},
        {"a%20b", "a%20b"},     {"x%fc", "x%25fc"}, {"[x]", "%5bx%5d"},     {"", ""}};
    for (const auto& [name, encoded] : cases) {
        if (std::string(name) != "😀") { // checked below, its low byte is a blank-padded 0
            EXPECT_EQ(encode_file_name(name), encoded) << name;
        }
    }
    EXPECT_EQ(encode_file_name("😀"), "%3d% 0");
    for (const char* name : {"Oak-2_b", "a b", "a/b:c", "50%", "\t", "ü", "[x]"}) {
        EXPECT_EQ(decode_file_name(encode_file_name(name)), name);
    }
    EXPECT_EQ(decode_file_name("100%"), "100%") << "nothing behind the mark";
    EXPECT_EQ(decode_file_name("a%zzb"), "a%zzb");
}

TEST_F(Files, PathParts) {
    EXPECT_EQ(path_name("C:\\a\\b.txt"), "b.txt");
    EXPECT_EQ(path_stem("/a.d/b.tar.gz"), "b.tar");
    EXPECT_EQ(path_extension("/a.d/b"), "");
    EXPECT_EQ(path_extension("/a/.hidden"), "");
    EXPECT_EQ(path_folder("/b"), "/");
    EXPECT_EQ(path_folder("b"), "");
    EXPECT_EQ(join_path("/a/", "/b"), "/a/b");
    EXPECT_EQ(join_path("/", "b"), "/b");
    EXPECT_EQ(join_path("", "b"), "b");
    EXPECT_EQ(native_separators(".\\Materials\\a.csv"), "./Materials/a.csv");
}

TEST_F(Files, OneFolderReplacesTheUsersFolders) {
    const std::string home = path("home");
    ::setenv("QORVANE_HOME", home.c_str(), 1);
    for (const std::string& place :
         {get_application_data_folder(), get_settings_folder(), get_state_folder(),
          get_temporary_directory(), get_documents_folder()}) {
        EXPECT_TRUE(place.starts_with(home)) << place;
        EXPECT_TRUE(folder_exists(place)) << place;
    }
    EXPECT_TRUE(get_temporary_directory().ends_with("/"));
    fs::create_directories(folder / "home/documents");
    EXPECT_EQ(get_documents_folder(), path("home/documents"));
    ::setenv("QORVANE_HOME", "/dev/null", 1);
    EXPECT_EQ(get_temporary_directory(), "/tmp/");
    EXPECT_EQ(traced(1, "Cannot create temporary folder: /dev/null/tmp"), 1);
    EXPECT_EQ(get_application_data_folder(), "");
    EXPECT_EQ(get_documents_folder(), "/tmp/") << "the last that stands in";
    ::unsetenv("QORVANE_HOME");
}

TEST_F(Files, TemporaryFolderIsMade) {
    const char* before = std::getenv("TMPDIR");
    const std::string kept = before != nullptr ? before : "";
    ::setenv("TMPDIR", path("made/here").c_str(), 1);
    EXPECT_EQ(get_temporary_directory(), path("made/here") + "/");
    EXPECT_TRUE(folder_exists(path("made/here")));
    ::setenv("TMPDIR", (path("made") + "/").c_str(), 1);
    EXPECT_EQ(get_temporary_directory(), path("made") + "/");
    kept.empty() ? ::unsetenv("TMPDIR") : ::setenv("TMPDIR", kept.c_str(), 1);
}
