// Windows and controls without a display; for headless*.cpp only.
#pragma once

#include "platform/window/headless.h"

namespace platform {

class HeadlessWindow;

class HeadlessControl : public Control {
public:
    HeadlessControl(HeadlessWindow& window, ControlSpec spec);

    const ControlSpec& spec() const override { return spec_; }
    std::string text() const override;
    void set_text(std::string_view text) override;
    bool is_checked() const override { return checked_; }
    void set_checked(bool checked) override;
    void set_rows(std::vector<ListRow> rows) override;
    int row_count() const override;
    std::string row_text(int index) const override;
    bool is_row_checked(int index) const override;
    void check_row(int index, bool checked) override;
    void set_tree(std::vector<TreeRow> rows) override;
    std::vector<int> selection() const override { return selection_; }
    void select(const std::vector<int>& rows) override;
    double value() const override { return value_; }
    void set_value(double value) override;
    void set_range(double least, double most) override;
    DateTime date_time() const override { return date_time_; }
    void set_date_time(const DateTime& value) override;
    void set_picture(SharedPicture picture) override;
    void set_pressed(bool pressed) override;
    bool is_visible() const override { return spec_.visible; }
    void set_visible(bool visible) override;
    bool is_enabled() const override { return spec_.enabled; }
    void set_enabled(bool enabled) override;
    WindowRect rect() const override { return spec_.rect; }
    void set_rect(const WindowRect& rect) override;
    void set_tool_tip(std::string_view text) override;
    void set_read_only(bool read_only) override;
    bool has_focus() const override;
    void set_focus() override;
    void repaint() override;
    WindowRect page_rect() const override;
    bool play(std::string_view action, std::string_view argument) override;

    /// Delivers an event; whether it was taken.
    bool tell(const ControlEvent& event);
    bool is_default_button() const;

private:
    friend struct HeadlessActions;
    void record(std::string_view what, std::string_view value = {});
    std::string path() const;
    std::vector<int> valid_rows(const std::vector<int>& rows) const;
    void check_radio();
    bool press();

    HeadlessWindow& window_;
    ControlSpec spec_;
    std::vector<ListRow> rows_;
    std::vector<TreeRow> tree_;
    std::vector<int> selection_;
    DateTime date_time_;
    double value_ = 0, least_ = 0, most_ = 100;
    bool checked_ = false, pressed_ = false;
};

class HeadlessWindow : public Window {
public:
    HeadlessWindow(HeadlessWindowSystem& system, WindowSpec spec, bool is_host = false);
    ~HeadlessWindow() override;

    const WindowSpec& spec() const override { return spec_; }
    Control* add_control(const ControlSpec& spec) override;
    void show() override;
    void hide() override;
    bool is_visible() const override { return visible_; }
    int run_modal() override;
    void end_modal(int result) override;
    void set_title(std::string_view title) override;
    WindowPoint place() const override;
    void set_place(WindowPoint place) override;
    WindowSize client_size() const override { return spec_.size; }
    void set_client_size(WindowSize size) override;
    void set_minimum_size(WindowSize size) override { minimum_ = size; }
    bool is_enabled() const override { return enabled_; }
    void set_enabled(bool enabled) override;
    void set_on_top(bool on_top) override;
    void activate() override;
    bool is_active() const override;
    WindowPicture grab(double) override { return {}; } ///< there is nothing to see
    bool play(std::string_view action, std::string_view argument) override;

    HeadlessControl* find_control(std::string_view name) const;
    /// Visible, enabled, and not behind a modal window.
    bool takes_input() const;
    /// Enter: the default button, or the window itself.
    bool press_default();
    void owner_is_gone() { spec_.owner = nullptr; }
    void tell(const WindowEvent& event);
    HeadlessWindowSystem& system() { return system_; }

    HeadlessControl* focus = nullptr;

private:
    friend class HeadlessControl;
    void record(std::string_view what, std::string_view value = {});
    bool press_cancel();

    HeadlessWindowSystem& system_;
    WindowSpec spec_;
    std::vector<std::unique_ptr<HeadlessControl>> controls_;
    WindowPoint place_;
    WindowSize minimum_;
    bool placed_ = false, visible_ = false, enabled_ = true, is_host_ = false;
    /// Of the modal loop: shared, so that the loop sees that its window died.
    struct ModalState {
        bool ended = false;
        int result = 0;
    };
    std::shared_ptr<ModalState> modal_;
};

/// "12,7 100x20"
std::string rect_text(const WindowRect& rect);
/// In quotes, line feeds as \n.
std::string quoted_text(std::string_view text);

} // namespace platform
