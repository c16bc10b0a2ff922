// Letters by FreeType: outlines in font units, flattened and filled.
#include "host/db/glyphs.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <mutex>

#include <ft2build.h>
#include FT_BBOX_H
#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace draw {
namespace {

/// FreeType's library object. One for all fonts; making faces is guarded.
struct Library {
    Library() {
        if (FT_Init_FreeType(&handle) != 0) {
            handle = nullptr;
        }
    }
    ~Library() { FT_Done_FreeType(handle); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    FT_Library handle = nullptr;
    std::mutex mutex;
};

std::shared_ptr<Library> library() {
    static const auto only = std::make_shared<Library>();
    return only;
}

AcGePoint2d lerp(const AcGePoint2d& a, const AcGePoint2d& b, double t) {
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

/// Gathers an outline as rings of chords.
struct Flattener {
    double deviation;
    std::vector<std::vector<AcGePoint2d>> rings;

    AcGePoint2d last() const { return rings.back().back(); }
    /// Steps so that chords of a curve whose second derivative is at most `bend` stay near it.
    int steps(double bend) const {
        constexpr int kMost = 64;
        const double count = std::ceil(std::sqrt(bend / (8 * deviation)));
        return std::clamp(std::isfinite(count) ? static_cast<int>(std::min(count, 64.0)) : kMost, 1,
                          kMost);
    }
    void quadratic(const AcGePoint2d& b, const AcGePoint2d& c) {
        const AcGePoint2d a = last();
        const int n = steps(2 * std::hypot(a.x - 2 * b.x + c.x, a.y - 2 * b.y + c.y));
        for (int i = 1; i <= n; ++i) {
            const double t = static_cast<double>(i) / n;
            rings.back().push_back(i == n ? c : lerp(lerp(a, b, t), lerp(b, c, t), t));
        }
    }
    void cubic(const AcGePoint2d& b, const AcGePoint2d& c, const AcGePoint2d& d) {
        const AcGePoint2d a = last();
        const double first = std::hypot(a.x - 2 * b.x + c.x, a.y - 2 * b.y + c.y);
        const double second = std::hypot(b.x - 2 * c.x + d.x, b.y - 2 * c.y + d.y);
        const int n = steps(6 * std::max(first, second));
        for (int i = 1; i <= n; ++i) {
            const double t = static_cast<double>(i) / n;
            const AcGePoint2d p = lerp(lerp(a, b, t), lerp(b, c, t), t);
            const AcGePoint2d q = lerp(lerp(b, c, t), lerp(c, d, t), t);
            rings.back().push_back(i == n ? d : lerp(p, q, t));
        }
    }
};

AcGePoint2d point(const FT_Vector* v) {
    return {static_cast<double>(v->x), static_cast<double>(v->y)};
}

Flattener& flattener(void* user) { return *static_cast<Flattener*>(user); }

const FT_Outline_Funcs kFunctions = {
    [](const FT_Vector* to, void* user) {
        flattener(user).rings.push_back({point(to)});
        return 0;
    },
    [](const FT_Vector* to, void* user) {
        flattener(user).rings.back().push_back(point(to));
        return 0;
    },
    [](const FT_Vector* control, const FT_Vector* to, void* user) {
        flattener(user).quadratic(point(control), point(to));
        return 0;
    },
    [](const FT_Vector* first, const FT_Vector* second, const FT_Vector* to, void* user) {
        flattener(user).cubic(point(first), point(second), point(to));
        return 0;
    },
    0,
    0};

/// Edges that bound the triangles: those that belong to one of them only.
std::vector<std::array<std::uint32_t, 2>> boundaryOf(const ge::Triangulation& area) {
    std::vector<std::array<std::uint32_t, 2>> edges;
    for (const auto& t : area.triangles) {
        for (std::size_t i = 0; i < 3; ++i) {
            edges.push_back({t[i], t[(i + 1) % 3]});
        }
    }
    std::sort(edges.begin(), edges.end());
    std::vector<std::array<std::uint32_t, 2>> outer;
    for (const auto& [a, b] : edges) {
        if (!std::binary_search(edges.begin(), edges.end(), std::array<std::uint32_t, 2>{b, a})) {
            outer.push_back({a, b});
        }
    }
    return outer;
}

} // namespace

struct GlyphFont::Impl {
    std::shared_ptr<Library> owner;
    FT_Face face = nullptr;
    double scale = 1; ///< from font units
    std::mutex mutex;
    std::map<std::pair<FT_UInt, int>, std::shared_ptr<const Glyph>> glyphs;

    ~Impl() {
        if (face != nullptr) {
            const std::lock_guard lock(owner->mutex);
            FT_Done_Face(face);
        }
    }

    bool load(FT_UInt index) const {
        return FT_Load_Glyph(face, index, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) == 0 &&
               face->glyph->format == FT_GLYPH_FORMAT_OUTLINE;
    }

    /// The height of capitals, in font units.
    double capitals() const {
        for (const FT_ULong letter : {U'H', U'X', U'0'}) {
            const FT_UInt index = FT_Get_Char_Index(face, letter);
            FT_BBox box{};
            if (index != 0 && load(index) &&
                FT_Outline_Get_BBox(&face->glyph->outline, &box) == 0 && box.yMax > 0) {
                return static_cast<double>(box.yMax);
            }
        }
        return 0.7 * face->units_per_EM;
    }

    Glyph make(FT_UInt index, double deviation) const {
        Glyph glyph;
        if (!load(index)) {
            return glyph;
        }
        glyph.advance = static_cast<double>(face->glyph->metrics.horiAdvance) * scale;
        Flattener flat{deviation / scale, {}};
        if (FT_Outline_Decompose(&face->glyph->outline, &kFunctions, &flat) != 0) {
            return glyph;
        }
        const ge::Triangulation area = ge::triangulateRings(flat.rings, ge::FillRule::kNonZero);
        for (const AcGePoint2d& p : area.points) {
            glyph.points.push_back({p.x * scale, p.y * scale});
        }
        glyph.triangles = area.triangles;
        glyph.boundary = boundaryOf(area);
        return glyph;
    }
};

GlyphFont::GlyphFont(std::unique_ptr<Impl> impl)
  : impl_(std::move(impl)) {}
GlyphFont::~GlyphFont() = default;

std::shared_ptr<GlyphFont> GlyphFont::open(const std::filesystem::path& file, int face) {
    auto impl = std::make_unique<Impl>();
    impl->owner = library();
    {
        const std::lock_guard lock(impl->owner->mutex);
        if (impl->owner->handle == nullptr ||
            FT_New_Face(impl->owner->handle, file.c_str(), face, &impl->face) != 0) {
            impl->face = nullptr;
            return nullptr;
        }
    }
    if (!FT_IS_SCALABLE(impl->face) || impl->face->units_per_EM == 0) {
        return nullptr;
    }
    impl->scale = 1 / impl->capitals();
    return std::shared_ptr<GlyphFont>(new GlyphFont(std::move(impl))); // its maker is private
}

bool GlyphFont::has(char32_t character) const {
    const std::lock_guard lock(impl_->mutex);
    return FT_Get_Char_Index(impl_->face, character) != 0;
}

double GlyphFont::descent() const { return -impl_->face->descender * impl_->scale; }

std::shared_ptr<const Glyph> GlyphFont::glyph(char32_t character, double deviation) {
    constexpr double kFinest = 1.0 / 4096, kCoarsest = 1.0 / 8;
    const double wanted =
        std::isfinite(deviation) ? std::clamp(deviation, kFinest, kCoarsest) : kCoarsest;
    const int level = static_cast<int>(std::floor(std::log2(wanted)));
    const std::lock_guard lock(impl_->mutex);
    const FT_UInt index = FT_Get_Char_Index(impl_->face, character);
    auto& known = impl_->glyphs[{index, level}];
    if (known == nullptr) {
        known = std::make_shared<const Glyph>(impl_->make(index, std::ldexp(1.0, level)));
    }
    return known;
}

} // namespace draw
