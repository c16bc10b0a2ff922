// What happens in the window while a picture grows and is changed.
#include "KestraBatch/window/render_window.h"

#include "KestraBatch/window/icons.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QScreen>
#include <QStatusBar>
#include <QTabWidget>

#include <algorithm>

namespace KestraBatch {

namespace {

constexpr int poll_ms = 50;

renderer::Rgb light_at(const TonedPicture& picture, std::size_t pixel) {
    const renderer::ChannelFilm& film = *picture.film;
    if (film.channels.empty()) {
        return pixel < film.film.radiance.size() ? film.film.radiance[pixel] : renderer::Rgb{};
    }
    renderer::Rgb sum;
    for (std::size_t i = 0; i < film.channels.size() && i < picture.weights.size(); ++i) {
        const auto& radiance = film.channels[i].radiance;
        if (pixel < radiance.size()) {
            sum += radiance[pixel] * picture.weights[i];
        }
    }
    return sum;
}

bool has_what_was_asked(const SessionStatus& status) {
    const bool cut_short =
        status.state == SessionState::stopped || status.state == SessionState::failed;
    return status.state >= SessionState::rendering && (!cut_short || status.picture > 0);
}

QString text_of(const std::string& text) { return QString::fromStdString(text); }

} // namespace

RenderWindow::RenderWindow(cl_window_program& program, cl_window_picture& picture,
                           const QString& name, const QString& version)
  : program_(program)
  , picture_(&picture)
  , name_(name)
  , version_(version)
  , memory_(program.memory()) {
    setWindowIcon(make_icon(IconShape::program));
    setAcceptDrops(true);
    make_actions();
    make_bars();
    make_menus();
    make_toolbar();
    view_->setFocus();
    qApp->installEventFilter(this);
    toner_ = std::make_unique<PictureToner>(
        program_, *this, [this](const TonedPicture& toned) { show_toned(toned); });
    timer_.setInterval(poll_ms);
    connect(&timer_, &QTimer::timeout, this, [this] { poll(); });
    ask_at_closing = [this](const CloseQuestion& question) { return ask_close_question(question); };
    ask_save_name = [this] { return choose_save_name(); };
    refresh();
}

RenderWindow::~RenderWindow() {
    qApp->removeEventFilter(this);
    timer_.stop();
    saves_.resize(std::min<std::size_t>(saves_.size(), 1)); // what has not begun is not wanted
    for (std::thread* thread : {&saver_, &opener_}) {
        if (thread->joinable()) {
            thread->join();
        }
    }
    toner_.reset();
}

void RenderWindow::begin() {
    std::vector<WindowPlace> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect room = screen->availableGeometry();
        screens.push_back({room.x(), room.y(), room.width(), room.height()});
    }
    const WindowPlace place =
        place_on_screen({memory_.x, memory_.y, memory_.width, memory_.height}, screens, 960, 600);
    resize(place.width, place.height);
    move(place.x, place.y);
    show();
    set_source(Opened(Opened(), picture_)); // not ours
    picture_->start();
    started_ = true;
    timer_.start();
    poll();
}

void RenderWindow::set_source(Opened picture) {
    picture_ = picture.get();
    toned_ = {};
    looked_ = 0;
    end_handled_ = false;
    model_.begin(picture_->can_render(), false);
    messages_panel_->clear();
    settings_panel_->set_settings({});
    light_panel_->refresh();
    tone_panel_->refresh();
    leave_region_mode();
    view_->set_region({});
    view_->set_picture({});
    toner_->set_source(std::move(picture));
}

void RenderWindow::poll() {
    if (const int signal = program_.stop_asked(); signal != 0 && !forced_) {
        close_as_asked(signal);
    }
    take_status();
    const SessionStatus& status = model_.status();
    toner_->set_clean(without_grain_ && status.state >= SessionState::finished);
    if (status.picture != looked_ && model_.has_facts()) {
        looked_ = status.picture;
        toner_->look();
    }
    if (status.state >= SessionState::finished && is_all_shown() && !end_handled_) {
        end_handled_ = true;
        on_ended();
    }
    refresh();
    go_on_leaving();
    grab_for_documents();
}

bool RenderWindow::is_all_shown() const {
    return model_.status().picture == 0 || toned_.number >= model_.status().picture;
}

void RenderWindow::take_status() {
    model_.set_status(picture_->status());
    messages_panel_->set_warnings(model_.status().warnings);
    if (!model_.has_facts() && has_what_was_asked(model_.status())) {
        take_facts();
    }
}

void RenderWindow::take_facts() {
    model_.set_facts(picture_->facts());
    settings_panel_->set_settings(model_.facts().settings);
    tone_panel_->refresh();
    size_->setText(
        QString::fromUtf8("%1 \u00d7 %2").arg(model_.facts().width).arg(model_.facts().height));
    retone();
}

void RenderWindow::show_toned(const TonedPicture& toned) {
    toned_ = toned;
    std::vector<ChannelChoice> choices;
    bool same = model_.channels().size() == toned.film->channels.size();
    for (const renderer::LightChannel& channel : toned.film->channels) {
        choices.push_back(picture_->channel_choice(choices.size(), channel));
        choices.back().name = channel.name;
        choices.back().number = channel.number;
        same = same && model_.channels()[choices.size() - 1].name == channel.name;
    }
    model_.set_picture(toned.number);
    if (!same) {
        model_.set_channels(choices);
        light_panel_->refresh();
        retone(); // the channels may have been rendered with other factors than 1
    }
    view_->set_picture(toned.levels);
    show_pixel();
    refresh();
}

void RenderWindow::retone() {
    memory_.brighten = light_panel_->brighten();
    toner_->set_tone(model_.weights(), model_.tone(), !memory_.brighten);
    refresh();
}

void RenderWindow::on_ended() {
    const SessionState state = model_.status().state;
    if (state == SessionState::failed) {
        tell(text_of(model_.status().problem), true);
    } else if (!picture_->can_render() && !model_.facts().outputs.empty()) {
        model_.mark_saved(model_.facts().outputs.front(), model_.revision());
    } else if (state == SessionState::finished && !model_.facts().outputs.empty()) {
        save_to(model_.facts().outputs);
    }
    QApplication::alert(this);
    ended_since_.start();
}

void RenderWindow::refresh() {
    setWindowTitle(text_of(model_.title(name_.toStdString())));
    state_->setText(text_of(model_.state_text()));
    time_->setText(text_of(model_.time_text()));
    time_->setVisible(model_.can_render());
    progress_->setVisible(model_.can_render());
    const int progress = model_.progress();
    progress_->setRange(0, progress < 0 ? 0 : 1000);
    progress_->setValue(progress);
    progress_->setFormat(text_of(model_.passes_text()));
    if (!model_.has_picture()) {
        view_->set_empty_text(text_of(model_.empty_text()));
    }
    refresh_hint();
    refresh_actions();
}

void RenderWindow::refresh_hint() {
    const QString waiting = text_of(model_.waiting_text());
    if (!waiting.isEmpty()) {
        view_->set_hint(waiting);
    } else if (opener_.joinable()) {
        view_->set_hint(QString::fromUtf8("Opening \u2026"));
    } else {
        view_->set_hint(view_->region_mode() ? "Drag a rectangle: it is rendered first. Esc leaves."
                                             : "");
    }
}

void RenderWindow::refresh_actions() {
    for (const auto& [command, action] : actions_) {
        action->setEnabled(model_.is_enabled(command));
    }
    QAction& pause = action(WindowCommand::pause);
    const bool paused = model_.status().state == SessionState::paused;
    if (paused != pause.property("paused").toBool()) {
        pause.setProperty("paused", paused);
        pause.setIcon(make_icon(paused ? IconShape::resume : IconShape::pause));
        pause.setText(paused ? "&Resume" : "&Pause");
        pause.setIconText(paused ? "Resume" : "Pause");
        pause.setToolTip(paused ? "Goes on with the render (Space)"
                                : "Halts the render; nothing is lost (Space)");
    }
}

void RenderWindow::show_pixel() {
    if (column_ < 0 || toned_.levels.empty() || !toned_.levels.front().valid(column_, row_)) {
        pixel_->clear();
        return;
    }
    const QImage& image = toned_.levels.front();
    const QRgb shown = image.pixel(column_, row_);
    const std::size_t at = static_cast<std::size_t>(row_) * image.width() + column_;
    pixel_->setText(text_of(pixel_text(column_, row_, light_at(toned_, at),
                                       {qRed(shown), qGreen(shown), qBlue(shown)})));
}

void RenderWindow::trigger(WindowCommand command) {
    if (!model_.is_enabled(command)) {
        return;
    }
    switch (command) {
    case WindowCommand::pause:
        pause_or_resume();
        break;
    case WindowCommand::stop:
        picture_->stop();
        break;
    case WindowCommand::again:
        render_again();
        break;
    case WindowCommand::more_passes:
        more_passes();
        break;
    case WindowCommand::save:
        save();
        break;
    case WindowCommand::save_as:
        save_as();
        break;
    case WindowCommand::copy_picture:
        copy_picture();
        break;
    case WindowCommand::copy_name:
        copy_name();
        break;
    case WindowCommand::region:
        if (view_->region_mode()) {
            leave_region_mode();
        } else {
            view_->set_region_mode(true);
            action(command).setChecked(true);
        }
        break;
    case WindowCommand::clear_region:
        set_region({});
        break;
    case WindowCommand::fit:
        view_->fit();
        break;
    case WindowCommand::actual_size:
        view_->set_zoom(1);
        break;
    case WindowCommand::keep_settings:
        keep_settings();
        break;
    case WindowCommand::open:
        open_with_dialog();
        break;
    }
    refresh();
}

void RenderWindow::pause_or_resume() {
    if (model_.status().state == SessionState::paused) {
        picture_->resume();
    } else {
        picture_->pause();
    }
}

void RenderWindow::render_again() {
    toner_->set_source(nullptr);
    toned_ = {};
    looked_ = 0;
    end_handled_ = false;
    model_.begin(true, true);
    messages_panel_->clear();
    picture_->start();
    toner_->set_source(Opened(Opened(), picture_));
    poll();
}

void RenderWindow::more_passes() {
    bool agreed = false;
    const int proposal = qBound(1, model_.status().passes, 10'000);
    const int passes = QInputDialog::getInt(this, "More passes", "Passes to add:", proposal, 1,
                                            100'000, 1, &agreed);
    if (agreed) {
        end_handled_ = false;
        picture_->add_passes(passes);
    }
}

void RenderWindow::set_region(PictureRegion region) {
    leave_region_mode();
    model_.set_region(region);
    view_->set_region(region);
    picture_->set_region(region);
    refresh();
}

void RenderWindow::leave_region_mode() {
    view_->set_region_mode(false);
    refresh_hint();
    action(WindowCommand::region).setChecked(false);
}

void RenderWindow::escape() {
    if (view_->region_mode()) {
        leave_region_mode();
    } else {
        trigger(WindowCommand::stop);
    }
}

/// The blank belongs to a button that has the focus, not to Pause.
bool RenderWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        const auto* widget = qobject_cast<QWidget*>(watched);
        if (key->key() == Qt::Key_Space && widget != nullptr &&
            (widget->inherits("QAbstractButton") || widget->inherits("QComboBox"))) {
            event->accept();
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void RenderWindow::tell(const QString& text, bool trouble) {
    messages_panel_->add(text, trouble);
    if (trouble) {
        tabs_->setCurrentWidget(messages_panel_);
    }
    statusBar()->showMessage(text, 6000);
}

} // namespace KestraBatch
