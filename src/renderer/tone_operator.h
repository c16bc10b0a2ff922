// The tone settings at work on one pixel, with exact functions or with tables.
#pragma once

#include "renderer/sampler.h"
#include "renderer/sampling.h"
#include "renderer/tone.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

namespace renderer {

inline constexpr float middle_grey = 0.18f;

/// The filmic curve of T. Lottes, "Advanced Techniques and Optimization of HDR Color Pipelines",
/// GDC 2016: x^a / (x^(a d) b + c), with b and c chosen so that middle grey stays where it is put
/// and `white` becomes 1.
class FilmicCurve {
public:
    FilmicCurve(float contrast, float shoulder, float white, float grey_out)
      : a_(contrast)
      , ad_(contrast * shoulder)
      , white_(white) {
        const double a = contrast, d = shoulder, w = white, m = middle_grey, g = grey_out;
        const double wa = std::pow(w, a), ma = std::pow(m, a);
        const double wad = std::pow(w, a * d), mad = std::pow(m, a * d);
        b_ = static_cast<float>((ma - wa * g) / ((mad - wad) * g));
        c_ = static_cast<float>(wa - b_ * wad);
    }
    float operator()(float x) const {
        x = std::clamp(x, 0.0f, white_);
        return clamp01(std::pow(x, a_) / (std::pow(x, ad_) * b_ + c_));
    }

private:
    float a_, ad_, b_, c_, white_;
};

/// From a curve's value, 0 to 1, to a display value: the sRGB encoding (IEC 61966-2-1) and an
/// extra exponent.
class DisplayEncoding {
public:
    explicit DisplayEncoding(float exponent)
      : exponent_(exponent) {}
    float operator()(float x) const {
        const float encoded =
            x <= 0.0031308f ? 12.92f * x : 1.055f * std::pow(x, 1 / 2.4f) - 0.055f;
        return exponent_ == 1 ? encoded : std::pow(encoded, exponent_);
    }

private:
    float exponent_;
};

/// A function of 2^low to 2^high by straight lines, 64 to an octave: their number is in the
/// argument's leading bits. What lies outside is taken as the nearer end.
template <int low, int high>
class OctaveTable {
public:
    template <typename Function>
    explicit OctaveTable(const Function& function)
      : values_(static_cast<std::size_t>(((high - low) << bits) + 2)) {
        for (std::size_t i = 0; i < values_.size(); ++i)
            values_[i] =
                function(std::bit_cast<float>((base + static_cast<std::uint32_t>(i)) << shift));
    }
    float operator()(float x) const {
        const auto word = std::bit_cast<std::uint32_t>(std::clamp(x, least, most));
        const float* value = &values_[(word >> shift) - base];
        const float part = static_cast<float>(word & ((1u << shift) - 1)) * (1.0f / (1u << shift));
        return value[0] + (value[1] - value[0]) * part;
    }

private:
    static constexpr unsigned bits = 6, shift = 23 - bits;
    static constexpr std::uint32_t base = static_cast<std::uint32_t>(127 + low) << bits;
    static constexpr float least = std::bit_cast<float>(base << shift);
    static constexpr float most =
        std::bit_cast<float>(static_cast<std::uint32_t>(127 + high) << 23);
    std::vector<float> values_;
};

/// FilmicCurve by table: its white is 1.25 to 20.
class TableCurve {
public:
    TableCurve(float contrast, float shoulder, float white, float grey_out)
      : table_(FilmicCurve(contrast, shoulder, white, grey_out)) {}
    float operator()(float x) const { return table_(x); }

private:
    OctaveTable<-80, 5> table_;
};

/// DisplayEncoding by table. A strong exponent lifts the deepest black.
class TableEncoding {
public:
    explicit TableEncoding(float exponent)
      : table_(DisplayEncoding(exponent)) {}
    float operator()(float x) const { return table_(x); }

private:
    OctaveTable<-100, 0> table_;
};

/// All of the tone settings, worked out once for a picture.
template <typename Curve, typename Encoding>
class ToneOperator {
public:
    ToneOperator(const ToneSettings& s, double exposure)
      : scale_(static_cast<float>(exposure * std::exp2(4 * (s.brightness - 0.5))))
      , saturation_(static_cast<float>(std::clamp(s.saturation, 0.0, 4.0)))
      , curve_(static_cast<float>(1.35 * std::exp2(1.2 * (s.contrast - 0.5))), 0.97f,
               static_cast<float>(5 * std::exp2(4 * (0.5 - s.burn))), 0.19f)
      , encode_(static_cast<float>(1 / std::clamp(s.gamma, 0.1, 10.0))) {}

    /// Display values, 0 to 1.
    Rgb operator()(Rgb radiance) const {
        Rgb c = radiance * scale_;
        c = {usable(c.x), usable(c.y), usable(c.z)};
        const float grey = luminance(c);
        c = lerp({grey, grey, grey}, c, saturation_);
        c = curve({std::max(c.x, 0.0f), std::max(c.y, 0.0f), std::max(c.z, 0.0f)});
        return {encode_(clamp01(c.x)), encode_(clamp01(c.y)), encode_(clamp01(c.z))};
    }

private:
    static float usable(float x) { return std::min(x > 0 ? x : 0.0f, 1e6f); } // NaN becomes 0

    /// About half way between a curve a channel, which bleaches highlights but turns hues, and a
    /// curve on the largest channel, which keeps hues but never reaches white.
    Rgb curve(Rgb c) const {
        const float peak = std::max(c.x, std::max(c.y, c.z));
        if (peak <= 0)
            return {0, 0, 0};
        const Rgb separate{curve_(c.x), curve_(c.y), curve_(c.z)};
        const Rgb together = c * (curve_(peak) / peak);
        return lerp(together, separate, 0.45f);
    }

    float scale_, saturation_;
    Curve curve_;
    Encoding encode_;
};

/// Rounds to 8 bits with half a step of noise that depends on the pixel's place only, so that skies
/// show no bands. Black and white stay what they are. `c` is 0 to 1.
inline void quantise(Rgb c, std::size_t pixel, std::uint8_t* out) {
    const float noise = to_unit_float(hash_word(static_cast<std::uint32_t>(pixel)));
    const auto round = [noise](float value) {
        return static_cast<std::uint8_t>(std::min(value * 255 + noise, 255.0f));
    };
    out[0] = round(c.x);
    out[1] = round(c.y);
    out[2] = round(c.z);
}

} // namespace renderer
