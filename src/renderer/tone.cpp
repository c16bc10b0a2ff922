// From linear radiance to display values.
#include "renderer/tone.h"

#include "renderer/sampler.h"
#include "renderer/sampling.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <stdexcept>

namespace renderer {

namespace {

constexpr float middle_grey = 0.18f;

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

float srgb_encode(float x) {
    return x <= 0.0031308f ? 12.92f * x : 1.055f * std::pow(x, 1 / 2.4f) - 0.055f;
}

/// What a middle-grey card would show in the light of a pixel; 0 where nothing is to be measured.
float card_luminance(Rgb radiance, Rgb albedo) {
    const float light = luminance(radiance);
    if (!(light > 1e-12f) || !std::isfinite(light))
        return 0;
    return light * middle_grey / std::clamp(luminance(albedo), 0.04f, 1.0f);
}

/// Half way, in stops, between the log average without its ends and the light of the brighter
/// parts: shadow may be dark when a good part of the picture lies in the sun.
double key_luminance(std::vector<float>& values) {
    std::sort(values.begin(), values.end());
    const std::size_t trim = values.size() / 20;
    double sum = 0;
    for (std::size_t i = trim; i < values.size() - trim; ++i)
        sum += std::log(static_cast<double>(values[i]));
    const double average = sum / static_cast<double>(values.size() - 2 * trim);
    const double bright = std::log(static_cast<double>(values[values.size() * 85 / 100]));
    return std::exp(0.5 * (average + bright));
}

} // namespace

double automatic_exposure(const Film& film) {
    constexpr double key_target = 0.26; // of the card, before the curve
    const std::size_t n = film.radiance.size();
    const bool featured = film.albedo.size() == n && film.alpha.size() == n;
    std::vector<float> surfaces, sky;
    for (std::size_t i = 0; i < n; ++i) {
        const bool surface = featured && film.alpha[i] > 0.5f;
        const Rgb grey = Rgb{1, 1, 1} * middle_grey;
        const float card = card_luminance(film.radiance[i], surface ? film.albedo[i] : grey);
        if (card > 0)
            (surface ? surfaces : sky).push_back(card);
    }
    auto& measured = surfaces.size() > n / 50 ? surfaces : sky;
    if (measured.empty())
        return 1;
    return std::clamp(key_target / key_luminance(measured), 1e-12, 1e12);
}

namespace {

/// All of the tone settings, worked out once for a picture.
class ToneOperator {
public:
    ToneOperator(const ToneSettings& s, double exposure)
      : scale_(static_cast<float>(exposure * std::exp2(4 * (s.brightness - 0.5))))
      , saturation_(static_cast<float>(std::clamp(s.saturation, 0.0, 4.0)))
      , inverse_gamma_(static_cast<float>(1 / std::clamp(s.gamma, 0.1, 10.0)))
      , curve_(static_cast<float>(1.35 * std::exp2(1.2 * (s.contrast - 0.5))), 0.97f,
               static_cast<float>(5 * std::exp2(4 * (0.5 - s.burn))), 0.19f) {}

    Rgb operator()(Rgb radiance) const {
        Rgb c = radiance * scale_;
        c = {usable(c.x), usable(c.y), usable(c.z)};
        const float grey = luminance(c);
        c = lerp({grey, grey, grey}, c, saturation_);
        c = {std::max(c.x, 0.0f), std::max(c.y, 0.0f), std::max(c.z, 0.0f)};
        return finish(curve(c));
    }

private:
    static float usable(float x) { return x > 0 ? std::min(x, 1e6f) : 0; } // NaN becomes 0

    /// About half way between a curve a channel, which bleaches highlights but turns hues, and a
    /// curve on the largest channel, which keeps hues but never reaches white.
    Rgb curve(Rgb c) const {
        const float peak = max_component(c);
        if (peak <= 0)
            return {0, 0, 0};
        const Rgb separate{curve_(c.x), curve_(c.y), curve_(c.z)};
        const Rgb together = c * (curve_(peak) / peak);
        return lerp(together, separate, 0.45f);
    }
    Rgb finish(Rgb c) const {
        Rgb out{srgb_encode(clamp01(c.x)), srgb_encode(clamp01(c.y)), srgb_encode(clamp01(c.z))};
        if (inverse_gamma_ != 1)
            out = {std::pow(out.x, inverse_gamma_), std::pow(out.y, inverse_gamma_),
                   std::pow(out.z, inverse_gamma_)};
        return out;
    }

    float scale_, saturation_, inverse_gamma_;
    FilmicCurve curve_;
};

/// Rounds to 8 bits with half a step of noise that depends on the place only, so that skies show
/// no bands. Black and white stay what they are.
std::uint8_t quantise(float value, float noise) {
    const float level = value * 255;
    if (level <= 0 || level >= 255)
        return level <= 0 ? 0 : 255;
    return static_cast<std::uint8_t>(std::clamp(level + noise, 0.0f, 255.0f));
}

} // namespace

DisplayImage tone_map(const Film& film, const ToneSettings& settings) {
    const auto pixels =
        static_cast<std::size_t>(film.width) * static_cast<std::size_t>(film.height);
    if (film.radiance.size() != pixels)
        throw std::invalid_argument("tone: the film's radiance does not fit its size");
    const double exposure = settings.exposure > 0 ? settings.exposure : automatic_exposure(film);
    const ToneOperator tone(settings, exposure);
    DisplayImage image{film.width, film.height, std::vector<std::uint8_t>(pixels * 3)};
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, pixels, 4096), [&](const auto& range) {
        for (std::size_t i = range.begin(); i < range.end(); ++i) {
            const Rgb c = tone(film.radiance[i]);
            const float noise = to_unit_float(hash_word(static_cast<std::uint32_t>(i)));
            image.rgb[3 * i] = quantise(c.x, noise);
            image.rgb[3 * i + 1] = quantise(c.y, noise);
            image.rgb[3 * i + 2] = quantise(c.z, noise);
        }
    });
    return image;
}

} // namespace renderer
