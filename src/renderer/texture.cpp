// Pictures on surfaces.
#include "renderer/texture.h"

#include "renderer/sampling.h"

#include <tbb/parallel_for.h>

#include <algorithm>
#include <cmath>

namespace renderer {

namespace {

constexpr Texel grey{188, 188, 188, 255}; // half of the light

/// The texels that one of a smaller row covers, with their weights.
struct Cover {
    int first = 0, count = 1;
    std::array<float, 3> weights{1, 0, 0};
};

/// `index` of half as many as `size`, rounded down: two texels, or three where the size is odd.
Cover cover_of(int index, int size) {
    const int half = std::max(size / 2, 1);
    const float step = static_cast<float>(size) / static_cast<float>(half);
    const float from = static_cast<float>(index) * step, to = from + step;
    Cover cover;
    cover.first = std::min(static_cast<int>(from), size - 1);
    cover.count = 0;
    for (int i = 0; i < 3 && cover.first + i < size; ++i) {
        const auto at = static_cast<float>(cover.first + i);
        const float share = std::min(to, at + 1) - std::max(from, at);
        if (share < 1e-4f && i > 0)
            break;
        cover.weights[static_cast<std::size_t>(i)] = share;
        ++cover.count;
    }
    return cover;
}

Texel mean_texel(const TexelImage& image, const Cover& across, const Cover& down) {
    Rgb weighted{0, 0, 0}, plain{0, 0, 0};
    float alpha = 0, weight = 0;
    for (int y = 0; y < down.count; ++y)
        for (int x = 0; x < across.count; ++x) {
            const auto row = static_cast<std::size_t>(down.first) + static_cast<std::size_t>(y);
            const Texel& t =
                image.texels[row * static_cast<std::size_t>(image.width) +
                             static_cast<std::size_t>(across.first) + static_cast<std::size_t>(x)];
            const float w = across.weights[static_cast<std::size_t>(x)] *
                            down.weights[static_cast<std::size_t>(y)];
            const Rgb c{linear_from_byte(t[0]), linear_from_byte(t[1]), linear_from_byte(t[2])};
            plain += c * w;
            weighted += c * (w * static_cast<float>(t[3]));
            alpha += w * static_cast<float>(t[3]);
            weight += w;
        }
    const Rgb mean = alpha > 0 ? weighted / alpha : plain / weight;
    return {byte_from_linear(mean.x), byte_from_linear(mean.y), byte_from_linear(mean.z),
            static_cast<std::uint8_t>(std::lround(alpha / weight))};
}

TexelImage halved(const TexelImage& image) {
    TexelImage half;
    half.width = std::max(image.width / 2, 1);
    half.height = std::max(image.height / 2, 1);
    half.texels.resize(static_cast<std::size_t>(half.width) *
                       static_cast<std::size_t>(half.height));
    tbb::parallel_for(0, half.height, [&](int y) {
        const Cover down = cover_of(y, image.height);
        for (int x = 0; x < half.width; ++x)
            half.texels[static_cast<std::size_t>(y) * static_cast<std::size_t>(half.width) +
                        static_cast<std::size_t>(x)] =
                mean_texel(image, cover_of(x, image.width), down);
    });
    return half;
}

float wrapped(float x) { return x - std::floor(x); }

} // namespace

TexturePyramid::TexturePyramid(TexelImage image, const Texture& texture, std::size_t most_texels)
  : white_(texture.white)
  , repeat_(texture.repeat) {
    if (image.texels.empty())
        image = {1, 1, {grey}};
    while (image.texels.size() > most_texels && image.texels.size() > 1)
        image = halved(image);
    texels_a_side_ = std::sqrt(static_cast<float>(image.width) * static_cast<float>(image.height));
    levels_.push_back(std::move(image));
    while (levels_.back().texels.size() > 1)
        levels_.push_back(halved(levels_.back()));
}

std::size_t TexturePyramid::bytes() const {
    std::size_t sum = 0;
    for (const TexelImage& level : levels_)
        sum += level.texels.size() * sizeof(Texel);
    return sum;
}

TextureColor TexturePyramid::bilinear(const TexelImage& level, Vec2 uv) const {
    const float x = uv.x * static_cast<float>(level.width) - 0.5f;
    const float y = (1 - uv.y) * static_cast<float>(level.height) - 0.5f;
    const float x0 = std::floor(x), y0 = std::floor(y);
    const auto index = [this](float at, int size) {
        const int i = static_cast<int>(at);
        if (i >= 0 && i < size)
            return i;
        return repeat_ ? (i + size) % size : std::clamp(i, 0, size - 1);
    };
    Rgb sum{0, 0, 0};
    float alpha = 0;
    for (int k = 0; k < 4; ++k) {
        const auto dx = static_cast<float>(k & 1), dy = static_cast<float>(k >> 1);
        const auto row = static_cast<std::size_t>(index(y0 + dy, level.height));
        const Texel& t = level.texels[row * static_cast<std::size_t>(level.width) +
                                      static_cast<std::size_t>(index(x0 + dx, level.width))];
        const float w =
            (1 - std::fabs(x - x0 - dx)) * (1 - std::fabs(y - y0 - dy)) * static_cast<float>(t[3]);
        sum += Rgb{linear_from_byte(t[0]), linear_from_byte(t[1]), linear_from_byte(t[2])} * w;
        alpha += w;
    }
    return alpha > 0 ? TextureColor{sum * (white_ / alpha), alpha / 255}
                     : TextureColor{{0, 0, 0}, 0};
}

TextureColor TexturePyramid::sample(Vec2 uv, float footprint) const {
    if (!std::isfinite(uv.x) || !std::isfinite(uv.y))
        return {{0, 0, 0}, 0};
    if (repeat_)
        uv = {wrapped(uv.x), wrapped(uv.y)};
    else if (uv.x < 0 || uv.x > 1 || uv.y < 0 || uv.y > 1)
        return {{0, 0, 0}, 0};
    const float texels = footprint * texels_a_side_;
    if (!(texels > 1))
        return bilinear(levels_.front(), uv);
    const float level = std::log2(texels);
    const auto last = levels_.size() - 1;
    if (level >= static_cast<float>(last))
        return bilinear(levels_[last], uv);
    const auto lower = static_cast<std::size_t>(level);
    const float share = level - static_cast<float>(lower);
    const TextureColor a = bilinear(levels_[lower], uv), b = bilinear(levels_[lower + 1], uv);
    const float alpha = a.alpha * (1 - share) + b.alpha * share;
    if (alpha <= 0)
        return {{0, 0, 0}, 0};
    return {(a.color * (a.alpha * (1 - share)) + b.color * (b.alpha * share)) / alpha, alpha};
}

float TexturePyramid::alpha(Vec2 uv) const { return sample(uv, 0).alpha; }

TextureSet::TextureSet(const std::vector<Texture>& textures, std::size_t memory) {
    if (textures.empty())
        return;
    constexpr std::size_t most = std::size_t{1} << 25, least = std::size_t{1} << 14;
    std::size_t left = memory;
    pyramids_.reserve(textures.size());
    for (const Texture& texture : textures) {
        TexelImage image;
        std::string error;
        if (!read_texture_file(texture.file, image, error))
            problems_.push_back(error + "; it is drawn grey");
        // a pyramid is a third larger than its first level; some room stays for later pictures
        const std::size_t room = std::clamp(left / 2 / sizeof(Texel), least, most);
        pyramids_.emplace_back(std::move(image), texture, room);
        left -= std::min(left, pyramids_.back().bytes());
    }
}

std::size_t TextureSet::bytes() const {
    std::size_t sum = 0;
    for (const TexturePyramid& pyramid : pyramids_)
        sum += pyramid.bytes();
    return sum;
}

} // namespace renderer
