#include "platform/files.h"

#include "platform/file_io.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <vector>

#include <sys/stat.h>

namespace fs = std::filesystem;
using namespace platform;

namespace {

class FilesTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "qorvane_files_XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
    }
    void TearDown() override { fs::remove_all(folder_); }
    std::string text_of(const fs::path& path) const {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    std::size_t entries() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
    }
    fs::path folder_;
};

TEST_F(FilesTest, MappedFileTellsWhatIsWrong) {
    MappedFile file;
    std::string error;
    EXPECT_FALSE(file.open(folder_ / "none", error));
    EXPECT_EQ(error, "No such file or directory");
    EXPECT_FALSE(file.open(folder_, error));
    EXPECT_EQ(error, "Is a directory");
    EXPECT_FALSE(file.open("/dev/null", error));
    EXPECT_EQ(error, "Not a regular file");
    std::ofstream(folder_ / "empty");
    EXPECT_TRUE(file.open(folder_ / "empty", error));
    EXPECT_TRUE(file.view().empty());
}

TEST_F(FilesTest, MappedFileMoves) {
    std::ofstream(folder_ / "a") << "bytes";
    MappedFile first, second;
    std::string error;
    ASSERT_TRUE(first.open(folder_ / "a", error));
    second = std::move(first);
    EXPECT_EQ(second.view(), "bytes");
    MappedFile third(std::move(second));
    EXPECT_EQ(third.view(), "bytes");
    EXPECT_EQ(second.data(), nullptr);
}

TEST_F(FilesTest, AtomicFileAppearsOnlyWhenCommitted) {
    const fs::path path = folder_ / "out";
    std::string error;
    {
        AtomicFile file;
        ASSERT_TRUE(file.open(path, error));
        file.write("half");
        EXPECT_FALSE(fs::exists(path));
    }
    EXPECT_EQ(entries(), 0U) << "an abandoned file leaves nothing behind";
    std::ofstream(path) << "old";
    AtomicFile file;
    ASSERT_TRUE(file.open(path, error));
    const std::string large(700000, 'x');
    file.write(large);
    EXPECT_EQ(text_of(path), "old");
    ASSERT_TRUE(file.commit(error)) << error;
    EXPECT_EQ(text_of(path), large);
    EXPECT_EQ(entries(), 1U);
}

TEST_F(FilesTest, AtomicFileReportsAFullDisk) {
    std::error_code missing;
    if (!fs::exists("/dev/full", missing)) {
        GTEST_SKIP() << "no /dev/full here";
    }
    std::string error;
    AtomicFile file;
    EXPECT_FALSE(file.open(folder_ / "no" / "such", error));
    EXPECT_EQ(error, "No such file or directory");
    EXPECT_FALSE(file.open(folder_, error));
    EXPECT_EQ(error, "Is a directory");
    EXPECT_FALSE(file.commit(error));
}

TEST_F(FilesTest, OneVariableReplacesAllUserFolders) {
    setenv("QORVANE_HOME", folder_.c_str(), 1);
    for (const fs::path& path :
         {data_folder(), config_folder(), cache_folder(), state_folder(), temporary_folder()}) {
        EXPECT_EQ(path.parent_path(), folder_);
        EXPECT_TRUE(fs::is_directory(path));
    }
    EXPECT_EQ(documents_folder(), folder_ / "documents");
    unsetenv("QORVANE_HOME");
    setenv("XDG_DATA_HOME", (folder_ / "xdg").c_str(), 1);
    EXPECT_EQ(data_folder(), folder_ / "xdg");
    unsetenv("XDG_DATA_HOME");
}

TEST_F(FilesTest, DocumentsAndTemporariesByTheirOrder) {
    const std::string home = environment("HOME"), tmp = environment("TMPDIR");
    setenv("HOME", folder_.c_str(), 1);
    setenv("XDG_CONFIG_HOME", (folder_ / "config").c_str(), 1);
    EXPECT_EQ(documents_folder(), folder_ / "Documents");
    fs::create_directories(folder_ / "config");
    const auto choose = [&](const std::string& text) {
        std::ofstream(folder_ / "config" / "user-dirs.dirs") << text;
        return documents_folder();
    };
    EXPECT_EQ(choose("# x\nXDG_MUSIC_DIR=\"/m\"\nXDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n"),
              folder_ / "Dokumente");
    EXPECT_EQ(choose("XDG_DOCUMENTS_DIR=\"/data/my docs\"  \n"), "/data/my docs");
    EXPECT_EQ(choose("XDG_DOCUMENTS_DIR=\"relative\"\nXDG_DOCUMENTS_DIR=\"\nXDG_DOCUMENTS_DIR="),
              folder_ / "Documents");
    setenv("XDG_DOCUMENTS_DIR", "/env", 1);
    EXPECT_EQ(choose("XDG_DOCUMENTS_DIR=\"/file\"\n"), "/env");
    unsetenv("XDG_DOCUMENTS_DIR");
    unsetenv("XDG_CONFIG_HOME");

    setenv("TEMP", "/from/temp", 1);
    setenv("TMPDIR", "/from/tmpdir", 1);
    EXPECT_EQ(temporary_folder(), "/from/tmpdir");
    setenv("TMPDIR", "relative", 1);
    EXPECT_EQ(temporary_folder(), "/from/temp");
    unsetenv("TEMP");
    EXPECT_EQ(temporary_folder(), "/tmp");
    setenv("HOME", home.c_str(), 1);
    tmp.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", tmp.c_str(), 1);
}

TEST_F(FilesTest, WhetherAFileCanBeWrittenIsFoundOutWithoutATrace) {
    std::ofstream(folder_ / "there") << "content";
    EXPECT_TRUE(can_write_file(folder_ / "there"));
    EXPECT_EQ(text_of(folder_ / "there"), "content");
    EXPECT_TRUE(can_write_file(folder_ / "new"));
    EXPECT_FALSE(fs::exists(folder_ / "new"));
    EXPECT_FALSE(can_write_file(folder_));
    EXPECT_FALSE(can_write_file(folder_ / "no" / "such"));
    ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(can_write_file(folder_ / "pipe")) << "a pipe that nobody reads must not block";
}

TEST(Names, ProgramNamesLoseTheForeignEnding) {
    EXPECT_EQ(program_name("KestraBatch64.exe"), "KestraBatch64");
    EXPECT_EQ(program_name("get_materials64.dll"), "get_materials64");
    EXPECT_EQ(program_name("plain"), "plain");
}

TEST(Memory, ResidentSizeGrowsWithUse) {
    const std::uint64_t before = resident_bytes();
    std::vector<char> block(std::size_t{64} << 20, 'x');
    EXPECT_GE(resident_bytes(), before + (std::uint64_t{48} << 20));
    EXPECT_EQ(block[5], 'x');
}

} // namespace
