// The reader of geometry streams: one method a production.
#include "stream_checker.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

namespace checker {

bool is_g9(std::string_view text) {
    const std::string copy(text);
    char* end = nullptr;
    const double value = std::strtod(copy.c_str(), &end);
    char again[64];
    std::snprintf(again, sizeof again, "%0.9g", value);
    return !copy.empty() && *end == '\0' && std::isfinite(value) && copy == again;
}

std::string read_text(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

namespace {

struct fault {
    std::string text;
};

class parser {
public:
    explicit parser(std::string_view text) {
        while (!text.empty()) {
            const std::size_t end = text.find('\n');
            if (end == text.npos) {
                throw fault{"the last line has no line end"};
            }
            lines_.push_back(text.substr(0, end));
            text.remove_prefix(end + 1);
        }
    }

    stream parse() {
        try {
            header();
            while (!at("END;")) {
                body_item();
            }
            exact("END;");
            require(stack_.empty(), "END; with an open block");
            require(next_ == lines_.size(), "lines behind END;");
        } catch (const fault& f) {
            out_.faults.push_back("line " + std::to_string(next_) + ": " + f.text);
        }
        return std::move(out_);
    }

private:
    std::string_view peek(std::size_t ahead = 0) const {
        return next_ + ahead < lines_.size() ? lines_[next_ + ahead] : std::string_view("<end>");
    }
    bool at(std::string_view prefix, std::size_t ahead = 0) const {
        return peek(ahead).starts_with(prefix);
    }
    void require(bool holds, const std::string& text) const {
        if (!holds) {
            throw fault{text};
        }
    }
    void exact(std::string_view line) {
        require(next_ < lines_.size() && peek() == line,
                "expected '" + std::string(line) + "', found '" + std::string(peek()) + "'");
        ++next_;
    }
    std::string rest(std::string_view prefix) {
        require(next_ < lines_.size() && at(prefix),
                "expected '" + std::string(prefix) + "...', found '" + std::string(peek()) + "'");
        return std::string(lines_[next_++].substr(prefix.size()));
    }
    std::int64_t integer(std::string_view prefix) {
        const std::string text = rest(prefix);
        char* end = nullptr;
        const long long value = std::strtoll(text.c_str(), &end, 10);
        require(std::to_string(value) == text, "no plain integer: " + text);
        return value;
    }
    std::uint32_t hex(std::string_view prefix) {
        const std::string text = rest(prefix);
        char again[16];
        const auto value = static_cast<std::uint32_t>(std::strtoul(text.c_str(), nullptr, 16));
        std::snprintf(again, sizeof again, "%x", value);
        require(text == again && value <= 0xffffff, "no colour: " + text);
        return value;
    }
    /// "n" in the form stands for a number, everything else for itself.
    triple numbers(std::string_view prefix, std::string_view form) {
        const std::string text = rest(prefix);
        std::string_view left = text;
        triple out{};
        std::size_t count = 0;
        for (const char c : form) {
            if (c != 'n') {
                require(left.starts_with(c), "no triple: " + text);
                left.remove_prefix(1);
                continue;
            }
            const std::string number(left.substr(0, left.find_first_of(",) ")));
            require(is_g9(number), "no %0.9g number: " + text);
            out[count++] = std::strtod(number.c_str(), nullptr);
            left.remove_prefix(number.size());
        }
        require(left.empty(), "no triple: " + text);
        return out;
    }

    void header() {
        exact("#;Qor Batch Geometry from AutoCad");
        static const std::regex time(
            "(Sun|Mon|Tues|Wednes|Thurs|Fri|Satur)day, [A-Z][a-z]+ [0-3][0-9], [0-9]{4}, "
            "(0[1-9]|1[0-2]):[0-5][0-9]:[0-6][0-9] (AM|PM)");
        require(std::regex_match(rest("#;"), time), "the second line is no time");
        exact("DFFC;c8c8c8");
        exact("DFEC;000000");
        while (at("MATF;")) {
            const std::string file = rest("MATF;");
            static const std::regex stem("[-_%0-9a-zA-Z ]*\\.TsMaterial");
            require(std::regex_match(file, stem), "no encoded material file: " + file);
            const auto index = static_cast<int>(integer("MATI;"));
            require(index >= 10, "a material index below 10");
            out_.materials[index] = file;
        }
    }

    void brackets() {
        while (at("#;BLOK: ")) {
            const std::string comment = rest("#;BLOK: ");
            const std::string indent(2 * stack_.size(), ' ');
            const std::string name = rest("BLOK;" + indent);
            rest("BLYR;" + indent);
            std::smatch match;
            static const std::regex form("(.*)  HNDL: 0x([0-9a-f]+)  (-?[0-9]+)");
            require(std::regex_match(comment, match, form) && match[1] == indent + name,
                    "a block comment that does not fit: " + comment);
            require(static_cast<std::uint32_t>(std::stoul(match[2], nullptr, 16)) ==
                        static_cast<std::uint32_t>(std::stoll(match[3])),
                    "two handles that differ: " + comment);
            stack_.push_back(name);
            ++out_.brackets;
            bracket_is_empty_ = true;
        }
    }

    void body_item() {
        if (at("EBLK;")) {
            require(!stack_.empty(), "EBLK without a block");
            require(!bracket_is_empty_, "a block without geometry");
            exact("EBLK;" + std::string(2 * (stack_.size() - 1), ' ') + stack_.back());
            exact("#;#;");
            stack_.pop_back();
        } else if (at("#;ACAD ")) {
            plain_mesh();
        } else {
            shell();
        }
    }

    void properties(mesh& m) {
        if (at("LITE;") || at("DYLT;")) {
            m.light = static_cast<int>(integer(at("LITE;") ? "LITE;" : "DYLT;"));
            require(m.light >= 0, "a light number below 0");
        }
        exact("THICK;1");
        exact("SHDW;1");
    }
    static bool is_key(const std::string& key) {
        static const std::regex form(
            "LAY:.*|COL:[0-9]{1,3}|RGB:\\([0-9]{1,3},[0-9]{1,3},[0-9]{1,3}\\)");
        return std::regex_match(key, form);
    }
    void material(mesh& m, bool is_shell) {
        m.material = rest("#;MATL: ");
        if (is_shell) {
            m.color = hex("#;COLOR: ");
            if (at("#;KEY: ")) {
                m.key = rest("#;KEY: ");
                require(is_key(m.key), "no mapping key: " + m.key);
            }
        }
        m.material_index = static_cast<int>(integer("MATL;"));
        require(m.material_index == 0 || out_.materials.contains(m.material_index),
                "MATL names no material of the list");
    }
    void rotation(mesh& m) {
        const std::string text = rest("BROT;");
        char again[64];
        m.rotation = std::strtod(text.c_str(), nullptr);
        std::snprintf(again, sizeof again, "%g", m.rotation);
        require(text == again, "no %g number: " + text);
    }

    void plain_mesh() {
        mesh m;
        m.kind = rest("#;ACAD ");
        static const std::set<std::string> kinds{"CIRCLE 1;", "ARC - Rad;", "LINE;", "PLINE - T;",
                                                 "MESH;"};
        require(kinds.contains(m.kind), "no primitive: " + m.kind);
        m.kind.pop_back();
        exact("MESH;");
        require(at("MPUV;0") || at("MPUV;1"), "MPUV is missing");
        ++next_;
        properties(m);
        if (at("LLIT;")) {
            rest("LLIT;");
        }
        if (at("NOLY;")) {
            exact("NOLY;0");
        } else {
            m.key = rest("LAYR;");
            require(is_key(m.key), "no mapping key: " + m.key);
        }
        m.color = hex("COLR;");
        m.color_index = static_cast<int>(integer("COLN;"));
        color_fits_key(m);
        material(m, false);
        m.handle = static_cast<std::uint64_t>(integer("HNDL;"));
        rotation(m);
        if (m.light != -1) {
            require(integer("LITE;") == m.light, "two light numbers");
        }
        brackets();
        vertices(m, m.kind == "MESH");
        while (at("FACE;")) {
            face(m);
        }
        end_of_mesh(std::move(m));
    }
    void color_fits_key(const mesh& m) {
        if (m.key.starts_with("RGB:")) {
            require(m.color_index > 255, "a true colour with an index");
        } else if (m.key.starts_with("COL:")) {
            require(m.key == "COL:" + std::to_string(m.color_index), "key and COLN differ");
        } else {
            require(m.color_index == 256 || m.color_index == 0, "an own colour without its key");
        }
    }

    void shell() {
        brackets();
        mesh m;
        m.kind = "SHELL";
        exact("#;NEW MESH;");
        exact("MESH;");
        exact("#;ACAD SHELL;");
        exact("CULL;0");
        require(at("MPUV;0") || at("MPUV;1"), "MPUV is missing");
        ++next_;
        properties(m);
        material(m, true);
        if (at("HNDL;")) {
            m.handle = static_cast<std::uint64_t>(integer("HNDL;"));
            require(m.handle != 0, "HNDL;0 in a shell");
        }
        rotation(m);
        vertices(m, true);
        require(m.vertices.size() >= 3, "a shell of less than 3 points");
        while (at("FACE;") || at("#;Need Triangulator")) {
            if (at("FACE;")) {
                face(m);
            } else {
                exact("#;Need Triangulator");
            }
        }
        end_of_mesh(std::move(m));
    }

    void vertices(mesh& m, bool textured) {
        while (at("NORM;") || at("UVQ;") || at("VERT;")) {
            vertex v;
            if (at("NORM;")) {
                v.normal = numbers("NORM;", "(n,n,n)");
                v.has_normal = true;
                const double length =
                    std::sqrt(v.normal[0] * v.normal[0] + v.normal[1] * v.normal[1] +
                              v.normal[2] * v.normal[2]);
                require(length < 1e-6 || std::abs(length - 1) < 1e-6, "a normal that is not unit");
            }
            if (textured) {
                numbers("UVQ;", "(n,n,0)");
                v.has_texture = true;
            }
            v.position = numbers("VERT;", "(n,n, n)");
            const auto number = static_cast<int>(integer("ADDV;"));
            const int wanted = m.vertices.empty() ? 0 : m.vertices.rbegin()->first + 1;
            // Only the upper centre of a tube leaves a gap.
            require(number == wanted || (m.kind == "CIRCLE 1" && number == wanted + 1),
                    "ADDV out of order");
            m.vertices[number] = v;
        }
    }
    void face(mesh& m) {
        const std::string text = rest("FACE;");
        std::array<int, 3> f{};
        char end = 0;
        require(std::sscanf(text.c_str(), "%d,%d,%d%c", &f[0], &f[1], &f[2], &end) == 3 &&
                    text == std::to_string(f[0]) + "," + std::to_string(f[1]) + "," +
                                std::to_string(f[2]),
                "no face: " + text);
        for (const int corner : f) {
            require(m.vertices.contains(corner), "FACE names no vertex: " + text);
        }
        require(f[0] != f[1] && f[1] != f[2] && f[2] != f[0], "two equal corners: " + text);
        m.faces.push_back(f);
    }
    void end_of_mesh(mesh m) {
        exact("EMSH;");
        exact("#;");
        m.blocks = stack_;
        bracket_is_empty_ = false;
        out_.meshes.push_back(std::move(m));
    }

    std::vector<std::string_view> lines_;
    std::size_t next_ = 0;
    std::vector<std::string> stack_;
    bool bracket_is_empty_ = false;
    stream out_;
};

} // namespace

stream check_stream(std::string_view text) {
    try {
        return parser(text).parse();
    } catch (const fault& f) {
        stream out;
        out.faults.push_back(f.text);
        return out;
    }
}

} // namespace checker
