// From linear radiance to display values.
#include "renderer/tone.h"

#include "renderer/metering.h"
#include "renderer/tone_operator.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

#include <stdexcept>

namespace renderer {

double automatic_exposure(const Film& film) {
    return measure_exposure(film, [&film](std::size_t begin, std::size_t, Rgb*) {
        return film.radiance.data() + begin;
    });
}

DisplayImage tone_map(const Film& film, const ToneSettings& settings) {
    const auto pixels =
        static_cast<std::size_t>(film.width) * static_cast<std::size_t>(film.height);
    if (film.radiance.size() != pixels)
        throw std::invalid_argument("tone: the film's radiance does not fit its size");
    const double exposure = settings.exposure > 0 ? settings.exposure : automatic_exposure(film);
    const ToneOperator<FilmicCurve, DisplayEncoding> tone(settings, exposure);
    DisplayImage image{film.width, film.height, std::vector<std::uint8_t>(pixels * 3)};
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, pixels, 4096), [&](const auto& range) {
        for (std::size_t i = range.begin(); i < range.end(); ++i) {
            quantise(tone(film.radiance[i]), i, &image.rgb[3 * i]);
        }
    });
    return image;
}

} // namespace renderer
