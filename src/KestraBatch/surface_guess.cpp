// The table of words that tell a surface, and how each kind looks.
#include "KestraBatch/surface_guess.h"

#include "KestraBatch/color.h"

#include <algorithm>
#include <array>
#include <string>

namespace KestraBatch {

namespace {

struct WordRow {
    std::string_view word; ///< lower case; a plural "s" behind it counts as the same word
    SurfaceKind kind;
};

constexpr auto words = std::to_array<WordRow>({
    {"glass", SurfaceKind::glass},      {"glazing", SurfaceKind::glass},
    {"glaz", SurfaceKind::glass},       {"glas", SurfaceKind::glass},
    {"verre", SurfaceKind::glass},      {"vidrio", SurfaceKind::glass},
    {"vetro", SurfaceKind::glass},      {"pane", SurfaceKind::glass},
    {"window", SurfaceKind::glass},     {"water", SurfaceKind::water},
    {"pool", SurfaceKind::water},       {"pond", SurfaceKind::water},
    {"wasser", SurfaceKind::water},     {"eau", SurfaceKind::water},
    {"agua", SurfaceKind::water},       {"metal", SurfaceKind::metal},
    {"metall", SurfaceKind::metal},     {"steel", SurfaceKind::metal},
    {"stahl", SurfaceKind::metal},      {"alu", SurfaceKind::metal},
    {"aluminium", SurfaceKind::metal},  {"aluminum", SurfaceKind::metal},
    {"chrome", SurfaceKind::metal},     {"zinc", SurfaceKind::metal},
    {"copper", SurfaceKind::metal},     {"brass", SurfaceKind::metal},
    {"iron", SurfaceKind::metal},       {"bronze", SurfaceKind::metal},
    {"inox", SurfaceKind::metal},       {"acier", SurfaceKind::metal},
    {"grass", SurfaceKind::matte},      {"lawn", SurfaceKind::matte},
    {"meadow", SurfaceKind::matte},     {"soil", SurfaceKind::matte},
    {"earth", SurfaceKind::matte},      {"gravel", SurfaceKind::matte},
    {"sand", SurfaceKind::matte},       {"asphalt", SurfaceKind::matte},
    {"road", SurfaceKind::matte},       {"paving", SurfaceKind::matte},
    {"concrete", SurfaceKind::matte},   {"brick", SurfaceKind::matte},
    {"plaster", SurfaceKind::matte},    {"stucco", SurfaceKind::matte},
    {"tree", SurfaceKind::matte},       {"foliage", SurfaceKind::matte},
    {"leaf", SurfaceKind::matte},       {"leaves", SurfaceKind::matte},
    {"hedge", SurfaceKind::matte},      {"shrub", SurfaceKind::matte},
    {"fabric", SurfaceKind::matte},     {"carpet", SurfaceKind::matte},
    {"ground", SurfaceKind::matte},     {"terrain", SurfaceKind::matte},
    {"site", SurfaceKind::matte},       {"marble", SurfaceKind::polished},
    {"granite", SurfaceKind::polished}, {"lacquer", SurfaceKind::polished},
    {"ceramic", SurfaceKind::polished}, {"tile", SurfaceKind::polished},
    {"parquet", SurfaceKind::polished},
});

constexpr auto not_a_pane = std::to_array<std::string_view>(
    {"frame", "sill", "trim", "mullion", "rahmen", "tag", "anno", "text", "wall", "lintel",
     "shutter", "opening", "roof", "house", "table", "deck", "edge", "coping", "surround"});

bool is_letter(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 'a' && byte <= 'z') || byte >= 128; // the bytes of any other script
}

/// Takes the next word from `text`, which is lower case.
std::string_view next_word(std::string_view& text) {
    const auto begin = std::find_if(text.begin(), text.end(), is_letter);
    const auto end = std::find_if_not(begin, text.end(), is_letter);
    const std::string_view word(text.data() + (begin - text.begin()),
                                static_cast<std::size_t>(end - begin));
    text.remove_prefix(static_cast<std::size_t>(end - text.begin()));
    return word;
}

bool same_word(std::string_view word, std::string_view row) {
    return word == row ||
           (word.size() == row.size() + 1 && word.back() == 's' && word.starts_with(row));
}

renderer::Rgb mix(renderer::Rgb a, renderer::Rgb b, float share) {
    return a * (1 - share) + b * share;
}

} // namespace

SurfaceKind guess_surface(std::string_view name) {
    std::string lower(name);
    for (char& c : lower) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    SurfaceKind kind = SurfaceKind::paint;
    bool pane = true;
    std::string_view rest = lower;
    for (std::string_view word = next_word(rest); !word.empty(); word = next_word(rest)) {
        for (const std::string_view row : not_a_pane) {
            pane = pane && !same_word(word, row);
        }
        for (const WordRow& row : words) {
            if (kind == SurfaceKind::paint && same_word(word, row.word)) {
                kind = row.kind;
            }
        }
    }
    const bool needs_pane = kind == SurfaceKind::glass || kind == SurfaceKind::water;
    return needs_pane && !pane ? SurfaceKind::paint : kind;
}

renderer::Material make_surface(SurfaceKind kind, renderer::Rgb linear) {
    renderer::Material surface;
    surface.base_color = reflectance_of(linear);
    switch (kind) {
    case SurfaceKind::paint: // wall paint: diffuse under a light coat
        surface.roughness = 0.6f;
        break;
    case SurfaceKind::matte:
        surface.roughness = 0.9f;
        surface.specular = 0.25f;
        break;
    case SurfaceKind::glass: // a clear pane with a breath of the drawing's colour
        surface.base_color = mix({0.97f, 0.98f, 0.97f}, linear, 0.15f);
        surface.roughness = 0.0f;
        surface.transmission = 0.95f;
        surface.ior = 1.52f;
        break;
    case SurfaceKind::water: // what lies below is dark; the surface is index 1.33
        surface.base_color = mix({0.015f, 0.06f, 0.075f}, linear * 0.25f, 0.3f);
        surface.roughness = 0.06f;
        surface.specular = 0.25f;
        surface.ior = 1.33f;
        break;
    case SurfaceKind::metal: // a brushed sheet; drawings colour metals darker than they reflect
        surface.base_color = mix(reflectance_of(linear), {0.6f, 0.6f, 0.6f}, 0.3f);
        surface.roughness = 0.35f;
        surface.metallic = 1.0f;
        break;
    case SurfaceKind::polished:
        surface.roughness = 0.2f;
        break;
    }
    return surface;
}

} // namespace KestraBatch
