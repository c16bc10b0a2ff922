// The toning thread.
#include "KestraBatch/window/picture_toner.h"

#include <QMetaObject>

#include <atomic>
#include <chrono>

namespace KestraBatch {

namespace {

constexpr int smallest_level = 256;
/// A picture that stays as long is worth the seconds that taking its grain out needs.
constexpr std::chrono::milliseconds stay{250};

QImage to_image(const renderer::DisplayImage& display) {
    const std::size_t pixels = static_cast<std::size_t>(display.width) * display.height;
    if (pixels == 0 || display.rgb.size() < pixels * 3) {
        return {};
    }
    QImage image(display.width, display.height, QImage::Format_RGB32);
    const std::uint8_t* from = display.rgb.data();
    for (int y = 0; y < display.height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < display.width; ++x, from += 3) {
            line[x] = qRgb(from[0], from[1], from[2]);
        }
    }
    return image;
}

/// The mean of each four pixels; an odd last row or column is left out.
QImage halved(const QImage& image) {
    QImage half(image.width() / 2, image.height() / 2, QImage::Format_RGB32);
    for (int y = 0; y < half.height(); ++y) {
        const auto* above = reinterpret_cast<const QRgb*>(image.constScanLine(2 * y));
        const auto* below = reinterpret_cast<const QRgb*>(image.constScanLine(2 * y + 1));
        auto* line = reinterpret_cast<QRgb*>(half.scanLine(y));
        for (int x = 0; x < half.width(); ++x) {
            const QRgb four[4] = {above[2 * x], above[2 * x + 1], below[2 * x], below[2 * x + 1]};
            int red = 2, green = 2, blue = 2;
            for (const QRgb c : four) {
                red += qRed(c);
                green += qGreen(c);
                blue += qBlue(c);
            }
            line[x] = qRgb(red / 4, green / 4, blue / 4);
        }
    }
    return half;
}

std::vector<QImage> levels_of(QImage image) {
    std::vector<QImage> levels;
    while (!image.isNull()) {
        const bool last = qMin(image.width(), image.height()) < 2 * smallest_level;
        QImage half = last ? QImage() : halved(image);
        levels.push_back(std::move(image));
        image = std::move(half);
    }
    return levels;
}

} // namespace

PictureToner::PictureToner(cl_window_program& program, QObject& context, Ready ready)
  : program_(program)
  , context_(context)
  , ready_(std::move(ready))
  , thread_([this] { work(); })
  , cleaner_([this] { clean_work(); }) {}

PictureToner::~PictureToner() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    wake_.notify_all();
    clean_wake_.notify_all();
    thread_.join();
    cleaner_.join();
}

void PictureToner::set_source(Source source) {
    const std::lock_guard lock(mutex_);
    request_.look = source != nullptr;
    request_.source = std::move(source);
    request_.forget = true;
    ++turn_;
    clean_job_.reset();
    result_.reset();
    wake_.notify_all();
}

void PictureToner::look() {
    const std::lock_guard lock(mutex_);
    request_.look = true;
    wake_.notify_all();
}

void PictureToner::set_tone(const renderer::ChannelWeights& weights,
                            const renderer::ToneSettings& tone, bool hold_exposure) {
    const std::lock_guard lock(mutex_);
    request_.weights = weights;
    request_.tone = tone;
    request_.hold_exposure = hold_exposure;
    request_.anew = true;
    ++turn_;
    wake_.notify_all();
    clean_wake_.notify_all();
}

void PictureToner::set_clean(bool on) {
    const std::lock_guard lock(mutex_);
    if (request_.clean != on) {
        request_.clean = on;
        request_.anew = true;
        ++turn_;
        wake_.notify_all();
        clean_wake_.notify_all();
    }
}

void PictureToner::work() {
    std::unique_lock lock(mutex_);
    while (!ending_) {
        wake_.wait(lock,
                   [this] { return ending_ || request_.look || request_.anew || request_.forget; });
        if (ending_) {
            break;
        }
        std::optional<Request> request = request_;
        request_.look = request_.anew = request_.forget = false;
        lock.unlock();
        handle(*request);
        request.reset(); // its source may be the last hold on a picture
        lock.lock();
    }
}

void PictureToner::handle(const Request& request) {
    if (request.forget) {
        known_ = 0;
        film_.reset();
    }
    const bool newer = request.look && request.source && take(*request.source);
    if (!film_ || !(newer || request.anew)) {
        return;
    }
    TonedPicture picture;
    renderer::ToneSettings tone = request.tone;
    if (request.hold_exposure && tone.exposure <= 0) {
        exposure_ = exposure_ > 0 ? exposure_ : program_.exposure_of(film_->film);
        tone.exposure = picture.exposure = exposure_;
    }
    picture.film = film_;
    picture.weights = request.weights;
    picture.number = known_;
    picture.levels = levels_of(to_image(program_.tone(*film_, request.weights, tone)));
    if (picture.levels.empty()) {
        return;
    }
    const std::lock_guard lock(mutex_);
    if (request.clean) {
        clean_job_ = CleanJob{picture, tone, ++turn_};
        clean_job_->picture.levels.clear();
        clean_wake_.notify_all();
    }
    deliver(std::move(picture));
}

void PictureToner::clean_work() {
    std::unique_lock lock(mutex_);
    while (!ending_) {
        clean_wake_.wait(lock, [this] { return ending_ || clean_job_; });
        const std::uint64_t turn = turn_;
        if (ending_ || clean_wake_.wait_for(lock, stay, [&] { return ending_ || turn_ != turn; }) ||
            !clean_job_) {
            continue;
        }
        CleanJob job = *std::move(clean_job_);
        clean_job_.reset();
        if (job.turn != turn_) {
            continue;
        }
        lock.unlock();
        const auto clean = program_.tone_clean(*job.picture.film, job.picture.weights, job.tone);
        job.picture.levels = levels_of(to_image(clean));
        job.picture.clean = true;
        lock.lock();
        if (job.turn == turn_ && !job.picture.levels.empty()) {
            deliver(std::move(job.picture));
        }
    }
}

/// Copies a newer picture, into memory that the window has let go when there is some.
bool PictureToner::take(const cl_window_picture& source) {
    const bool free = spare_ && spare_.use_count() == 1;
    std::atomic_thread_fence(std::memory_order_acquire); // the window's last reading came before
    auto next = free ? std::move(spare_) : std::make_shared<renderer::ChannelFilm>();
    const bool newer = source.take_picture(known_, *next) && next->film.width > 0;
    if (newer) {
        spare_ = std::move(film_);
        film_ = std::move(next);
        exposure_ = 0;
    } else {
        spare_ = std::move(next);
    }
    return newer;
}

/// With mutex_ locked.
void PictureToner::deliver(TonedPicture picture) {
    if (request_.forget) {
        return; // of a source that is gone
    }
    result_ = std::make_unique<TonedPicture>(std::move(picture));
    if (told_) {
        return; // the window has yet to fetch the one before: it gets this one
    }
    told_ = true;
    QMetaObject::invokeMethod(
        &context_,
        [this] {
            std::unique_ptr<TonedPicture> newest;
            {
                const std::lock_guard inner(mutex_);
                newest = std::move(result_);
                told_ = false;
            }
            if (newest) {
                ready_(*newest);
            }
        },
        Qt::QueuedConnection);
}

} // namespace KestraBatch
