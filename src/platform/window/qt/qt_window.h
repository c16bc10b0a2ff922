// A window in widgets.
#pragma once

#include "platform/window/window_system.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <memory>

class QButtonGroup;
class QEventLoop;
class QKeyEvent;

namespace platform {

class QtControl;
class QtWindowSystem;

/// Its frame is a dialog, or, of an embedded window, a widget in the owner's frame. When the owner
/// dies the frame is taken out of it and the window lives on, unseen.
class QtWindow : public QObject, public Window {
public:
    QtWindow(QtWindowSystem& system, const WindowSpec& spec);
    ~QtWindow() override;

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
    WindowSize client_size() const override;
    void set_client_size(WindowSize size) override;
    void set_minimum_size(WindowSize size) override;
    bool is_enabled() const override { return enabled_; }
    void set_enabled(bool enabled) override;
    void set_on_top(bool on_top) override;
    void activate() override;
    bool is_active() const override;
    WindowPicture grab(double scale) override;
    bool play(std::string_view action, std::string_view argument) override;

    QWidget* frame() const { return frame_.get(); }
    QtWindowSystem& system() { return system_; }
    QtWindow* owner() const { return static_cast<QtWindow*>(spec_.owner); }
    /// Visible, enabled, and not behind a modal window.
    bool takes_input() const;
    /// The newest window that is meant by it, for scripts.
    QtControl* find_control(std::string_view name) const;
    /// Enter: the default button here or in the owner, or the window itself.
    bool press_default();
    bool press_cancel();
    void tell(const WindowEvent& event);
    /// The group that radio buttons join; `begins` makes a new one.
    QButtonGroup* radio_group(bool begins);
    int focus_quiet = 0; ///< above 0: the focus moves by the program's doing
    /// An end that the window itself does not agree to, see run_modal.
    void give_up();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Modal;
    void leave(const QtWindow& dying);
    void make_frame();
    void place_in_middle();
    void keep_size();
    void link_to_newest(QtControl& control);
    bool key_pressed(const QKeyEvent& event);
    bool turn_page(int amount);
    bool dropped(QEvent& event);
    void resized();

    QtWindowSystem& system_;
    WindowSpec spec_;
    std::unique_ptr<QWidget> frame_;
    std::vector<std::unique_ptr<QtControl>> controls_;
    QtControl* field_ = nullptr; ///< the edit that the next spinner belongs to
    QButtonGroup* radios_ = nullptr;
    std::shared_ptr<Modal> modal_; ///< while run_modal is under way; shared with it
    WindowSize minimum_;
    bool visible_ = false, enabled_ = true, placed_ = false;
};

} // namespace platform
