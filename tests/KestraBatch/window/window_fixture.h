// The window on a fake render, without a display, for tests.
#pragma once

#include "KestraBatch/window/render_window.h"
#include "tests/KestraBatch/window/fake_render.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTimer>

#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace window_test {

using namespace KestraBatch;

inline bool wait_for(const std::function<bool()>& reached, int ms = 20000) {
    QElapsedTimer clock;
    clock.start();
    while (!reached() && clock.elapsed() < ms) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return reached();
}

/// Different colours in a grabbed picture, up to 1000.
inline std::size_t colors_of(const QImage& image) {
    std::set<QRgb> seen;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width() && seen.size() < 1000; ++x) {
            seen.insert(image.pixel(x, y));
        }
    }
    return seen.size();
}

inline double mean_light(const QImage& image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            sum += qGray(image.pixel(x, y));
        }
    }
    return sum / (image.width() * image.height());
}

inline void keep(QWidget& widget, const char* name) {
    const QString folder = qEnvironmentVariable("QORVANE_WINDOW_GALLERY");
    if (!folder.isEmpty()) {
        QApplication::processEvents();
        EXPECT_TRUE(widget.grab().save(folder + "/" + name + ".png"));
    }
}

/// Runs as soon as another modal box is open.
inline void on_next_box(std::function<void(QWidget*)> action) {
    auto* timer = new QTimer(qApp);
    QWidget* before = QApplication::activeModalWidget();
    QObject::connect(timer, &QTimer::timeout, timer, [timer, before, action = std::move(action)] {
        QWidget* box = QApplication::activeModalWidget();
        if (box != nullptr && box != before) {
            timer->stop();
            timer->deleteLater();
            action(box);
        }
    });
    timer->start(50);
}

inline void press(QWidget* box, const QString& text) {
    for (QPushButton* button : box->findChildren<QPushButton*>()) {
        if (button->text().remove('&') == text) {
            button->click();
            return;
        }
    }
    ADD_FAILURE() << "no button " << text.toStdString();
    box->close();
}

class RenderWindowTest : public ::testing::Test {
protected:
    void open(FakeOptions options = {}) {
        picture_ = std::make_unique<FakePicture>(std::move(options));
        window_ = std::make_unique<RenderWindow>(program_, *picture_, "Qorvane", "Qorvane 1");
        ask_ = window_->ask_at_closing;
        window_->ask_at_closing = [this](const CloseQuestion& question) {
            questions_.push_back(question);
            return answer_;
        };
        window_->begin();
        window_->resize(1100, 720);
    }
    /// Opens a picture of the default size that is rendered to its end, or goes on.
    void open_shown(int passes = 2) {
        FakeOptions options;
        options.passes = passes;
        open(options);
        ASSERT_TRUE(wait_for([&] { return window_->model().channels().size() == 4; }));
    }
    bool wait_for_state(SessionState state) {
        return wait_for([&] { return window_->model().status().state == state; });
    }
    bool wait_until_shown() {
        return wait_for([&] {
            return window_->model().has_picture() && !window_->model().is_running() &&
                   !window_->view().grab().isNull();
        });
    }
    std::filesystem::path file(const std::string& name) {
        std::filesystem::create_directories(folder_);
        return folder_ / name;
    }
    void TearDown() override {
        window_.reset();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    FakeProgram program_;
    std::unique_ptr<FakePicture> picture_;
    std::unique_ptr<RenderWindow> window_;
    std::vector<CloseQuestion> questions_;
    CloseAnswer answer_;
    std::function<CloseAnswer(const CloseQuestion&)> ask_;
    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() /
        ("qorvane_window_" + std::to_string(QCoreApplication::applicationPid()));
};

} // namespace window_test
