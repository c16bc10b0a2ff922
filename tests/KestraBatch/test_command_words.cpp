// Command words: which lines they are, dialogs by word and what reaches them, copying a project.
#include "KestraBatch/run_batch.h"

#include "tests/KestraBatch/folder_fixture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <vector>

namespace {

using namespace KestraBatch;
using batch_test::OutputRecord;
namespace fs = std::filesystem;

class CommandWords : public testing::Test {
protected:
    void SetUp() override {
        home = fs::temp_directory_path() / ("qorvane-words-" + std::to_string(getpid()));
        fs::remove_all(home);
        fs::create_directories(home / "old house" / "Materials");
        std::ofstream(home / "old house" / "option_globals.txt") << "iks_resx; 600\n";
        std::ofstream(home / "old house" / "Materials" / "a.TsMaterial") << "a";
    }
    void TearDown() override {
        register_dialog("qorvane_ac_setup", {});
        fs::remove_all(home);
    }
    int copy(const std::string& from, const std::string& to) {
        return run_batch({"copy_project_render_folder:" + from, "to_folder:", to}, out);
    }
    fs::path home;
    OutputRecord out;
};

TEST_F(CommandWords, ALineIsAWordAColonAndAnArgument) {
    const auto command = parse_command({"select_decal:C:\\a folder", "behind it"});
    ASSERT_TRUE(command);
    EXPECT_EQ(command->word, "select_decal");
    EXPECT_EQ(command->argument, "C:\\a folder behind it");
    EXPECT_FALSE(parse_command({"/x/select_decal:a"}));
    EXPECT_FALSE(parse_command({"select_decals:a"}));
    EXPECT_FALSE(parse_command({"select_decal"}));
    EXPECT_FALSE(parse_command({}));
    for (const std::vector<std::string>& form :
         {std::vector<std::string>{"copy_project_render_folder:/a b to_folder: /c d"},
          {"copy_project_render_folder:/a", "b", "to_folder:", "/c", "d"}}) {
        const auto copying = parse_command(form);
        ASSERT_TRUE(copying);
        EXPECT_EQ(copying->argument, "/a b");
        EXPECT_EQ(copying->second, "/c d");
    }
}

TEST_F(CommandWords, ADialogThatIsNotThereIsToldAndCancelled) {
    for (const char* word :
         {"qorvane_ac_setup", "qorvane_delta_OEM_setup", "show_acad_layers_and_matls_dlg",
          "show_start_rendering_dialog", "edit_materials_in_omb_ac_folder_dialog",
          "browse_for_material", "create_material", "select_decal"}) {
        EXPECT_EQ(run_batch({std::string(word) + ":/x/params.txt"}, out), 7) << word;
        EXPECT_EQ(out.errors.back(), "the dialog '" + std::string(word) + "' is not there yet");
    }
}

TEST_F(CommandWords, MessagesReachADialog) {
    std::vector<platform::Message> messages{
        {platform::kDialogMessage, 1001, {}, 0},
        {platform::kDialogMessage, 1004, {}, 0}, // nobody's
        {platform::kDialogMessage, 1002, "browse_for_material:/tmp/a:b", 0},
        {platform::kDialogMessage, 1003, "select_decal", 0},
        {platform::kDialogMessage, 16, {}, 0},
        {platform::WM_CLOSE, 0, {}, 0},
    };
    std::size_t at = 0;
    BatchRun run;
    run.next_event = [&]() -> std::optional<DialogEvent> {
        while (at < messages.size()) {
            if (auto event = dialog_event(messages[at++])) {
                return event;
            }
        }
        return std::nullopt;
    };
    std::vector<DialogEvent> seen;
    ASSERT_TRUE(register_dialog("qorvane_ac_setup", [&](DialogCall& call) {
        EXPECT_EQ(call.argument, "/x/params.txt");
        while (auto event = call.next_event()) {
            seen.push_back(*event);
        }
        return ExitCode::done;
    }));
    EXPECT_EQ(run_batch({"qorvane_ac_setup:/x/params.txt"}, out, run), 0);
    using Kind = DialogEvent::Kind;
    ASSERT_EQ(seen.size(), 5U);
    EXPECT_EQ(seen[0].kind, Kind::again);
    EXPECT_EQ(seen[1].kind, Kind::browse);
    EXPECT_EQ(seen[1].argument, "/tmp/a:b");
    EXPECT_EQ(seen[2].kind, Kind::other_dialog);
    EXPECT_EQ(seen[2].word, "select_decal");
    EXPECT_EQ(seen[3].kind, Kind::close);
    EXPECT_EQ(seen[4].kind, Kind::close);
    ASSERT_TRUE(register_dialog("qorvane_ac_setup", [](DialogCall&) -> ExitCode {
        throw std::runtime_error("no display");
    }));
    EXPECT_EQ(run_batch({"qorvane_ac_setup:/x"}, out), 1);
    EXPECT_EQ(out.errors.back(), "qorvane_ac_setup: no display");
    EXPECT_FALSE(register_dialog("copy_project_render_folder", {}));
    EXPECT_FALSE(register_dialog("no_word", {}));
}

TEST_F(CommandWords, AProjectIsCopiedWhole) {
    const fs::path from = home / "old house", to = home / "new";
    EXPECT_EQ(copy(from.string(), to.string()), 0);
    EXPECT_TRUE(fs::exists(to / "Materials" / "a.TsMaterial"));
    EXPECT_TRUE(fs::exists(from / "option_globals.txt"));
    std::ofstream(from / "option_globals.txt") << "iks_resx; 800\n";
    EXPECT_EQ(copy(from.string(), to.string()), 0) << "over what stands there";
    EXPECT_EQ(fs::file_size(to / "option_globals.txt"), fs::file_size(from / "option_globals.txt"));

    EXPECT_EQ(copy((home / "none").string(), to.string()), 4);
    EXPECT_EQ(copy("relative", to.string()), 2);
    EXPECT_EQ(copy(from.string(), ""), 2);
    EXPECT_EQ(run_batch({"copy_project_render_folder:" + from.string()}, out), 2);
    EXPECT_EQ(copy(from.string(), (from / "inside").string()), 5);
    EXPECT_FALSE(fs::exists(from / "inside"));
    EXPECT_EQ(copy(from.string(), from.string()), 5);
    std::ofstream(home / "file") << "x";
    EXPECT_EQ(copy(from.string(), (home / "file").string()), 5);
    EXPECT_EQ(out.errors.size(), 7U);
}

} // namespace
