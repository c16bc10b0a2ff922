// Saving, opening, copying, handing back and closing.
#include "KestraBatch/window/render_window.h"
#include "omb/base/trace.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QCloseEvent>
#include <QFileDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QStatusBar>

#include <system_error>
#include <thread>

namespace KestraBatch {

namespace {

/// A render stops within a tile; one that does not is not waited for longer than this.
constexpr int longest_stop_ms = 10'000;

/// Pictures for documents wait as long for the grain to go.
constexpr int longest_cleaning_ms = 60'000;

QString text_of(const std::string& text) { return QString::fromStdString(text); }

QString text_of(const std::filesystem::path& path) { return QString::fromStdString(path.string()); }

QString filter_of(int kind) {
    return QString("%1 (*.%2)").arg(picture_kind(kind).description, picture_kind(kind).extension);
}

std::filesystem::path dropped_image(const QMimeData* data) {
    for (const QUrl& url : data->urls()) {
        const std::filesystem::path path = url.toLocalFile().toStdString();
        const std::string extension = path.extension().string();
        if (!extension.empty() && find_picture_kind(extension.substr(1)) == picture_kinds - 1) {
            return path;
        }
    }
    return {};
}

} // namespace

void RenderWindow::save() {
    if (model_.facts().outputs.empty()) {
        save_as();
    } else {
        save_to(model_.facts().outputs);
    }
}

void RenderWindow::save_as() {
    const std::filesystem::path path = ask_save_name();
    if (!path.empty()) {
        memory_.save_folder = path.parent_path().string();
        memory_.save_extension = path.extension().string().substr(1);
        save_to({path});
    }
}

/// Asks for a name until it is free, or its file may go.
std::filesystem::path RenderWindow::choose_save_name() {
    QFileDialog dialog(this, "Save picture as");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontConfirmOverwrite); // the extension is completed first
    QStringList filters;
    for (int kind = 0; kind < picture_kinds; ++kind) {
        filters << filter_of(kind);
    }
    dialog.setNameFilters(filters);
    dialog.selectNameFilter(filters[qMax(0, find_picture_kind(memory_.save_extension))]);
    const std::string folder =
        memory_.save_folder.empty() ? model_.facts().folder.string() : memory_.save_folder;
    dialog.setDirectory(text_of(folder));
    dialog.selectFile(text_of(std::filesystem::path(model_.facts().title).stem()));
    while (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().empty()) {
        const auto kind = qMax(0, static_cast<int>(filters.indexOf(dialog.selectedNameFilter())));
        const auto path = with_kind(dialog.selectedFiles().front().toStdString(), kind);
        std::error_code ignored;
        if (!std::filesystem::exists(path, ignored) ||
            QMessageBox::question(this, "Save picture as",
                                  text_of(path) + "\nis there already. Replace it?") ==
                QMessageBox::Yes) {
            return path;
        }
    }
    return {};
}

void RenderWindow::save_to(const std::vector<std::filesystem::path>& paths) {
    saves_.push_back({paths, model_.weights(), model_.tone(memory_.brighten ? 0 : toned_.exposure),
                      model_.revision()});
    if (saves_.size() == 1) {
        start_save();
    }
}

/// The first of saves_, on a thread of its own.
void RenderWindow::start_save() {
    const SaveJob job = saves_.front();
    model_.set_saving(job.paths.front().filename().string());
    save_problem_.clear();
    saver_ = std::thread([this, job, picture = picture_, number = ++save_number_] {
        SaveResult result;
        result.revision = job.revision;
        for (const auto& path : job.paths) {
            std::string problem;
            if (picture->save(path, job.weights, job.tone, problem)) {
                result.saved.push_back(path);
            } else {
                result.problems.push_back(problem);
            }
        }
        save_result_ = std::move(result);
        QMetaObject::invokeMethod(
            this, [this, number] { finish_save(number); }, Qt::QueuedConnection);
    });
    refresh();
}

void RenderWindow::wait_for_save() {
    while (saver_.joinable()) {
        finish_save(save_number_);
    }
}

/// Called when that thread ends, or to wait for it.
void RenderWindow::finish_save(int number) {
    if (number != save_number_ || !saver_.joinable()) {
        return; // somebody waited for it already
    }
    saver_.join();
    const SaveResult result = std::move(save_result_).value_or(SaveResult{});
    save_result_.reset();
    saves_.pop_front();
    for (const auto& path : result.saved) {
        tell("Saved as " + text_of(path), false);
    }
    if (!result.saved.empty() && result.problems.empty()) {
        model_.mark_saved(result.saved.front(), result.revision);
    }
    for (const std::string& problem : result.problems) {
        save_problem_ += (save_problem_.empty() ? "" : "\n") + problem;
        tell(text_of(problem), true);
    }
    model_.set_saving("");
    if (!saves_.empty()) {
        start_save();
    }
    refresh();
    go_on_leaving();
}

void RenderWindow::open_file(const std::filesystem::path& path) {
    if (opener_.joinable()) {
        return; // one after the other
    }
    opener_ = std::thread([this, path] {
        std::string problem;
        const Opened opened = program_.open_image(path, problem);
        const auto show = [this, opened, problem] {
            opener_.join();
            refresh_hint();
            if (!opened) {
                QMessageBox::warning(this, "Open", text_of(problem));
            } else if (leave([this, opened] { show_opened(opened); })) {
                show_opened(opened);
            }
        };
        QMetaObject::invokeMethod(this, show, Qt::QueuedConnection);
    });
    refresh_hint();
}

void RenderWindow::show_opened(const Opened& opened) {
    picture_->stop();
    set_source(opened);
    opened_ = opened;
    picture_->start();
    poll();
}

void RenderWindow::open_with_dialog() {
    const QString folder =
        text_of(memory_.save_folder.empty() ? model_.facts().folder.string() : memory_.save_folder);
    const QString file = QFileDialog::getOpenFileName(
        this, "Open", folder, filter_of(picture_kinds - 1) + ";;All files (*)");
    if (!file.isEmpty()) {
        open_file(file.toStdString());
    }
}

void RenderWindow::copy_picture() {
    if (!toned_.levels.empty()) {
        QApplication::clipboard()->setImage(toned_.levels.front());
        statusBar()->showMessage("The picture is on the clipboard", 3000);
    }
}

void RenderWindow::copy_name() {
    QApplication::clipboard()->setText(text_of(model_.last_saved()));
    statusBar()->showMessage("The file's name is on the clipboard", 3000);
}

void RenderWindow::keep_settings() {
    std::string problem;
    if (picture_->keep_settings(model_.tone(), model_.channels(), problem)) {
        model_.mark_kept();
        tell("The settings are kept for the drawing's next render.", false);
    } else {
        tell(text_of(problem), true);
    }
}

CloseAnswer RenderWindow::ask_close_question(const CloseQuestion& question) {
    QMessageBox box(QMessageBox::Question, name_, text_of(question.text), QMessageBox::NoButton,
                    this);
    box.setInformativeText(text_of(question.detail));
    QPushButton* yes = box.addButton(question.save ? "&Save" : "&Keep", QMessageBox::AcceptRole);
    QPushButton* discard =
        box.addButton(question.save ? "&Discard" : "Do &not keep", QMessageBox::DestructiveRole);
    box.setEscapeButton(box.addButton("Cancel", QMessageBox::RejectRole));
    box.setDefaultButton(yes);
    QCheckBox* keep = nullptr;
    if (question.save && question.keep) {
        keep = new QCheckBox("Keep the changed tone and light for the drawing", &box);
        box.setCheckBox(keep);
    }
    box.exec();
    CloseAnswer answer;
    if (box.clickedButton() == yes) {
        answer.kind = CloseAnswer::yes;
    } else if (box.clickedButton() == discard) {
        answer.kind = CloseAnswer::discard;
    }
    answer.keep_settings = keep != nullptr && keep->isChecked();
    return answer;
}

/// True when the picture may go at once: it is saved, not wanted, or nothing would be lost. When it
/// is to be saved first, `then` is called as soon as it is; never, when it stays.
bool RenderWindow::leave(std::function<void()> then) {
    if (leaving_) {
        return false; // somebody waits already
    }
    if (model_.is_saving()) {
        wait_to_leave({false, {}, std::move(then), true, {}});
        return false;
    }
    const CloseQuestion question = model_.close_question();
    if (forced_ || !question.is_asked()) {
        return true;
    }
    if (memory_.ask_at_closing) {
        return leave_as_answered(question, ask_at_closing(question), std::move(then));
    }
    if (!question.save || model_.facts().outputs.empty()) {
        return true;
    }
    wait_to_leave({true, model_.facts().outputs, std::move(then), false, {}});
    return false;
}

bool RenderWindow::leave_as_answered(const CloseQuestion& question, const CloseAnswer& answer,
                                     std::function<void()> then) {
    if (forced_ || leaving_) {
        return false; // a signal came while it was asked, and is obeyed
    }
    if (answer.kind != CloseAnswer::yes) {
        return answer.kind == CloseAnswer::discard;
    }
    if (question.keep && (answer.keep_settings || !question.save)) {
        keep_settings();
        if (model_.are_settings_changed()) {
            return false; // it failed, and a message says why
        }
    }
    if (!question.save) {
        return true;
    }
    picture_->stop();
    std::vector<std::filesystem::path> paths = model_.facts().outputs;
    if (paths.empty()) {
        paths = {ask_save_name()};
    }
    if (!paths.front().empty() && !forced_) {
        wait_to_leave({true, std::move(paths), std::move(then), false, {}});
    }
    return false;
}

void RenderWindow::wait_to_leave(Leaving leaving) {
    if (leaving.save) {
        picture_->stop();
    }
    leaving_ = std::move(leaving);
    leaving_->since.start();
    model_.set_leaving(true);
    refresh();
}

/// Called again and again while somebody waits: saves as soon as the render has stopped, and goes
/// as soon as that is done.
void RenderWindow::go_on_leaving() {
    if (!leaving_ || model_.is_saving()) {
        return;
    }
    const bool stopped = !model_.is_running() && is_all_shown();
    if (leaving_->save && !stopped && leaving_->since.elapsed() < longest_stop_ms) {
        return;
    }
    if (leaving_->save) {
        leaving_->save = false;
        if (forced_) { // known only now that it has stopped
            leaving_->paths = model_.facts().outputs;
        }
        const bool needless = forced_ && (model_.is_saved() || model_.status().picture == 0);
        if (!needless && !leaving_->paths.empty()) {
            save_to(leaving_->paths);
            return;
        }
    }
    const Leaving left = *std::move(leaving_);
    leaving_.reset();
    model_.set_leaving(false);
    refresh();
    const bool saved = model_.is_saved() && save_problem_.empty();
    const bool goes = forced_ || (saved && !left.ask_again);
    if (!goes && !save_problem_.empty() && !left.ask_again) {
        tell_why_it_stays();
    } else if (goes || leave(left.then)) { // else the question is due, or something was changed
        left.then();
    }
}

void RenderWindow::tell_why_it_stays() {
    auto* box = new QMessageBox(QMessageBox::Warning, name_,
                                "The picture was not saved, so the window stays open.",
                                QMessageBox::Close, this);
    box->setInformativeText(text_of(save_problem_));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open(); // nobody waits for it
}

/// As the user would close it, but nobody is there to be asked: what can be saved is saved.
void RenderWindow::close_as_asked(int signal) {
    take_status();
    exit_code_ = model_.is_running() ? 128 + signal : 0;
    forced_ = true;
    leaving_.reset(); // the user's own way out is overtaken
    wait_to_leave({true,
                   {},
                   [this] {
                       may_close_ = true;
                       close();
                   },
                   false,
                   {}});
    while (QWidget* box = QApplication::activeModalWidget()) {
        if (!box->close()) {
            break;
        }
    }
}

void RenderWindow::closeEvent(QCloseEvent* event) {
    const auto later = [this] {
        may_close_ = true;
        close();
    };
    // a signal may come, and be obeyed, while the user is asked
    if (!may_close_ && !leave(later) && !may_close_) {
        event->ignore();
        return;
    }
    timer_.stop();
    picture_->stop();
    toner_->set_source(nullptr);
    remember_place();
    event->accept();
    if (on_closed) {
        on_closed();
    }
}

void RenderWindow::remember_place() {
    if (!started_) {
        return;
    }
    const QRect place = isMaximized() ? normalGeometry() : QRect(pos(), size());
    memory_.x = place.x();
    memory_.y = place.y();
    memory_.width = place.width();
    memory_.height = place.height();
    program_.remember(memory_);
}

/// Other files are taken as well, to be refused in words.
void RenderWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    }
}

void RenderWindow::dropEvent(QDropEvent* event) {
    const std::filesystem::path path = dropped_image(event->mimeData());
    if (!path.empty()) {
        event->acceptProposedAction();
        open_file(path);
        return;
    }
    event->ignore();
    const QList<QUrl> urls = event->mimeData()->urls();
    tell((urls.empty() ? QString("This") : urls.front().fileName()) +
             " cannot be opened here: only a .QorImage can.",
         true);
}

/// QORVANE_WINDOW_GRAB=FILE.png: a picture of the window with the finished render, and the end.
void RenderWindow::grab_for_documents() {
    const QString file = qEnvironmentVariable("QORVANE_WINDOW_GRAB");
    const bool clean = toned_.clean || !without_grain_ || !model_.has_picture();
    if (file.isEmpty() || may_close_ || !end_handled_ ||
        (!clean && ended_since_.elapsed() < longest_cleaning_ms)) {
        return;
    }
    if (model_.is_saving()) {
        return;
    }
    refresh();
    statusBar()->clearMessage();
    if (!grab().save(file)) {
        OMB_TRACE(1, "The window's picture cannot be written: %s", file.toStdString());
    }
    may_close_ = true;
    close();
}

} // namespace KestraBatch
