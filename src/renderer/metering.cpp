// Measures the light of a picture: whole-number counts, so that no order of adding matters.
#include "renderer/metering.h"

#include "renderer/tone_operator.h"

#include <tbb/blocked_range.h>
#include <tbb/enumerable_thread_specific.h>
#include <tbb/parallel_for.h>

#include <array>

namespace renderer {

namespace {

/// How often which light was met, 128 steps to an octave. Each step knows the mean of what it
/// holds, so that little is lost by counting.
class LightHistogram {
public:
    LightHistogram()
      : cells_(cell_count) {}

    void add(float light) {
        const auto word = std::bit_cast<std::uint32_t>(light);
        Cell& cell = cells_[word >> shift];
        ++cell.count;
        cell.rest += word & ((1u << shift) - 1);
    }
    void add(const LightHistogram& other) {
        for (std::size_t i = 0; i < cell_count; ++i) {
            cells_[i].count += other.cells_[i].count;
            cells_[i].rest += other.cells_[i].rest;
        }
    }
    std::uint64_t total() const {
        std::uint64_t sum = 0;
        for (const Cell& cell : cells_)
            sum += cell.count;
        return sum;
    }

    /// Half way, in stops, between the log average without its ends and the light of the brighter
    /// parts: shadow may be dark when a good part of the picture lies in the sun.
    double key() const {
        const std::uint64_t count = total(), trim = count / 20, bright_at = count * 85 / 100;
        std::uint64_t below = 0;
        double sum = 0, bright = 0;
        for (std::size_t i = 0; i < cell_count; ++i) {
            const Cell& cell = cells_[i];
            if (cell.count == 0)
                continue;
            const std::uint64_t first = std::max(below, trim);
            const std::uint64_t last = std::min(below + cell.count, count - trim);
            const double light = std::log(mean(i));
            if (last > first)
                sum += light * static_cast<double>(last - first);
            if (bright_at >= below && bright_at < below + cell.count)
                bright = light;
            below += cell.count;
        }
        const double average = sum / static_cast<double>(count - 2 * trim);
        return std::exp(0.5 * (average + bright));
    }

private:
    static constexpr unsigned shift = 16;
    static constexpr std::size_t cell_count = 0x7f80u; // as many as there are below infinity
    struct Cell {
        std::uint64_t count = 0;
        std::uint64_t rest = 0; ///< sum of the bits that the cell's number does not hold
    };
    double mean(std::size_t i) const {
        const auto low = std::bit_cast<float>(static_cast<std::uint32_t>(i) << shift);
        const auto next = std::bit_cast<float>((static_cast<std::uint32_t>(i) << shift) | 0xffffu);
        const double part =
            static_cast<double>(cells_[i].rest) / (static_cast<double>(cells_[i].count) * 0xffff);
        return low + (static_cast<double>(next) - low) * part;
    }

    std::vector<Cell> cells_;
};

/// What a middle-grey card would show in the light of a pixel; 0 where nothing is to be measured.
float card_luminance(Rgb radiance, Rgb albedo) {
    const float light = luminance(radiance);
    if (!(light > 1e-12f) || !std::isfinite(light))
        return 0;
    const float card = light * (middle_grey / std::clamp(luminance(albedo), 0.04f, 1.0f));
    return std::isfinite(card) ? card : 0;
}

constexpr std::size_t large_picture = 400'000; ///< pixels from which on a part is measured

struct Measured {
    LightHistogram surfaces, sky;
};

} // namespace

double measure_exposure(const Film& film, const RadianceSource& source) {
    constexpr double key_target = 0.26; // of the card, before the curve
    const std::size_t n = film.radiance.size();
    const bool featured = film.albedo.size() == n && film.alpha.size() == n;
    // A large picture is known by a part of it: one block in three, another of the three each time.
    const std::size_t step = n > large_picture ? 3 : 1;
    const std::size_t blocks = (n + pixel_block - 1) / pixel_block;
    tbb::enumerable_thread_specific<Measured> parts;
    using Range = tbb::blocked_range<std::size_t>;
    tbb::parallel_for(Range(0, (blocks + step - 1) / step), [&](const Range& range) {
        Measured& part = parts.local();
        std::array<Rgb, pixel_block> buffer;
        for (std::size_t i_block = range.begin(); i_block < range.end(); ++i_block) {
            const std::size_t begin = (i_block * step + i_block % step) * pixel_block;
            const std::size_t end = std::min(begin + pixel_block, n);
            if (begin >= end)
                continue;
            const Rgb* radiance = source(begin, end, buffer.data());
            for (std::size_t i = begin; i < end; ++i) {
                const bool surface = featured && film.alpha[i] > 0.5f;
                const Rgb grey = Rgb{1, 1, 1} * middle_grey;
                const float card =
                    card_luminance(radiance[i - begin], surface ? film.albedo[i] : grey);
                if (card > 0)
                    (surface ? part.surfaces : part.sky).add(card);
            }
        }
    });
    Measured all;
    for (const Measured& part : parts) {
        all.surfaces.add(part.surfaces);
        all.sky.add(part.sky);
    }
    const LightHistogram& measured = all.surfaces.total() > n / step / 50 ? all.surfaces : all.sky;
    if (measured.total() == 0)
        return 1;
    return std::clamp(key_target / measured.key(), 1e-12, 1e12);
}

} // namespace renderer
