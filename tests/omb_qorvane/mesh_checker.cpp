// Meshes: preambles record by record, vertices by primitive, faces.
#include "stream_parser.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace checker {
namespace {

constexpr std::string_view lights_layer = "OMB-LIGHT-";

/// "RGB:(1,2,3)" as 0x00BBGGRR, or -1.
std::int64_t rgb_of_key(const std::string& key) {
    std::array<int, 3> rgb{};
    if (!key.starts_with("RGB:(") || !key.ends_with(')') ||
        !read_three(std::string_view(key).substr(5, key.size() - 6), rgb)) {
        return -1;
    }
    std::int64_t color = 0;
    for (int i = 0; i < 3; ++i) {
        if (rgb[i] > 255) {
            return -1;
        }
        color |= static_cast<std::int64_t>(rgb[i]) << (8 * i);
    }
    return color;
}

int index_of_key(const std::string& key) {
    const std::string text = key.starts_with("COL:") ? key.substr(4) : "";
    return is_integer(text) && text.size() <= 3 ? std::stoi(text) : -1;
}

bool is_key(const std::string& key) {
    const int index = index_of_key(key);
    return key.starts_with("LAY:") || (index >= 1 && index <= 255) || rgb_of_key(key) >= 0;
}

/// True when no channel differs by more than the one that truncation can take.
bool same_color(std::int64_t a, std::int64_t b) {
    for (int shift = 0; shift < 24; shift += 8) {
        if (std::abs((a >> shift & 255) - (b >> shift & 255)) > 1) {
            return false;
        }
    }
    return true;
}

/// The character at the beginning of a UTF-8 text, which is taken from it.
std::uint32_t take_character(std::string_view& text) {
    const auto first = static_cast<unsigned char>(text.front());
    std::size_t length = first < 0xc0 ? 1 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    length = std::min(length, text.size());
    std::uint32_t code = length == 1 ? first : first & (0xffU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3fU);
    }
    text.remove_prefix(length);
    return code;
}

/// True when the stem is this name with some characters as "%" and "%2x" of their number. A blank
/// of the name can stand for a line break, which no record can hold.
bool encodes(std::string_view stem, std::string_view name) {
    while (!name.empty()) {
        const std::string_view before = name;
        const std::uint32_t code = take_character(name);
        const std::string_view plain = before.substr(0, before.size() - name.size());
        if (stem.starts_with(plain) && plain != "%") {
            stem.remove_prefix(plain.size());
            continue;
        }
        const auto take_code = [&stem](std::uint32_t character) {
            char hex[16];
            const auto end = std::to_chars(hex, hex + sizeof hex, character, 16);
            std::string text(hex, end.ptr);
            text.insert(0, text.size() < 2 ? "% " : "%");
            const bool found = stem.starts_with(text);
            stem.remove_prefix(found ? text.size() : 0);
            return found;
        };
        if (!take_code(code) && !(code == ' ' && (take_code('\n') || take_code('\r')))) {
            return false;
        }
    }
    return stem.empty();
}

bool is_file_of(const std::string& file, const std::string& material) {
    constexpr std::size_t suffix = std::string_view(".TsMaterial").size();
    return file.size() > suffix &&
           encodes(std::string_view(file).substr(0, file.size() - suffix), material);
}

constexpr std::string_view primitives[] = {"CIRCLE 1;", "ARC - Rad;", "LINE;", "PLINE - T;",
                                           "MESH;"};

} // namespace

void stream_parser::plain_mesh() {
    object_decals();
    in_.context("the preamble of a mesh");
    mesh m;
    m.kind = in_.rest("#;ACAD ");
    in_.require(std::find(std::begin(primitives), std::end(primitives), m.kind) !=
                    std::end(primitives),
                "no comment of a primitive");
    m.kind.resize(m.kind.size() - std::min<std::size_t>(m.kind.size(), 1));
    in_.exact("MESH;");
    map_flag(m);
    in_.require(!m.textured || m.kind == "MESH",
                "only meshes and shells bring texture coordinates of their own");
    properties(m);
    std::optional<std::string> light_tag;
    if (in_.at("LLIT;")) {
        light_tag = in_.rest("LLIT;");
    }
    mapping_key(m);
    light_layer(m, light_tag);
    color_records(m);
    m.material = in_.rest("#;MATL: ");
    material_index(m, in_.integer("MATL;"));
    m.handle = in_.handle("HNDL;");
    rotation(m);
    if (m.light != -1) {
        in_.require(in_.integer("LITE;") == m.light, "the second light number is another");
    }
    brackets();
    vertices(m);
    faces(m);
    end_of_mesh(std::move(m));
}

void stream_parser::shell() {
    brackets();
    in_.context("the preamble of a shell");
    mesh m;
    m.kind = "SHELL";
    in_.exact("#;NEW MESH;");
    in_.exact("MESH;");
    in_.exact("#;ACAD SHELL;");
    in_.exact("CULL;0");
    map_flag(m);
    object_decals();
    in_.context("the preamble of a shell");
    properties(m);
    m.material = in_.rest("#;MATL: ");
    if (in_.at("#;COLOR: ")) { // our own two lines, for who reads along
        m.color = in_.color("#;COLOR: ");
        if (in_.at("#;KEY: ")) {
            m.key = in_.rest("#;KEY: ");
            in_.require(is_key(m.key), "no mapping key");
        }
    }
    material_index(m, in_.integer("MATL;"));
    if (in_.at("HNDL;")) {
        m.handle = in_.handle("HNDL;");
        in_.require(m.handle != 0, "a shell has no HNDL of 0");
    }
    rotation(m);
    vertices(m);
    in_.require(m.vertices.size() >= 3, "a shell of less than 3 points");
    faces(m);
    end_of_mesh(std::move(m));
}

void stream_parser::map_flag(mesh& m) {
    m.textured = in_.take("MPUV;1");
    if (!m.textured) {
        in_.exact("MPUV;0");
    }
}

void stream_parser::properties(mesh& m) {
    if (in_.at("LITE;") || in_.at("DYLT;")) {
        const bool dynamic = in_.at("DYLT;");
        m.light = in_.integer(dynamic ? "DYLT;" : "LITE;");
        in_.require(m.light >= 0, "a light number below 0");
        if (dynamic) {
            in_.require(dynamic_light_.value_or(m.light) == m.light, "two dynamic lights");
            dynamic_light_ = m.light;
        } else {
            in_.require(dynamic_light_ != m.light, "the dynamic light is written as DYLT");
        }
    }
    in_.exact("THICK;1");
    in_.exact("SHDW;1");
    if (in_.at("GCOR;")) {
        ground_cover(m);
    }
}

void stream_parser::ground_cover(mesh& m) {
    in_.require(in_.integer("GCOR;") >= 0, "a count below 0");
    m.cover = in_.rest("GNDC;");
    numbered_file("Plants", "AGroundCover_", "_def.TsGroundCover", next_decal_, m.cover);
    const std::size_t tail = m.cover.rfind("_def.");
    needs("Plants", m.cover);
    needs("Plants", m.cover.substr(0, tail) + ".TsGroundCover");
}

void stream_parser::mapping_key(mesh& m) {
    if (in_.at("NOLY;")) {
        in_.exact("NOLY;0");
        return;
    }
    m.key = in_.rest("LAYR;");
    in_.require(is_key(m.key), "no mapping key");
}

void stream_parser::light_layer(const mesh& m, const std::optional<std::string>& tag) {
    if (!m.key.starts_with("LAY:")) {
        in_.require(!tag || !m.key.empty(), "LLIT without a layer");
        return; // the key does not tell the layer
    }
    const std::size_t word = m.key.find(lights_layer);
    if (word == std::string::npos) {
        in_.require(!tag, "LLIT, and the layer's name does not hold OMB-LIGHT-");
    } else {
        in_.require(tag == m.key.substr(word + lights_layer.size()),
                    "LLIT does not tell what follows OMB-LIGHT- in the layer's name");
    }
}

void stream_parser::color_records(mesh& m) {
    m.color = in_.color("COLR;");
    m.color_index = in_.integer("COLN;");
    if (m.key.starts_with("RGB:")) {
        in_.require(m.color_index == 257, "COLN of a true colour is not 257");
        in_.require(same_color(rgb_of_key(m.key), m.color), "COLR and the key RGB differ");
    } else if (m.key.starts_with("COL:")) {
        in_.require(m.color_index == index_of_key(m.key), "COLN and the key COL differ");
    } else {
        in_.require(m.color_index == 256 || m.color_index == 0,
                    "a colour of its own without its key");
    }
}

void stream_parser::material_index(mesh& m, int index) {
    m.material_index = index;
    if (index != 0) {
        const auto listed = out_.materials.find(m.material_index);
        in_.require(listed != out_.materials.end(), "MATL names no index of the material list");
        in_.require(listed == out_.materials.end() || is_file_of(listed->second, m.material),
                    "MATL names another material than the comment '" + m.material + "'");
    }
    const auto first =
        std::find_if(out_.materials.begin(), out_.materials.end(),
                     [&](const auto& row) { return is_file_of(row.second, m.material); });
    if (first != out_.materials.end() && first->first != index) {
        in_.require(false, "MATL is not the first index of the material '" + m.material + "'");
    }
}

void stream_parser::rotation(mesh& m) {
    m.rotation = in_.numbers("BROT;", "%g")[0];
    in_.require(std::abs(m.rotation) <= 360, "a rotation of more than a turn");
}

void stream_parser::vertices(mesh& m) {
    in_.context("the vertices of a mesh");
    const bool textured = m.kind == "MESH" || m.kind == "SHELL";
    while (in_.at("NORM;") || in_.at("UVQ;") || in_.at("VERT;")) {
        vertex v;
        if (in_.at("NORM;")) {
            vertex_normal(m, v);
        }
        if (textured) {
            const triple uv = in_.numbers("UVQ;", "(%0.9g,%0.9g,0)");
            v.has_texture = true;
            in_.require(m.textured || (uv[0] == 0 && uv[1] == 0),
                        "MPUV is 0 and UVQ is not (0,0,0)");
        }
        v.position = in_.numbers("VERT;", "(%0.9g,%0.9g, %0.9g)");
        const int number = in_.integer("ADDV;");
        vertex_number(m, number);
        m.vertices[number] = v;
    }
    vertices_as_a_whole(m);
}

void stream_parser::vertex_normal(const mesh& m, vertex& v) {
    v.normal = in_.numbers("NORM;", "(%0.9g,%0.9g,%0.9g)");
    v.has_normal = true;
    const double length = std::hypot(v.normal[0], v.normal[1], v.normal[2]);
    in_.require(length < 1e-6 || std::abs(length - 1) < 1e-6, "a normal that is not unit");
    in_.require(m.kind != "CIRCLE 1" || !m.vertices.empty(),
                "the centre of a circle has no normal");
}

void stream_parser::vertex_number(const mesh& m, int number) {
    const std::int64_t wanted =
        m.vertices.empty() ? 0 : std::int64_t{m.vertices.rbegin()->first} + 1;
    // A tube's upper centre has its number and is not written.
    const bool has_gap = wanted > static_cast<std::int64_t>(m.vertices.size());
    const bool opens_gap = m.kind == "CIRCLE 1" && !has_gap && wanted > 0 && number == wanted + 1;
    in_.require(number == wanted || opens_gap, "ADDV out of order");
}

void stream_parser::vertices_as_a_whole(const mesh& m) {
    const auto count = static_cast<int>(m.vertices.size());
    const auto with_normal = static_cast<int>(
        std::count_if(m.vertices.begin(), m.vertices.end(),
                      [](const auto& numbered) { return numbered.second.has_normal; }));
    if (m.kind == "MESH" || m.kind == "SHELL") {
        in_.require(with_normal == 0 || with_normal == count,
                    "vertices with and without a normal in one mesh");
    } else {
        in_.require(with_normal == (m.kind == "CIRCLE 1" ? count - 1 : count),
                    "a vertex without its normal");
    }
    if (m.kind == "LINE") {
        in_.require(count >= 2 && count % 2 == 0, "a line without a top to each point");
    }
    if (m.kind == "CIRCLE 1" && count > 0) {
        const int last = m.vertices.rbegin()->first;
        int ring = last; // n; a tube goes from 0 to 2n + 2 without n + 1
        if (last >= count) {
            ring = last / 2 - 1;
            in_.require(last % 2 == 0 && !m.vertices.contains(ring + 1),
                        "a tube is not numbered 0 to n and n + 2 to 2n + 2");
        }
        in_.require(ring == 0 || ring >= 6, "a circle of less than 6 segments");
    }
}

void stream_parser::faces(mesh& m) {
    in_.context("the faces of a mesh");
    bool fanned = false;
    while (in_.at("FACE;") || in_.at("#;Need Triangulator")) {
        if (in_.at("#;")) {
            in_.exact("#;Need Triangulator");
            in_.require(m.kind == "SHELL", "only shells tell of faces with many corners");
            fanned = true;
            continue;
        }
        const std::string text = in_.rest("FACE;");
        std::array<int, 3> corners{};
        const bool good = read_three(text, corners, fanned);
        in_.require(good, "no face of the form %d,%d,%d");
        if (good) {
            // A fan over a face with holes runs over the counts of its holes, which are below 0.
            const auto known = [&](int corner) {
                return m.vertices.contains(corner) || (fanned && corner < 0);
            };
            in_.require(std::all_of(corners.begin(), corners.end(), known),
                        "FACE names no vertex of its mesh");
            in_.require(corners[0] != corners[1] && corners[1] != corners[2] &&
                            corners[2] != corners[0],
                        "a face with two equal corners");
            m.faces.push_back(corners);
        }
    }
    if (m.kind == "ARC - Rad" || m.kind == "PLINE - T") {
        in_.require(m.faces.size() % 2 == 0, "quads are written as two triangles each");
    }
    const bool plain_circle =
        m.kind == "CIRCLE 1" &&
        static_cast<std::int64_t>(m.vertices.size()) ==
            (m.vertices.empty() ? 0 : std::int64_t{m.vertices.rbegin()->first} + 1);
    in_.require(!plain_circle || m.light >= 0 || m.faces.empty(),
                "a circle without thickness has faces only as part of a lamp");
}

void stream_parser::end_of_mesh(mesh m) {
    in_.context("the end of a mesh");
    in_.exact("EMSH;");
    in_.exact("#;");
    m.blocks = stack_;
    bracket_is_empty_ = false;
    out_.meshes.push_back(std::move(m));
}

} // namespace checker
