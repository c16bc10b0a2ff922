// Saving and closing: the window's thread never waits, and nothing is lost.
#include "tests/KestraBatch/window/window_fixture.h"

#include <QAction>
#include <QMessageBox>
#include <QSlider>

using namespace window_test;

namespace {

class ClosingTest : public RenderWindowTest {
protected:
    void open_with_output(int passes) {
        FakeOptions options;
        options.passes = passes;
        options.outputs = {file("house.png")};
        open(options);
        ASSERT_TRUE(wait_for([&] { return window_->model().has_picture(); }));
    }
    bool wait_until_closed() {
        return wait_for([&] { return !window_->isVisible(); });
    }
    bool wait_until_saving() {
        return wait_for([&] { return window_->model().is_saving(); });
    }
};

} // namespace

TEST_F(ClosingTest, is_done_when_the_picture_is_saved_and_the_window_lives_meanwhile) {
    open_with_output(1000);
    picture_->save_ms = 500;
    answer_.kind = CloseAnswer::yes;
    EXPECT_FALSE(window_->close()) << "not yet";
    ASSERT_TRUE(wait_until_saving());
    int beats = 0;
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, &heart, [&] { ++beats; });
    heart.start(5);
    EXPECT_EQ(window_->model().state_text(), "Saving \u2026");
    EXPECT_EQ(window_->model().waiting_text(), "Saving house.png before closing \u2026");
    EXPECT_FALSE(window_->close()) << "it waits already";
    keep(*window_, "12_saving_before_closing");
    ASSERT_TRUE(wait_until_closed());
    EXPECT_GT(beats, 5);
    EXPECT_EQ(picture_->saved.size(), 1u);
    EXPECT_EQ(questions_.size(), 1u);
    EXPECT_EQ(window_->exit_code(), 0);
    EXPECT_EQ(program_.kept.width, 1100);
}

TEST_F(ClosingTest, does_not_happen_when_the_picture_cannot_be_saved) {
    open_with_output(1000);
    picture_->save_problem = "house.png: disk full";
    answer_.kind = CloseAnswer::yes;
    QString why;
    on_next_box([&](QWidget* box) {
        why = qobject_cast<QMessageBox*>(box)->informativeText();
        keep(*box, "13_not_saved");
        box->close();
    });
    EXPECT_FALSE(window_->close());
    ASSERT_TRUE(wait_for([&] { return !why.isEmpty(); }));
    EXPECT_EQ(why, "house.png: disk full");
    EXPECT_TRUE(window_->isVisible());
    EXPECT_EQ(window_->model().waiting_text(), "");
    picture_->save_problem.clear();
    EXPECT_FALSE(window_->close());
    EXPECT_TRUE(wait_until_closed());
    EXPECT_EQ(picture_->saved.size(), 1u);
}

TEST_F(ClosingTest, asks_again_when_something_was_changed_while_it_saved) {
    open_with_output(1000);
    picture_->save_ms = 400;
    answer_.kind = CloseAnswer::yes;
    EXPECT_FALSE(window_->close());
    ASSERT_TRUE(wait_until_saving());
    window_->tone_panel().row(0).findChild<QSlider*>()->setValue(20);
    answer_.kind = CloseAnswer::discard;
    EXPECT_TRUE(wait_until_closed());
    EXPECT_EQ(questions_.size(), 2u);
}

TEST_F(ClosingTest, waits_for_the_automatic_save_and_asks_nothing_then) {
    FakeOptions options;
    options.passes = 2;
    options.outputs = {file("a.png"), file("a.QorImage")};
    open(options);
    picture_->save_ms = 300;
    ASSERT_TRUE(wait_until_saving());
    EXPECT_FALSE(window_->action(WindowCommand::again).isEnabled());
    EXPECT_FALSE(window_->close());
    EXPECT_TRUE(wait_until_closed());
    EXPECT_EQ(picture_->saved, options.outputs);
    EXPECT_TRUE(questions_.empty());
}

TEST_F(ClosingTest, saves_are_made_one_after_the_other) {
    open_shown();
    ASSERT_TRUE(wait_until_shown());
    wait_for([] { return false; }, 200); // the last pass may have yet to be toned
    picture_->save_ms = 100;
    window_->save_to({file("1.png")});
    window_->tone_panel().row(0).findChild<QSlider*>()->setValue(20);
    window_->save_to({file("2.png")});
    ASSERT_TRUE(wait_for([&] { return !window_->model().is_saving(); }));
    EXPECT_EQ(picture_->saved, (std::vector{file("1.png"), file("2.png")}));
    EXPECT_DOUBLE_EQ(picture_->saved_tone.brightness, 0.2);
    EXPECT_TRUE(window_->model().is_saved());
}

TEST_F(ClosingTest, a_signal_overtakes_the_question) {
    open_with_output(1000);
    window_->ask_at_closing = ask_; // the real box
    picture_->save_ms = 200;
    on_next_box([&](QWidget*) { program_.signal = 15; });
    EXPECT_TRUE(window_->close() || wait_until_closed());
    EXPECT_FALSE(window_->isVisible());
    EXPECT_EQ(picture_->saved.size(), 1u);
    EXPECT_EQ(window_->exit_code(), 143);
}
