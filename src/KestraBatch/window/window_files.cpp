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

#include <chrono>
#include <system_error>
#include <thread>

namespace KestraBatch {

namespace {

/// A render stops within a tile; one that does not is not waited for longer than this.
constexpr std::chrono::milliseconds stop_slice{10};
constexpr int most_stop_slices = 1000;

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
    wait_for_save();
    const std::uint64_t revision = model_.revision();
    const auto weights = model_.weights();
    const auto tone = model_.tone(memory_.brighten ? 0 : toned_.exposure);
    saver_ = std::thread([this, paths, weights, tone, revision, picture = picture_] {
        SaveResult result;
        result.revision = revision;
        for (const auto& path : paths) {
            std::string problem;
            if (picture->save(path, weights, tone, problem)) {
                result.saved.push_back(path);
            } else {
                result.problems.push_back(problem);
            }
        }
        save_result_ = std::move(result);
        QMetaObject::invokeMethod(
            this, [this] { finish_save(); }, Qt::QueuedConnection);
    });
    refresh();
}

void RenderWindow::wait_for_save() { finish_save(); }

/// Called when the thread has ended, or to wait for it.
void RenderWindow::finish_save() {
    if (!saver_.joinable()) {
        return; // somebody waited for it already
    }
    saver_.join();
    const SaveResult result = std::move(save_result_).value_or(SaveResult{});
    save_result_.reset();
    for (const auto& path : result.saved) {
        tell("Saved as " + text_of(path), false);
    }
    if (!result.saved.empty() && result.problems.empty()) {
        model_.mark_saved(result.saved.front(), result.revision);
    }
    for (const std::string& problem : result.problems) {
        tell(text_of(problem), true);
    }
    refresh();
}

bool RenderWindow::save_and_wait(const std::vector<std::filesystem::path>& paths) {
    save_to(paths);
    wait_for_save();
    return model_.is_saved();
}

bool RenderWindow::open_file(const std::filesystem::path& path) {
    std::string problem;
    std::unique_ptr<cl_window_picture> opened = program_.open_image(path, problem);
    if (!opened) {
        QMessageBox::warning(this, "Open", text_of(problem));
        return false;
    }
    if (!may_leave()) {
        return false;
    }
    picture_->stop();
    toner_->set_source(nullptr); // before the picture that it reads may go
    set_source(*opened);
    opened_ = std::move(opened);
    picture_->start();
    poll();
    return true;
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

/// True when the picture may go: saved, not wanted, or nothing would be lost.
bool RenderWindow::may_leave() {
    wait_for_save();
    const CloseQuestion question = model_.close_question();
    if (forced_ || !question.is_asked()) {
        return true;
    }
    if (!memory_.ask_at_closing) {
        return !question.save || model_.facts().outputs.empty() ||
               save_and_wait(model_.facts().outputs);
    }
    const CloseAnswer answer = ask_at_closing(question);
    if (forced_ || answer.kind == CloseAnswer::discard) {
        return true;
    }
    if (answer.kind == CloseAnswer::cancel) {
        return false;
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
    return !paths.front().empty() && save_and_wait(paths);
}

/// As the user would close it, but nobody is there to be asked: what can be saved is saved.
void RenderWindow::close_as_asked(int signal) {
    take_status();
    const bool cut_short = model_.is_running();
    forced_ = true;
    wait_for_save();
    picture_->stop();
    for (int i = 0; model_.is_running() && i < most_stop_slices; ++i) {
        std::this_thread::sleep_for(stop_slice);
        take_status();
    }
    const SessionStatus& status = model_.status();
    const bool newer = status.picture > toned_.number; // light that was never shown
    if (status.picture > 0 && (newer || !model_.is_saved()) && !model_.facts().outputs.empty() &&
        !save_and_wait(model_.facts().outputs)) {
        OMB_TRACE(1, "The picture could not be saved at closing");
    }
    exit_code_ = cut_short ? 128 + signal : 0;
    while (QWidget* box = QApplication::activeModalWidget()) {
        if (!box->close()) {
            break;
        }
    }
    close();
}

void RenderWindow::closeEvent(QCloseEvent* event) {
    if (!may_leave()) {
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

void RenderWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!dropped_image(event->mimeData()).empty()) {
        event->acceptProposedAction();
    }
}

void RenderWindow::dropEvent(QDropEvent* event) {
    const std::filesystem::path path = dropped_image(event->mimeData());
    if (!path.empty()) {
        event->acceptProposedAction();
        open_file(path);
    }
}

/// QORVANE_WINDOW_GRAB=FILE.png: a picture of the window with the finished render, and the end.
void RenderWindow::grab_for_documents() {
    const QString file = qEnvironmentVariable("QORVANE_WINDOW_GRAB");
    const bool clean = toned_.clean || !without_grain_ || !model_.has_picture();
    if (file.isEmpty() || forced_ || !end_handled_ ||
        (!clean && ended_since_.elapsed() < longest_cleaning_ms)) {
        return;
    }
    wait_for_save();
    refresh();
    statusBar()->clearMessage();
    if (!grab().save(file)) {
        OMB_TRACE(1, "The window's picture cannot be written: %s", file.toStdString());
    }
    forced_ = true;
    close();
}

} // namespace KestraBatch
