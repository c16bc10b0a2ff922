// Takes newer pictures and tones them on a thread of its own, so that the window never waits.
#pragma once

#include "KestraBatch/window/window_port.h"

#include <QImage>
#include <QObject>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace KestraBatch {

/// A picture ready to be shown.
struct TonedPicture {
    std::shared_ptr<const renderer::ChannelFilm> film;
    renderer::ChannelWeights weights{};
    std::vector<QImage> levels; ///< at its size, and halved again and again
    std::uint64_t number = 0;   ///< as SessionStatus::picture
    double exposure = 0;        ///< of the picture as rendered; 0 unless it is held
    bool clean = false;         ///< without grain
};

class PictureToner {
public:
    using Ready = std::function<void(const TonedPicture&)>;

    /// `ready` is called on the thread of `context`, always with the newest picture only.
    PictureToner(cl_window_program& program, QObject& context, Ready ready);
    ~PictureToner();
    PictureToner(const PictureToner&) = delete;
    PictureToner& operator=(const PictureToner&) = delete;

    using Source = std::shared_ptr<const cl_window_picture>;
    /// Another source, none for null; what was toned of the one before is not shown any more. It
    /// may be held for a moment longer: nobody waits for it.
    void set_source(Source source);
    /// Looks for a newer picture.
    void look();
    /// Another mix or tone; with `hold_exposure` the exposure of the picture as rendered is kept.
    void set_tone(const renderer::ChannelWeights& weights, const renderer::ToneSettings& tone,
                  bool hold_exposure);
    /// While on, each picture that stays for a moment is shown again without its grain, which takes
    /// seconds and has a thread of its own: sliders do not wait for it.
    void set_clean(bool on);

private:
    struct Request {
        Source source;
        renderer::ChannelWeights weights{};
        renderer::ToneSettings tone;
        bool hold_exposure = false, clean = false;
        bool look = false, anew = false, forget = false;
    };

    struct CleanJob {
        TonedPicture picture; ///< without levels
        renderer::ToneSettings tone;
        std::uint64_t turn = 0;
    };

    void work();
    void clean_work();
    void handle(const Request& request);
    bool take(const cl_window_picture& source);
    void deliver(TonedPicture picture);

    cl_window_program& program_;
    QObject& context_;
    Ready ready_;

    std::mutex mutex_;
    std::condition_variable wake_, clean_wake_;
    std::optional<CleanJob> clean_job_;
    std::uint64_t turn_ = 0; ///< raised with each request: what is cleaned for another is void
    Request request_;
    bool ending_ = false, told_ = false;
    std::unique_ptr<TonedPicture> result_;

    // The worker's own.
    std::shared_ptr<renderer::ChannelFilm> film_, spare_;
    std::uint64_t known_ = 0;
    double exposure_ = 0; ///< of film_ as rendered; 0: not measured yet
    std::thread thread_, cleaner_;
};

} // namespace KestraBatch
