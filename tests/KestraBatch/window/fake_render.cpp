// The fake render.
#include "tests/KestraBatch/window/fake_render.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fstream>

namespace window_test {

using namespace KestraBatch;
using renderer::Rgb;

namespace {

constexpr const char* channel_names[] = {"Sun", "Sky", "Lamps", "Self Glow"};
constexpr int channels = 4;

/// Uniform in 0 to 1, the same for the same arguments.
float noise(std::uint32_t x, std::uint32_t y, std::uint32_t n) {
    std::uint32_t h = x * 0x9e3779b1u ^ y * 0x85ebca6bu ^ n * 0xc2b2ae35u;
    h = (h ^ (h >> 15)) * 0x2c1b3c6du;
    h = (h ^ (h >> 12)) * 0x297a2d39u;
    return static_cast<float>((h ^ (h >> 15)) >> 8) / 16777216.0f;
}

/// Light of one kind at a point of the picture; u from left to right, v from the top, 0 to 1.
Rgb light(int channel, float u, float v, float aspect) {
    const float x = (u - 0.45f) * aspect, y = v - 0.5f, radius = 0.28f;
    const float out = (x * x + y * y) / (radius * radius);
    const float z = out < 1 ? std::sqrt(1 - out) : 0;
    const float sun = std::max(0.0f, (-x / radius * 0.6f - y / radius * 0.6f + z * 0.5f));
    const bool ground = v > 0.62f;
    const float shade = ground && out >= 1 && x > 0 && x < 0.5f && v < 0.8f ? 0.1f : 1.0f;
    switch (channel) {
    case 0:
        return out < 1  ? Rgb{1.6f, 0.9f, 0.5f} * sun
               : ground ? Rgb{0.9f, 0.82f, 0.66f} * shade
                        : Rgb{};
    case 1:
        return out < 1  ? Rgb{0.12f, 0.14f, 0.2f} * (1 - y / radius)
               : ground ? Rgb{0.14f, 0.17f, 0.22f}
                        : Rgb{0.2f, 0.35f, 0.7f} * (1.2f - v);
    case 2:
        return Rgb{0.5f, 0.32f, 0.14f} * std::exp(-8 * ((u - 0.85f) * (u - 0.85f) + y * y));
    default:
        return u > 0.78f && u < 0.92f && v > 0.3f && v < 0.42f ? Rgb{1, 0.8f, 0.5f} : Rgb{};
    }
}

} // namespace

FakePicture::FakePicture(FakeOptions options)
  : options_(std::move(options)) {}

FakePicture::~FakePicture() { end(); }

void FakePicture::end() {
    stop();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void FakePicture::start() {
    end();
    const std::uint64_t picture = status_.picture;
    status_ = {};
    status_.picture = picture;
    status_.passes = options_.passes;
    stop_ = pause_ = false;
    ++starts;
    thread_ = std::thread([this] { render(); });
}

void FakePicture::pause() {
    const std::lock_guard lock(mutex_);
    pause_ = true;
}

void FakePicture::resume() {
    const std::lock_guard lock(mutex_);
    pause_ = false;
    wake_.notify_all();
}

void FakePicture::stop() {
    const std::lock_guard lock(mutex_);
    stop_ = true;
    wake_.notify_all();
}

void FakePicture::set_region(PictureRegion region) {
    const std::lock_guard lock(mutex_);
    region_ = region;
}

PictureRegion FakePicture::region() const {
    const std::lock_guard lock(mutex_);
    return region_;
}

void FakePicture::add_passes(int passes) {
    const std::lock_guard lock(mutex_);
    status_.passes += passes;
}

SessionStatus FakePicture::status() {
    const std::lock_guard lock(mutex_);
    return status_;
}

bool FakePicture::wait_ms(std::unique_lock<std::mutex>& lock, int ms) {
    wake_.wait_for(lock, std::chrono::milliseconds(ms), [this] { return stop_; });
    return !stop_;
}

void FakePicture::render() {
    std::unique_lock lock(mutex_);
    if (!options_.failure.empty()) {
        status_.state = SessionState::failed;
        status_.problem = options_.failure;
        return;
    }
    if (!options_.from_file) {
        wait_ms(lock, options_.pass_ms);
        status_.state = SessionState::building;
        status_.warnings = {{"not-rendered", "3 hatches on layer A-WALL are not rendered yet"},
                            {"image-missing", "oak.jpg is not there; its colour is used instead"}};
        wait_ms(lock, options_.pass_ms);
        status_.state = SessionState::rendering;
    }
    for (int pass = 1; pass <= status_.passes && !stop_; ++pass) {
        lock.unlock();
        render_pass(options_.from_file ? options_.passes : pass);
        lock.lock();
        status_.pass = pass;
        status_.fraction = static_cast<double>(pass) / status_.passes;
        status_.elapsed_seconds = 0.9 * pass;
        status_.eta_seconds = 0.9 * (status_.passes - pass);
        ++status_.picture;
        if (options_.from_file) {
            break;
        }
        if (pause_ && !stop_) {
            status_.state = SessionState::paused;
            wake_.wait(lock, [this] { return stop_ || !pause_; });
            status_.state = SessionState::rendering;
        }
        wait_ms(lock, options_.pass_ms);
    }
    status_.state = stop_ ? SessionState::stopped : SessionState::finished;
}

void FakePicture::render_pass(int pass) {
    renderer::ChannelFilm next;
    const auto width = static_cast<std::uint32_t>(options_.width);
    const auto height = static_cast<std::uint32_t>(options_.height);
    const PictureRegion first = region();
    next.film.width = options_.width;
    next.film.height = options_.height;
    next.film.passes = pass;
    next.film.radiance.assign(std::size_t{width} * height, {});
    for (int c = 0; c < channels; ++c) {
        renderer::LightChannel channel{channel_names[c], {}, c};
        channel.radiance.reserve(next.film.radiance.size());
        for (std::uint32_t y = 0; y < height; ++y) {
            for (std::uint32_t x = 0; x < width; ++x) {
                const bool inside = first.width > 0 && static_cast<int>(x) >= first.x &&
                                    static_cast<int>(x) < first.x + first.width &&
                                    static_cast<int>(y) >= first.y &&
                                    static_cast<int>(y) < first.y + first.height;
                const float grain = 1.4f / std::sqrt(static_cast<float>(inside ? 8 * pass : pass));
                const Rgb clean = light(c, (x + 0.5f) / width, (y + 0.5f) / height,
                                        static_cast<float>(width) / height);
                const float factor =
                    1 +
                    grain * (noise(x, y, static_cast<std::uint32_t>(pass * channels + c)) - 0.5f);
                channel.radiance.push_back(clean * factor);
                next.film.radiance[channel.radiance.size() - 1] += channel.radiance.back();
            }
        }
        next.channels.push_back(std::move(channel));
    }
    const std::lock_guard lock(mutex_);
    picture_ = std::move(next);
}

bool FakePicture::take_picture(std::uint64_t& known, renderer::ChannelFilm& picture) const {
    const std::lock_guard lock(mutex_);
    if (status_.picture <= known) {
        return false;
    }
    known = status_.picture;
    picture = picture_;
    return true;
}

PictureFacts FakePicture::facts() {
    PictureFacts facts;
    facts.title = options_.from_file ? "courtyard.QorImage" : "courtyard.dxf";
    facts.width = options_.width;
    facts.height = options_.height;
    facts.outputs = options_.outputs;
    facts.folder = std::filesystem::temp_directory_path();
    facts.settings = {{"iks_render_size", "Render size", "3"},
                      {"rqor_sun_altitude", "Sun altitude", "35.5"},
                      {"iks_max_render_passes", "Max render passes", "50"},
                      {"bks_use_sun", "Use sun", "1"}};
    return facts;
}

ChannelChoice FakePicture::channel_choice(std::size_t,
                                          const renderer::LightChannel& channel) const {
    return {channel.name, channel.name == "Lamps" ? 120.0 : 100.0, true};
}

bool FakePicture::save(const std::filesystem::path& path, const renderer::ChannelWeights& weights,
                       const renderer::ToneSettings& tone, std::string& error) {
    std::this_thread::sleep_for(std::chrono::milliseconds(save_ms));
    if (!save_problem.empty()) {
        error = save_problem;
        return false;
    }
    std::ofstream(path) << "a picture\n";
    saved.push_back(path);
    saved_weights = weights;
    saved_tone = tone;
    return true;
}

bool FakePicture::keep_settings(const renderer::ToneSettings& tone,
                                const std::vector<ChannelChoice>& names, std::string&) {
    kept_tone = tone;
    kept_channels = names;
    return true;
}

std::unique_ptr<cl_window_picture> FakeProgram::open_image(const std::filesystem::path& path,
                                                           std::string& error) {
    if (!std::filesystem::exists(path)) {
        error = path.string() + ": No such file or directory";
        return nullptr;
    }
    FakeOptions options;
    options.from_file = true;
    options.outputs = {path};
    return std::make_unique<FakePicture>(options);
}

renderer::DisplayImage FakeProgram::tone(const renderer::ChannelFilm& picture,
                                         const renderer::ChannelWeights& weights,
                                         const renderer::ToneSettings& tone) {
    ++toned;
    renderer::DisplayImage image;
    image.width = picture.film.width;
    image.height = picture.film.height;
    image.rgb.reserve(picture.film.radiance.size() * 3);
    const auto gain = static_cast<float>((tone.exposure > 0 ? tone.exposure : 1) *
                                         std::pow(2.0, 4 * (tone.brightness - 0.5)));
    const auto to_byte = [&](float value) {
        const float shown = std::pow(1 - std::exp(-gain * value), 1 / 2.2f);
        return static_cast<std::uint8_t>(std::lround(std::clamp(shown, 0.0f, 1.0f) * 255));
    };
    for (std::size_t i = 0; i < picture.film.radiance.size(); ++i) {
        Rgb sum;
        for (std::size_t c = 0; c < picture.channels.size(); ++c) {
            sum += picture.channels[c].radiance[i] * weights[c];
        }
        image.rgb.insert(image.rgb.end(), {to_byte(sum.x), to_byte(sum.y), to_byte(sum.z)});
    }
    return image;
}

/// Smeared along the rows: easily told from the picture with grain.
renderer::DisplayImage FakeProgram::tone_clean(const renderer::ChannelFilm& picture,
                                               const renderer::ChannelWeights& weights,
                                               const renderer::ToneSettings& tone_settings) {
    renderer::DisplayImage image = tone(picture, weights, tone_settings);
    ++cleaned;
    for (std::size_t i = 3; i < image.rgb.size(); ++i) {
        image.rgb[i] = static_cast<std::uint8_t>((image.rgb[i] + 3 * image.rgb[i - 3]) / 4);
    }
    return image;
}

double FakeProgram::exposure_of(const renderer::Film&) { return 1.0; }

} // namespace window_test
