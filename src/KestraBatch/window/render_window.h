// The main window: puts view, panels, actions and texts together.
#pragma once

#include "KestraBatch/window/panels.h"
#include "KestraBatch/window/picture_toner.h"
#include "KestraBatch/window/picture_view.h"
#include "KestraBatch/window/window_model.h"

#include <QElapsedTimer>
#include <QMainWindow>
#include <QString>
#include <QTimer>

#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

class QAction;
class QLabel;
class QProgressBar;
class QTabWidget;

namespace KestraBatch {

/// The user's answer to a CloseQuestion.
struct CloseAnswer {
    enum Kind { yes, discard, cancel } kind = cancel; ///< yes: saves, or keeps when only that
    bool keep_settings = false;                       ///< beside saving
};

class RenderWindow : public QMainWindow {
public:
    /// `picture` outlives the window.
    RenderWindow(cl_window_program& program, cl_window_picture& picture, const QString& name,
                 const QString& version);
    ~RenderWindow() override;

    /// Shows the window where it was last, and starts the render.
    void begin();
    void trigger(WindowCommand command); ///< as its button does
    QAction& action(WindowCommand command) { return *actions_.at(command); }
    /// 0, or 128 and the signal's number when a signal cut the render short.
    int exit_code() const { return exit_code_; }

    /// Reads another picture from a file on a thread of its own and shows it, after asking what to
    /// do with this one.
    void open_file(const std::filesystem::path& path);
    /// Saves what is shown to all of `paths` on a thread of its own, behind what is being saved.
    void save_to(const std::vector<std::filesystem::path>& paths);
    void wait_for_save(); ///< blocks; for tests and the end

    WindowModel& model() { return model_; }
    PictureView& view() { return *view_; }
    TonePanel& tone_panel() { return *tone_panel_; }
    LightPanel& light_panel() { return *light_panel_; }
    SettingsPanel& settings_panel() { return *settings_panel_; }
    QTabWidget& tabs() { return *tabs_; }

    /// Replaces the question at closing and the choice of a file name.
    std::function<CloseAnswer(const CloseQuestion&)> ask_at_closing;
    std::function<std::filesystem::path()> ask_save_name;
    std::function<void()> on_closed;

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct SaveJob {
        std::vector<std::filesystem::path> paths;
        renderer::ChannelWeights weights{};
        renderer::ToneSettings tone;
        std::uint64_t revision = 0;
    };
    struct SaveResult {
        std::vector<std::filesystem::path> saved;
        std::vector<std::string> problems;
        std::uint64_t revision = 0;
    };
    /// The user, or a signal, wants this picture away; it waits for the render's stop and the save.
    struct Leaving {
        bool save = false;                        ///< as the answer was, and not yet begun
        std::vector<std::filesystem::path> paths; ///< to save to
        std::function<void()> then;
        bool ask_again = false; ///< the question has not been asked yet
        QElapsedTimer since;
    };
    using Opened = std::shared_ptr<cl_window_picture>;

    // window_layout.cpp
    void make_actions();
    void make_menus();
    void make_toolbar();
    QWidget* make_pages();
    void make_bars();
    void show_help();
    void show_about();

    // render_window.cpp
    void set_source(Opened picture);
    void poll();
    bool is_all_shown() const;
    void show_toned(const TonedPicture& toned);
    void take_status();
    void take_facts();
    void on_ended();
    void retone();
    void refresh();
    void refresh_actions();
    void show_pixel();
    void pause_or_resume();
    void render_again();
    void more_passes();
    void set_region(PictureRegion region);
    void leave_region_mode();
    void refresh_hint();
    void escape();

    // window_files.cpp
    void save();
    void save_as();
    std::filesystem::path choose_save_name();
    void start_save();
    void finish_save(int number);
    void show_opened(const Opened& opened);
    void open_with_dialog();
    void copy_picture();
    void copy_name();
    void keep_settings();
    bool leave(std::function<void()> then);
    bool leave_as_answered(const CloseQuestion& question, const CloseAnswer& answer,
                           std::function<void()> then);
    void wait_to_leave(Leaving leaving);
    void go_on_leaving();
    void tell_why_it_stays();
    CloseAnswer ask_close_question(const CloseQuestion& question);
    void close_as_asked(int signal);
    void remember_place();
    void grab_for_documents();

    void tell(const QString& text, bool trouble);

    cl_window_program& program_;
    cl_window_picture* picture_;
    Opened opened_; ///< picture_, when it came from a file
    QString name_, version_;
    WindowMemory memory_;
    WindowModel model_;
    TonedPicture toned_;
    std::uint64_t looked_ = 0;
    bool end_handled_ = false, forced_ = false, started_ = false, may_close_ = false;
    bool without_grain_ = true; ///< finished pictures are shown as they are saved
    int exit_code_ = 0;
    QTimer timer_;
    QElapsedTimer ended_since_;
    int column_ = -1, row_ = -1; ///< of the pixel under the cursor

    std::map<WindowCommand, QAction*> actions_;
    PictureView* view_ = nullptr;
    QTabWidget* tabs_ = nullptr;
    TonePanel* tone_panel_ = nullptr;
    LightPanel* light_panel_ = nullptr;
    SettingsPanel* settings_panel_ = nullptr;
    MessagesPanel* messages_panel_ = nullptr;
    QLabel *state_ = nullptr, *time_ = nullptr, *pixel_ = nullptr, *size_ = nullptr,
           *zoom_ = nullptr;
    QProgressBar* progress_ = nullptr;

    std::thread saver_, opener_;
    std::deque<SaveJob> saves_;             ///< the first is under way
    std::optional<SaveResult> save_result_; ///< written by saver_, read when it has ended
    int save_number_ = 0;                   ///< of the newest of the saver's threads
    std::string save_problem_;              ///< of the last save; empty when it went well
    std::optional<Leaving> leaving_;
    std::unique_ptr<PictureToner> toner_;
};

} // namespace KestraBatch
