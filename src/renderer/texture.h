// Pictures on surfaces: pyramids of ever smaller copies, looked up by the size of what is seen.
#pragma once

#include "renderer/scene.h"
#include "renderer/texture_file.h"

#include <cstddef>
#include <string>
#include <vector>

namespace renderer {

struct TextureColor {
    Rgb color{0, 0, 0}; ///< linear reflectance, not multiplied by alpha
    float alpha = 1;
};

/// One picture. Each level halves the one before, in linear light and weighted by alpha, so that a
/// lookup as wide as what a pixel sees needs eight texels (Williams, "Pyramidal Parametrics",
/// 1983).
class TexturePyramid {
public:
    /// A picture of more than `most_texels` is halved before it is kept. One without texels is
    /// grey.
    TexturePyramid(TexelImage image, const Texture& texture, std::size_t most_texels);

    /// The picture at `uv`, its lower left corner being (0, 0) and its upper right one (1, 1).
    /// `footprint` is the side of the square that is seen, as a share of the picture's own side.
    TextureColor sample(Vec2 uv, float footprint) const;
    /// Alpha there, as sharp as it is kept.
    float alpha(Vec2 uv) const;

    std::size_t bytes() const;
    int width() const { return levels_.front().width; }

private:
    TextureColor bilinear(const TexelImage& level, Vec2 uv) const;

    std::vector<TexelImage> levels_; ///< at least one
    float texels_a_side_ = 1;        ///< geometric mean of the first level's width and height
    float white_ = 1;
    bool repeat_ = true;
};

/// All textures of a scene. Lookups may run on any number of threads.
class TextureSet {
public:
    /// Reads the files, on all cores. One that cannot be read is grey, and told in problems().
    /// Beyond `memory` bytes pictures are kept smaller.
    explicit TextureSet(const std::vector<Texture>& textures,
                        std::size_t memory = std::size_t{1} << 30);

    const TexturePyramid& operator[](std::size_t index) const { return pyramids_[index]; }
    std::size_t size() const { return pyramids_.size(); }
    const std::vector<std::string>& problems() const { return problems_; }
    std::size_t bytes() const;

private:
    std::vector<TexturePyramid> pyramids_;
    std::vector<std::string> problems_;
};

} // namespace renderer
