// What a user does with keys, mouse and dropped files, as docs/user/render-window.md tells it.
#include "tests/KestraBatch/window/window_fixture.h"

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QDropEvent>
#include <QMimeData>
#include <QSlider>
#include <QStatusBar>
#include <QTabWidget>
#include <QTest>
#include <QUrl>
#include <QWheelEvent>

#include <cmath>
#include <utility>

using namespace window_test;

namespace {

constexpr auto control = Qt::ControlModifier;
constexpr auto control_shift = Qt::ControlModifier | Qt::ShiftModifier;

class InputTest : public RenderWindowTest {
protected:
    void open_active(int passes) {
        open_shown(passes);
        window_->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
        window_->view().setFocus();
        window_->view().on_pixel = [this](int column, int row) {
            column_ = column;
            row_ = row;
        };
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        if (!window_->isActiveWindow()) { // after a box, and no window manager is there
            window_->activateWindow();
            EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
        }
        QTest::keyClick(&window_->view(), key, modifiers);
    }
    /// Where that pixel of the picture is at 100 %.
    QPoint at(int column, int row) {
        return {(window_->view().width() - 320) / 2 + column,
                (window_->view().height() - 200) / 2 + row};
    }
    void drag(QPoint from, QPoint to) {
        PictureView& view = window_->view();
        QTest::mousePress(&view, Qt::LeftButton, Qt::NoModifier, from);
        QTest::mouseMove(&view, (from + to) / 2);
        QTest::mouseMove(&view, to);
        QTest::mouseRelease(&view, Qt::LeftButton, Qt::NoModifier, to);
    }
    void point_at(QPoint where) { QTest::mouseMove(&window_->view(), where); }
    void wheel(QPoint where, int delta) {
        PictureView& view = window_->view();
        QWheelEvent event(where, view.mapToGlobal(where), {}, {0, delta}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&view, &event);
    }
    /// True when the window takes it.
    bool drop(const std::vector<std::filesystem::path>& paths) {
        QMimeData data;
        QList<QUrl> urls;
        for (const auto& path : paths) {
            urls << QUrl::fromLocalFile(QString::fromStdString(path.string()));
        }
        data.setUrls(urls);
        QDragEnterEvent enter({100, 100}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window_.get(), &enter);
        QDropEvent event({100, 100}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window_.get(), &event);
        return enter.isAccepted() && event.isAccepted();
    }
    int pass() { return picture_->status().pass; }

    int column_ = -1, row_ = -1;
};

} // namespace

TEST_F(InputTest, keys_steer_the_render) {
    open_active(100000);
    key(Qt::Key_Space);
    ASSERT_TRUE(wait_for_state(SessionState::paused));
    key(Qt::Key_Space);
    ASSERT_TRUE(wait_for_state(SessionState::rendering));
    key(Qt::Key_R);
    EXPECT_TRUE(window_->view().region_mode());
    key(Qt::Key_Escape);
    EXPECT_FALSE(window_->view().region_mode());
    wait_for([] { return false; }, 150);
    EXPECT_TRUE(window_->model().is_running()) << "the first Esc only leaves the region";
    on_next_box([](QWidget* box) { QTest::keyClick(box, Qt::Key_Return); });
    const int asked = picture_->status().passes;
    key(Qt::Key_M, control);
    EXPECT_GT(picture_->status().passes, asked);
    key(Qt::Key_F5);
    EXPECT_EQ(picture_->starts, 1) << "not while it renders";
    key(Qt::Key_Escape);
    ASSERT_TRUE(wait_for_state(SessionState::stopped));
    ASSERT_TRUE(wait_for([&] { return window_->action(WindowCommand::again).isEnabled(); }));
    key(Qt::Key_F5);
    EXPECT_EQ(picture_->starts, 2);
    answer_.kind = CloseAnswer::discard;
    key(Qt::Key_W, control);
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(InputTest, keys_save_copy_and_keep) {
    open_active(2);
    ASSERT_TRUE(wait_until_shown());
    const auto saved = [&](std::size_t count) {
        return wait_for(
            [&] { return !window_->model().is_saving() && picture_->saved.size() == count; });
    };
    window_->ask_save_name = [this] { return file("own.png"); };
    key(Qt::Key_S, control); // no automatic name: asks for one
    EXPECT_TRUE(saved(1));
    key(Qt::Key_S, control_shift);
    EXPECT_TRUE(saved(2));
    key(Qt::Key_C, control);
    EXPECT_EQ(QApplication::clipboard()->image().size(), QSize(320, 200));
    key(Qt::Key_C, control_shift);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), file("own.png").string());
    key(Qt::Key_K, control);
    EXPECT_TRUE(picture_->kept_channels.empty()) << "nothing was changed";
    window_->tone_panel().row(0).findChild<QSlider*>()->setValue(20);
    key(Qt::Key_K, control);
    EXPECT_EQ(picture_->kept_channels.size(), 4u);
    int boxes = 0;
    for (const auto& [code, modifiers] :
         {std::pair{Qt::Key_F1, Qt::KeyboardModifiers()}, {Qt::Key_O, control}}) {
        on_next_box([&](QWidget* box) {
            ++boxes;
            box->close();
        });
        key(code, modifiers);
    }
    EXPECT_EQ(boxes, 2);
    EXPECT_TRUE(window_->tabs().isVisible());
    key(Qt::Key_F9);
    EXPECT_FALSE(window_->tabs().isVisible());
}

TEST_F(InputTest, space_belongs_to_the_check_box_that_has_the_focus) {
    open_active(100000);
    window_->tabs().setCurrentIndex(1);
    auto* sun = window_->light_panel().row(0).findChild<QCheckBox*>();
    sun->setFocus();
    QTest::keyClick(sun, Qt::Key_Space);
    EXPECT_FALSE(sun->isChecked());
    wait_for([] { return false; }, 150);
    EXPECT_EQ(window_->model().status().state, SessionState::rendering);
    window_->tone_panel().row(0).findChild<QSlider*>()->setFocus();
    answer_.kind = CloseAnswer::discard;
}

TEST_F(InputTest, wheel_keys_and_double_click_zoom) {
    open_active(2);
    PictureView& view = window_->view();
    key(Qt::Key_1);
    EXPECT_DOUBLE_EQ(view.zoom(), 1);
    const QPoint spot = at(200, 50);
    point_at(spot);
    EXPECT_EQ(std::pair(column_, row_), std::pair(200, 50));
    view.set_zoom(4); // larger than the view: a smaller one stays in the middle
    point_at(spot + QPoint(1, 1));
    point_at(spot);
    const int column = column_, row = row_;
    for (int i = 0; i < 4; ++i) {
        wheel(spot, 120);
    }
    EXPECT_NEAR(view.zoom(), 4 * std::pow(1.25, 4), 1e-9);
    point_at(spot + QPoint(1, 1));
    point_at(spot);
    EXPECT_NEAR(column_, column, 1) << "the pixel under the cursor stays there";
    EXPECT_NEAR(row_, row, 1);
    wheel(spot, -120);
    EXPECT_NEAR(view.zoom(), 4 * std::pow(1.25, 3), 1e-9);
    key(Qt::Key_Plus);
    EXPECT_NEAR(view.zoom(), 4 * std::pow(1.25, 4), 1e-9);
    key(Qt::Key_Minus, control);
    EXPECT_NEAR(view.zoom(), 4 * std::pow(1.25, 3), 1e-9);
    key(Qt::Key_F);
    EXPECT_TRUE(view.is_fitted());
    window_->resize(400, 400); // the picture does not fit at 100 %
    wait_for([] { return false; }, 50);
    const QPoint middle(view.width() / 2, view.height() / 2);
    QTest::mouseDClick(&view, Qt::LeftButton, Qt::NoModifier, middle);
    EXPECT_FALSE(view.is_fitted());
    EXPECT_DOUBLE_EQ(view.zoom(), 1);
    QTest::mouseDClick(&view, Qt::LeftButton, Qt::NoModifier, middle);
    EXPECT_TRUE(view.is_fitted());
}

TEST_F(InputTest, dragging_and_arrows_move_the_picture) {
    open_active(2);
    window_->view().set_zoom(10);
    const QPoint from(300, 300);
    point_at(from);
    const int column = column_, row = row_;
    drag(from, from + QPoint(100, 50));
    point_at(from + QPoint(1, 1));
    EXPECT_EQ(column_, column - 10);
    EXPECT_EQ(row_, row - 5);
    key(Qt::Key_Right); // 60 pixels of the screen
    key(Qt::Key_Down);
    point_at(from);
    EXPECT_EQ(column_, column - 4);
    EXPECT_EQ(row_, row + 1);
}

TEST_F(InputTest, a_region_is_drawn_and_taken_back) {
    open_active(100000);
    key(Qt::Key_1);
    key(Qt::Key_R);
    drag(at(40, 30), at(42, 31));
    EXPECT_EQ(picture_->region().width, 0) << "a slip of the hand";
    EXPECT_TRUE(window_->view().region_mode());
    drag(at(139, 89), at(40, 30)); // from the lower right
    const PictureRegion region = picture_->region();
    EXPECT_EQ(region.x, 40);
    EXPECT_EQ(region.y, 30);
    EXPECT_EQ(region.width, 100);
    EXPECT_EQ(region.height, 60);
    EXPECT_FALSE(window_->view().region_mode());
    key(Qt::Key_R);
    drag(at(300, 190), at(500, 400)); // beyond the picture
    EXPECT_EQ(picture_->region().x + picture_->region().width, 320);
    EXPECT_EQ(picture_->region().y + picture_->region().height, 200);
    key(Qt::Key_R, Qt::ShiftModifier);
    EXPECT_EQ(picture_->region().width, 0);
}

TEST_F(InputTest, a_dropped_picture_is_opened_and_other_files_are_refused_in_words) {
    open_active(100000);
    std::string none;
    for (const char* name : {"old.QorImage", "notes.txt"}) {
        ASSERT_TRUE(picture_->save(file(name), {}, {}, none));
    }
    answer_.kind = CloseAnswer::discard;
    EXPECT_FALSE(drop({file("notes.txt")}));
    EXPECT_EQ(window_->statusBar()->currentMessage(),
              "notes.txt cannot be opened here: only a .QorImage can.");
    EXPECT_TRUE(window_->model().can_render());
    EXPECT_TRUE(questions_.empty());
    EXPECT_TRUE(drop({file("notes.txt"), file("old.QorImage")}));
    ASSERT_TRUE(wait_for([&] { return !window_->model().can_render(); }));
    EXPECT_EQ(questions_.size(), 1u);
    ASSERT_TRUE(wait_for([&] { return window_->model().is_saved(); }));
}
