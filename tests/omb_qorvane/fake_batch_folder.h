// The add-on with a batch program and a window that do what a test tells them.
#pragma once

#include "extraction_fixture.h"

#include "omb/base/message_box.h"
#include "platform/window/headless.h"

#include <vector>

/// Answers boxes from a list (OK behind its end).
class ScriptedWindow : public cl_window_port {
public:
    struct Box {
        std::string text, title;
        unsigned type;
    };
    int message_box(const std::string& text, const std::string& title, unsigned type,
                    cl_window_handle parent) override;
    bool error_dialog(const cl_error_dialog& dialog) override;

    std::vector<Box> boxes;
    std::deque<int> answers;
};

class WithFakeBatch : public ExtractionTest {
protected:
    void SetUp() override;
    void TearDown() override;

    void batch_does(const std::string& order);
    /// How the batch program was called and what it was told; waits for `lines` lines.
    std::vector<std::string> batch_log(std::size_t lines) const;
    /// The folder of a program's code in the data folder, and a file's text in it.
    std::filesystem::path folder_of(int code) const;
    std::string file_of(int code, const std::string& name) const;
    /// The same of a drawing's name in the plain start, without the environment's own folder.
    std::string last_box() const { return window->boxes.empty() ? "" : window->boxes.back().text; }
    std::string last_title() const {
        return window->boxes.empty() ? "" : window->boxes.back().title;
    }

    /// How often a dialog of a dialog file came up.
    std::size_t times_shown(const std::string& title) const;

    ScriptedWindow* window = nullptr;
    platform::HeadlessWindowSystem dialogs; ///< attended only while it has a script
};
