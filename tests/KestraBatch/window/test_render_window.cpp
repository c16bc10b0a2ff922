// The window itself on a fake render, without a display. QORVANE_WINDOW_GALLERY=FOLDER keeps what
// was grabbed, to be looked at.
#include "KestraBatch/window/qt_window_port.h"
#include "omb/base/error_dialog.h"
#include "tests/KestraBatch/window/window_fixture.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QSlider>
#include <QTabWidget>
#include <QTimer>
#include <QWheelEvent>

using namespace window_test;

namespace {

/// One application for all tests.
class Application : public ::testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qunsetenv("QORVANE_WINDOW_GRAB");
        static int count = 1;
        static char name[] = "test";
        static char* arguments[] = {name, nullptr};
        application_ = std::make_unique<QApplication>(count, arguments);
        QApplication::setQuitOnLastWindowClosed(false);
    }
    void TearDown() override { application_.reset(); }

private:
    std::unique_ptr<QApplication> application_;
};

[[maybe_unused]] const auto* const environment =
    ::testing::AddGlobalTestEnvironment(std::make_unique<Application>().release());

} // namespace

TEST_F(RenderWindowTest, shows_the_picture_as_it_grows_and_saves_it) {
    FakeOptions options;
    options.outputs = {file("house.png")};
    QElapsedTimer clock;
    clock.start();
    open(options);
    ASSERT_TRUE(wait_for([&] { return window_->model().has_picture(); }));
    EXPECT_LT(clock.elapsed(), 5000) << "the first picture, on a busy machine";
    EXPECT_TRUE(window_->model().is_running());
    const QImage growing = window_->view().grab().toImage();
    EXPECT_GT(colors_of(growing), 500u);

    ASSERT_TRUE(wait_for_state(SessionState::finished));
    ASSERT_TRUE(wait_for([&] { return window_->model().is_saved(); }));
    EXPECT_EQ(picture_->saved, options.outputs);
    EXPECT_NE(window_->view().grab().toImage(), growing);
    EXPECT_EQ(window_->settings_panel().shown(), 4);
    window_->settings_panel().search("sun 35");
    EXPECT_EQ(window_->settings_panel().shown(), 1);

    EXPECT_TRUE(window_->close()) << "saved and unchanged: nothing is asked";
    EXPECT_TRUE(questions_.empty());
    EXPECT_EQ(program_.kept.width, 1100) << "the place is remembered";
    EXPECT_EQ(window_->exit_code(), 0);
}

TEST_F(RenderWindowTest, sliders_act_on_the_finished_light) {
    open();
    ASSERT_TRUE(wait_until_shown());
    ASSERT_TRUE(wait_for([&] { return window_->model().channels().size() == 4; }));
    const double before = mean_light(window_->view().grab().toImage());
    const auto darker = [&](double than) {
        return wait_for([&] { return mean_light(window_->view().grab().toImage()) < than - 2; });
    };
    auto* check = window_->light_panel().row(0).findChild<QCheckBox*>();
    ASSERT_NE(check, nullptr);
    EXPECT_EQ(check->text(), "Sun");
    check->click();
    EXPECT_TRUE(darker(before));
    const double without_sun = mean_light(window_->view().grab().toImage());
    window_->tone_panel().row(0).findChild<QSlider*>()->setValue(20);
    EXPECT_TRUE(darker(without_sun));
    EXPECT_EQ(window_->tone_panel().row(0).findChild<QDoubleSpinBox*>()->value(), 20);
    EXPECT_EQ(picture_->starts, 1) << "nothing is rendered again";

    EXPECT_TRUE(window_->action(WindowCommand::keep_settings).isEnabled());
    window_->trigger(WindowCommand::keep_settings);
    EXPECT_DOUBLE_EQ(picture_->kept_tone.brightness, 0.2);
    ASSERT_EQ(picture_->kept_channels.size(), 4u);
    EXPECT_FALSE(picture_->kept_channels[0].on);
    EXPECT_FALSE(window_->action(WindowCommand::keep_settings).isEnabled());
}

TEST_F(RenderWindowTest, saves_what_is_shown_under_any_name) {
    open();
    ASSERT_TRUE(wait_until_shown());
    ASSERT_TRUE(wait_for([&] { return window_->model().channels().size() == 4; }));
    window_->light_panel().row(1).findChild<QSlider*>()->setValue(150);
    window_->ask_save_name = [this] { return file("mix.QorImage"); };
    EXPECT_FALSE(window_->action(WindowCommand::copy_name).isEnabled());
    window_->trigger(WindowCommand::save); // no automatic name: asks for one
    window_->wait_for_save();
    ASSERT_EQ(picture_->saved.size(), 1u);
    EXPECT_FLOAT_EQ(picture_->saved_weights[1], 1.5f);
    EXPECT_FLOAT_EQ(picture_->saved_weights[2], 1.2f) << "as it was rendered";
    EXPECT_TRUE(window_->model().is_saved());
    window_->trigger(WindowCommand::copy_name);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), file("mix.QorImage").string());
    window_->trigger(WindowCommand::copy_picture);
    EXPECT_EQ(QApplication::clipboard()->image().size(), QSize(320, 200));

    picture_->save_problem = "disk full";
    window_->tone_panel().row(1).findChild<QSlider*>()->setValue(90);
    window_->trigger(WindowCommand::save);
    window_->wait_for_save();
    EXPECT_FALSE(window_->model().is_saved());
    answer_.kind = CloseAnswer::cancel;
    EXPECT_FALSE(window_->close());
    answer_.kind = CloseAnswer::discard;
    EXPECT_TRUE(window_->close());
    EXPECT_EQ(questions_.size(), 2u);
    EXPECT_EQ(program_.kept.save_extension, "QorImage");
    EXPECT_EQ(program_.kept.save_folder, folder_.string());
}

TEST_F(RenderWindowTest, pauses_stops_and_renders_again) {
    FakeOptions options;
    options.passes = 1000;
    open(options);
    ASSERT_TRUE(wait_for([&] { return window_->model().has_picture(); }));
    QAction& pause = window_->action(WindowCommand::pause);
    window_->trigger(WindowCommand::pause);
    ASSERT_TRUE(wait_for_state(SessionState::paused));
    EXPECT_EQ(pause.iconText(), "Resume");
    const int pass = picture_->status().pass;
    window_->trigger(WindowCommand::pause);
    ASSERT_TRUE(wait_for([&] { return picture_->status().pass > pass; }));

    window_->trigger(WindowCommand::region);
    EXPECT_TRUE(window_->view().region_mode());
    window_->view().on_region({10, 20, 100, 50});
    EXPECT_EQ(picture_->region().width, 100);
    EXPECT_FALSE(window_->view().region_mode());
    window_->trigger(WindowCommand::clear_region);
    EXPECT_EQ(picture_->region().width, 0);

    window_->trigger(WindowCommand::stop);
    ASSERT_TRUE(wait_for_state(SessionState::stopped));
    EXPECT_TRUE(window_->model().has_picture());
    window_->trigger(WindowCommand::again);
    EXPECT_TRUE(window_->model().is_running());
    ASSERT_TRUE(wait_for([&] { return window_->model().has_picture(); }));
    EXPECT_EQ(picture_->starts, 2);
    answer_.kind = CloseAnswer::discard;
    EXPECT_TRUE(window_->close());
}

TEST_F(RenderWindowTest, closes_by_signal_with_the_picture_saved) {
    FakeOptions options;
    options.passes = 1000;
    options.outputs = {file("cut.png")};
    open(options);
    ASSERT_TRUE(wait_for([&] { return window_->model().has_picture(); }));
    program_.signal = 15;
    ASSERT_TRUE(wait_for([&] { return !window_->isVisible(); }));
    EXPECT_EQ(picture_->saved, options.outputs);
    EXPECT_TRUE(questions_.empty());
    EXPECT_EQ(window_->exit_code(), 143);
}

TEST_F(RenderWindowTest, a_failure_stands_in_the_view_in_words) {
    FakeOptions options;
    options.failure = "house.txt: no such file";
    open(options);
    ASSERT_TRUE(wait_for_state(SessionState::failed));
    EXPECT_FALSE(window_->action(WindowCommand::save).isEnabled());
    EXPECT_TRUE(window_->action(WindowCommand::again).isEnabled());
    EXPECT_TRUE(window_->close());
    EXPECT_TRUE(questions_.empty());
}

TEST_F(RenderWindowTest, opens_a_picture_from_a_file) {
    open();
    ASSERT_TRUE(wait_until_shown());
    const std::filesystem::path saved = file("old.QorImage");
    bool warned = false;
    on_next_box([&](QWidget* box) {
        warned = true;
        box->close();
    });
    window_->open_file(saved); // it is not there yet
    ASSERT_TRUE(wait_for([&] { return warned; }));
    std::string none;
    ASSERT_TRUE(picture_->save(saved, {}, {}, none));
    answer_.kind = CloseAnswer::cancel;
    window_->open_file(saved); // the render is not saved
    ASSERT_TRUE(wait_for([&] { return questions_.size() == 1; }));
    EXPECT_TRUE(window_->model().can_render());
    answer_.kind = CloseAnswer::discard;
    window_->open_file(saved);
    ASSERT_TRUE(wait_for([&] { return !window_->model().can_render(); }));
    ASSERT_TRUE(wait_for([&] { return window_->model().is_saved(); }));
    EXPECT_FALSE(window_->action(WindowCommand::again).isEnabled());
    EXPECT_TRUE(window_->close());
    EXPECT_EQ(questions_.size(), 2u) << "unchanged, it is saved already";
}

TEST_F(RenderWindowTest, a_finished_picture_loses_its_grain_when_it_stays) {
    FakeOptions options;
    options.passes = 4;
    open(options);
    ASSERT_TRUE(wait_for([&] { return window_->model().has_picture(); }));
    EXPECT_EQ(program_.cleaned, 0) << "not while it is rendered";
    ASSERT_TRUE(wait_for_state(SessionState::finished));
    ASSERT_TRUE(wait_for([&] { return program_.cleaned == 1; }));
    wait_for([] { return false; }, 400);
    const QImage clean = window_->view().grab().toImage();
    auto* slider = window_->tone_panel().row(0).findChild<QSlider*>();
    for (int value = 51; value < 60; ++value) {
        slider->setValue(value);
        wait_for([] { return false; }, 20);
    }
    EXPECT_EQ(program_.cleaned, 1) << "a slider that moves does not wait for it";
    ASSERT_TRUE(wait_for([&] { return program_.cleaned == 2; }));
    slider->setValue(50);
    wait_for([] { return false; }, 100);
    EXPECT_NE(window_->view().grab().toImage(), clean) << "with grain at first";
    ASSERT_TRUE(wait_for([&] { return window_->view().grab().toImage() == clean; }));
    answer_.kind = CloseAnswer::discard;
    EXPECT_TRUE(window_->close());
}

TEST_F(RenderWindowTest, the_wheel_zooms_and_pixels_stay_crisp) {
    open();
    ASSERT_TRUE(wait_until_shown());
    PictureView& view = window_->view();
    window_->trigger(WindowCommand::actual_size);
    const QPointF middle(view.width() / 2.0, view.height() / 2.0);
    for (int i = 0; i < 10; ++i) {
        QWheelEvent wheel(middle, view.mapToGlobal(middle), {}, {0, 120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&view, &wheel);
    }
    EXPECT_GT(view.zoom(), 8);
    const QImage enlarged = view.grab().toImage();
    int same = 0, neighbours = 0;
    for (int x = 1; x < enlarged.width(); ++x) {
        same += enlarged.pixel(x, 100) == enlarged.pixel(x - 1, 100) ? 1 : 0;
        ++neighbours;
    }
    EXPECT_GT(same, neighbours * 3 / 4) << "blocks of one colour, not a blur";
    window_->trigger(WindowCommand::fit);
    EXPECT_DOUBLE_EQ(view.zoom(), 1);
}

TEST(QtWindowPort, answers_with_the_numbers_of_the_boxes) {
    QtWindowPort port;
    on_next_box([](QWidget* box) { press(box, "No"); });
    EXPECT_EQ(port.message_box("Overwrite?", "Title", message_box::yes_no_cancel, nullptr),
              message_box::id_no);
    on_next_box([](QWidget* box) { box->close(); });
    EXPECT_EQ(port.message_box("Gone", "Title", message_box::ok_cancel, nullptr),
              message_box::id_cancel);
    bool more = false;
    cl_error_dialog error;
    error.on_more = [&] { more = true; };
    on_next_box([](QWidget* box) { press(box, "More"); });
    EXPECT_TRUE(port.error_dialog(error));
    EXPECT_TRUE(more);
}

/// What the window looks like in its states; kept only when somebody wants to look.
TEST_F(RenderWindowTest, gallery) {
    FakeOptions options;
    options.width = 960;
    options.height = 600;
    options.passes = 20;
    options.outputs = {file("courtyard.png")};
    open(options);
    keep(*window_, "1_reading");
    window_->resize(1280, 780);
    ASSERT_TRUE(wait_for([&] { return window_->model().has_picture(); }));
    keep(*window_, "2_rendering");
    window_->trigger(WindowCommand::region);
    keep(*window_, "3_region_hint");
    window_->view().on_region({300, 180, 320, 240});
    window_->trigger(WindowCommand::pause);
    ASSERT_TRUE(wait_for_state(SessionState::paused));
    window_->tabs().setCurrentIndex(3);
    keep(*window_, "4_paused_region_messages");
    window_->trigger(WindowCommand::pause);
    window_->trigger(WindowCommand::clear_region);
    ASSERT_TRUE(wait_for_state(SessionState::finished));
    ASSERT_TRUE(wait_for([&] { return window_->model().is_saved(); }));
    window_->tabs().setCurrentIndex(1);
    window_->light_panel().row(0).findChild<QSlider*>()->setValue(40);
    window_->light_panel().row(1).findChild<QCheckBox*>()->click();
    wait_for([] { return false; }, 300);
    keep(*window_, "5_finished_light");
    window_->tabs().setCurrentIndex(2);
    keep(*window_, "6_settings");
    window_->tabs().setCurrentIndex(0);
    window_->tone_panel().row(0).findChild<QSlider*>()->setValue(70);
    window_->view().set_zoom(8);
    QMouseEvent move(QEvent::MouseMove, QPointF(300, 200), QPointF(300, 200), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&window_->view(), &move);
    wait_for([] { return false; }, 300);
    keep(*window_, "7_zoomed_tone");
    window_->view().fit();
    window_->resize(640, 480);
    wait_for([] { return false; }, 100);
    keep(*window_, "8_small");
    window_->resize(1280, 780);

    const QPalette light = QApplication::palette();
    QPalette dark(QColor(0x2e, 0x2e, 0x32), QColor(0x2a, 0x2a, 0x2d));
    dark.setColor(QPalette::Highlight, QColor(0x3d, 0x7e, 0xd0));
    QApplication::setPalette(dark);
    window_->tabs().setCurrentIndex(1);
    wait_for([] { return false; }, 100);
    keep(*window_, "9_dark");
    const QImage grabbed = window_->grab().toImage();
    EXPECT_LT(qGray(grabbed.pixel(grabbed.width() - 20, grabbed.height() - 60)), 100)
        << "the panel follows a dark palette";
    QApplication::setPalette(light);
    on_next_box([](QWidget* box) {
        keep(*box, "11_help");
        box->close();
    });
    for (QAction* action : window_->findChildren<QAction*>()) {
        if (action->shortcut() == QKeySequence("F1")) {
            action->trigger();
        }
    }
    window_->ask_at_closing = ask_; // the real question
    on_next_box([](QWidget* box) {
        keep(*box, "10_close_question");
        press(box, "Discard");
    });
    EXPECT_TRUE(window_->close());
}
