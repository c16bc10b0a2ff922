// A control in widgets: what all kinds share.
#pragma once

#include "platform/window/qt/qt_values.h"
#include "platform/window/window_system.h"

#include <QKeyEvent>
#include <QObject>

#include <memory>

namespace platform {

class QtWindow;

/// The widget belongs to the window's frame and dies with it, after its control.
class QtControl : public QObject, public Control {
public:
    QtControl(QtWindow& window, const ControlSpec& spec);

    const ControlSpec& spec() const override { return spec_; }
    std::string text() const override { return spec_.text; }
    void set_text(std::string_view text) override { spec_.text = text; }
    bool is_checked() const override { return false; }
    void set_checked(bool) override {}
    void set_rows(std::vector<ListRow>) override {}
    int row_count() const override { return 0; }
    std::string row_text(int) const override { return {}; }
    bool is_row_checked(int) const override { return false; }
    void check_row(int, bool) override {}
    void set_tree(std::vector<TreeRow>) override {}
    std::vector<int> selection() const override { return {}; }
    void select(const std::vector<int>&) override {}
    double value() const override { return 0; }
    void set_value(double) override {}
    void set_range(double, double) override {}
    DateTime date_time() const override { return {}; }
    void set_date_time(const DateTime&) override {}
    void set_picture(SharedPicture) override {}
    void set_pressed(bool) override {}
    bool is_visible() const override { return spec_.visible; }
    void set_visible(bool visible) override;
    bool is_enabled() const override { return spec_.enabled; }
    void set_enabled(bool enabled) override;
    WindowRect rect() const override { return spec_.rect; }
    void set_rect(const WindowRect& rect) override;
    void set_tool_tip(std::string_view text) override;
    void set_read_only(bool read_only) override { spec_.read_only = read_only; }
    bool has_focus() const override;
    void set_focus() override;
    void repaint() override { widget_->update(); }
    WindowRect page_rect() const override { return rect(); }
    bool play(std::string_view action, std::string_view argument) final;

    QWidget* widget() const { return widget_; }
    /// A control was made behind this one: a label takes it as what its mnemonic leads to.
    virtual void next_was_made(QtControl&) {}
    /// Arrow keys of an edit move the spinner beside it.
    virtual bool step(int) { return false; }
    /// Another tab, by keys that reach the window.
    virtual bool turn_page(int) { return false; }
    virtual bool click();
    bool is_button(bool ControlSpec::*flag) const; ///< a push button that can be pressed

protected:
    /// Takes the widget, whose parent is the window's frame, and gives it what all kinds have.
    void take(QWidget* widget);
    QWidget* parent_widget() const;
    QtWindow& window() const { return window_; }
    /// Tells an event, unless the program itself is setting something; whether it was taken.
    bool raise(const ControlEvent& event);
    /// What a user's hand does, besides "click", "hover", "leave" and "focus".
    virtual bool act(std::string_view action, std::string_view argument);
    virtual bool key_pressed(const QKeyEvent&) { return false; }
    virtual bool has_rows() const { return false; }
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool handle_enter(); ///< Enter in a field: its event, else the window's default button

    ControlSpec spec_;
    int quiet_ = 0; ///< above 0: events are the program's own doing

private:
    bool play_now(std::string_view action, std::string_view argument);
    void apply_colors();

    QtWindow& window_;
    QWidget* widget_ = nullptr;
    bool is_hovered_ = false;
};

/// Makes the control of that kind.
std::unique_ptr<QtControl> make_qt_control(QtWindow& window, const ControlSpec& spec);

using ControlMaker = std::unique_ptr<QtControl> (*)(QtWindow&, const ControlSpec&);
std::unique_ptr<QtControl> make_push_button(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_check_box(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_radio_button(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_group_frame(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_label(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_edit(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_combo_box(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_list(QtWindow& window, const ControlSpec& spec); ///< trees too
std::unique_ptr<QtControl> make_spinner(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_slider(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_tabs(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_thumbnails(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_date_or_time(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_progress(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_rich_text(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_html(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_picture_button(QtWindow& window, const ControlSpec& spec);
std::unique_ptr<QtControl> make_surface(QtWindow& window, const ControlSpec& spec);

} // namespace platform
