// Mixes light by channel.
#include "renderer/light_channels.h"

#include "renderer/metering.h"
#include "renderer/tone_operator.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

#include <stdexcept>

namespace renderer {

namespace {

static_assert(sizeof(Rgb) == 3 * sizeof(float));

using Range = tbb::blocked_range<std::size_t>;

/// The mixed radiance of a picture, piece by piece.
class Mixer {
public:
    Mixer(const ChannelFilm& channels, const ChannelWeights& weights)
      : film_(channels.film) {
        const auto n = static_cast<std::size_t>(std::max(film_.width, 0)) *
                       static_cast<std::size_t>(std::max(film_.height, 0));
        bool fits = film_.radiance.size() == n && channels.channels.size() <= most_channels;
        for (std::size_t i = 0; fits && i < channels.channels.size(); ++i) {
            const auto& radiance = channels.channels[i].radiance;
            fits = radiance.size() == n || radiance.empty(); // without light
            neutral_ = neutral_ && weights[i] == 1;
            if (fits && !radiance.empty() && weights[i] != 0)
                parts_.push_back({radiance.data(), weights[i]});
        }
        if (!fits)
            throw std::invalid_argument("mix: a buffer of the picture does not fit its size");
    }

    /// As nothing is turned, the film itself is the mix.
    bool neutral() const { return neutral_; }
    std::size_t pixels() const { return film_.radiance.size(); }

    const Rgb* operator()(std::size_t begin, std::size_t end, Rgb* buffer) const {
        if (neutral_)
            return film_.radiance.data() + begin;
        std::fill(buffer, buffer + (end - begin), Rgb{0, 0, 0});
        for (const Part& part : parts_) {
            const float* from = &part.radiance[begin].x; // as plain numbers, four at a time
            float* to = &buffer->x;
            const float weight = part.weight;
            for (std::size_t i = 0; i < 3 * (end - begin); ++i)
                to[i] += from[i] * weight;
        }
        return buffer;
    }

private:
    struct Part {
        const Rgb* radiance;
        float weight;
    };
    const Film& film_;
    bool neutral_ = true;
    std::vector<Part> parts_;
};

/// Calls `work(begin, end)` for the blocks of a picture, on all cores.
template <typename Work>
void for_blocks(std::size_t pixels, const Work& work) {
    tbb::parallel_for(Range(0, (pixels + pixel_block - 1) / pixel_block), [&](const Range& range) {
        for (std::size_t block = range.begin(); block < range.end(); ++block)
            work(block * pixel_block, std::min((block + 1) * pixel_block, pixels));
    });
}

} // namespace

ChannelWeights neutral_weights() {
    ChannelWeights weights;
    weights.fill(1);
    return weights;
}

Film mix(const ChannelFilm& channels, const ChannelWeights& weights) {
    const Mixer mixer(channels, weights);
    Film film = channels.film;
    if (mixer.neutral())
        return film;
    const bool has_variance = film.variance.size() == mixer.pixels();
    for_blocks(mixer.pixels(), [&](std::size_t begin, std::size_t end) {
        mixer(begin, end, film.radiance.data() + begin);
        for (std::size_t i = begin; has_variance && i < end; ++i) {
            const float before = luminance(channels.film.radiance[i]);
            const float ratio = before > 0 ? luminance(film.radiance[i]) / before : 0;
            film.variance[i] *= ratio * ratio;
        }
    });
    return film;
}

DisplayImage mix_and_tone(const ChannelFilm& channels, const ChannelWeights& weights,
                          const ToneSettings& settings) {
    const Mixer mixer(channels, weights);
    const double exposure = settings.exposure > 0
                                ? settings.exposure
                                : measure_exposure(channels.film, std::cref(mixer));
    const ToneOperator<TableCurve, TableEncoding> tone(settings, exposure);
    DisplayImage image{channels.film.width, channels.film.height,
                       std::vector<std::uint8_t>(mixer.pixels() * 3)};
    for_blocks(mixer.pixels(), [&](std::size_t begin, std::size_t end) {
        std::array<Rgb, pixel_block> buffer;
        const Rgb* radiance = mixer(begin, end, buffer.data());
        for (std::size_t i = begin; i < end; ++i)
            quantise(tone(radiance[i - begin]), i, &image.rgb[3 * i]);
    });
    return image;
}

} // namespace renderer
