#include "part_maker.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <map>

namespace test_acis {

namespace {

template <class... T>
struct Overloaded : T... {
    using T::operator()...;
};

bool isTopology(const std::string& kind) {
    static const std::vector<std::string> kinds{"body", "lump",   "shell", "subshell", "face",
                                                "loop", "coedge", "edge",  "vertex"};
    return std::find(kinds.begin(), kinds.end(), kind.substr(kind.rfind('-') + 1)) != kinds.end();
}

std::string textOf(const Value& value, int version) {
    const Overloaded write{
        [](const Ref& ref) { return "$" + std::to_string(ref.number); },
        [](const Int& number) { return std::to_string(number.value); },
        [](double number) { return fmt::format("{}", number); },
        [](const Enum& word) { return std::string(word.word); },
        [](const Word& word) { return std::string(word.text); },
        [version](const Text& text) {
            return (version >= 700 ? "@" : "") + std::to_string(text.text.size()) + " " + text.text;
        },
        [](const Literal& literal) { return literal.text; },
        [version](const Flag& flag) {
            const bool numbers = version < 200 && flag.if_false == std::string("forward");
            const char* const word = flag.value ? flag.if_true : flag.if_false;
            return numbers ? std::to_string(static_cast<int>(flag.value)) : std::string(word);
        },
        [](const Open&) { return std::string("{"); },
        [](const Close&) { return std::string("}"); },
        [](const Point& p) { return fmt::format("{} {} {}", p.x, p.y, p.z); },
    };
    return std::visit(write, value);
}

class Bytes {
public:
    explicit Bytes(bool wide)
      : wide_(wide) {}
    std::string bytes;

    void tag(int number) { bytes += static_cast<char>(number); }
    template <class T>
    void plain(T value) {
        const auto raw = std::bit_cast<std::array<char, sizeof(T)>>(value);
        bytes.append(raw.data(), raw.size());
    }
    void integer(std::int64_t value) {
        if (wide_) {
            plain(value);
        } else {
            plain(static_cast<std::int32_t>(value));
        }
    }
    void real(double number) {
        tag(6);
        plain(number);
    }
    void text(int tag_number, const std::string& text) {
        tag(tag_number);
        plain(static_cast<std::uint8_t>(text.size()));
        bytes += text;
    }
    void kind(const std::string& kind) {
        std::size_t begin = 0;
        for (std::size_t end = kind.find('-'); end != kind.npos; end = kind.find('-', begin)) {
            text(14, kind.substr(begin, end - begin));
            begin = end + 1;
        }
        text(13, kind.substr(begin));
    }
    void value(const Value& value) {
        const Overloaded write{
            [this](const Ref& ref) { tagged(12, ref.number); },
            [this](const Int& number) { tagged(4, number.value); },
            [this](double number) { real(number); },
            [this](const Enum& word) { tagged(21, word.value); },
            [this](const Word& word) { text(13, word.text); },
            [this](const Text& text_value) { text(7, text_value.text); },
            [this](const Literal& literal) {
                tag(18);
                plain(static_cast<std::uint32_t>(literal.text.size()));
                bytes += literal.text;
            },
            [this](const Flag& flag) { tag(flag.value ? 10 : 11); },
            [this](const Open&) { tag(15); },
            [this](const Close&) { tag(16); },
            [this](const Point& p) {
                tag(19);
                plain(p.x);
                plain(p.y);
                plain(p.z);
            },
        };
        std::visit(write, value);
    }

private:
    void tagged(int tag_number, std::int64_t value) {
        tag(tag_number);
        integer(value);
    }
    bool wide_;
};

Point minus(Point a, Point b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Point cross(Point a, Point b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double length(Point a) { return std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z); }
Point unit(Point a) {
    const double size = length(a);
    return {a.x / size, a.y / size, a.z / size};
}

} // namespace

std::vector<Release> allReleases() {
    return {{105, Form::kText},     {106, Form::kText, true}, {200, Form::kText},
            {400, Form::kText},     {400, Form::kText, true}, {500, Form::kText},
            {700, Form::kText},     {2500, Form::kText},      {21200, Form::kText},
            {22300, Form::kText},   {700, Form::kBinary4},    {22300, Form::kBinary4},
            {23100, Form::kBinary8}};
}

std::string nameOf(const Release& release) {
    static const std::map<Form, std::string> forms{
        {Form::kText, "Text"}, {Form::kBinary4, "Binary4_"}, {Form::kBinary8, "Binary8_"}};
    return forms.at(release.form) + std::to_string(release.version) +
           (release.record_numbers ? "Numbered" : "");
}

int PartMaker::reserve() {
    records_.push_back({"ignored", {}, -1});
    return static_cast<int>(records_.size()) - 1;
}

int PartMaker::add(std::string kind, Values values) {
    records_.push_back({std::move(kind), std::move(values), -1});
    return static_cast<int>(records_.size()) - 1;
}

void PartMaker::set(int number, std::string kind, Values values) {
    record(number) = {std::move(kind), std::move(values), -1};
}

int PartMaker::vertex(Point p) {
    const int point = add("point", {p});
    Values values{Ref{-1}};
    if (release_.version >= 22300) {
        values.emplace_back(Int{0});
    }
    values.emplace_back(Ref{point});
    return add("vertex", std::move(values));
}

int PartMaker::edge(int start, int end, int curve, double from, double to, bool reversed) {
    Values values;
    const bool ranges = release_.version >= 500;
    values.emplace_back(Ref{start});
    if (ranges) {
        values.emplace_back(from);
    }
    values.emplace_back(Ref{end});
    if (ranges) {
        values.emplace_back(to);
    }
    values.insert(values.end(), {Ref{-1}, Ref{curve}, Flag{reversed}});
    if (release_.version >= 600) {
        values.emplace_back(Text{"unknown"});
    }
    return add("edge", std::move(values));
}

int PartMaker::straight(Point from, Point direction) {
    return add("straight-curve", {from, direction, infinite(), infinite()});
}

int PartMaker::circle(Point center, Point normal, Point major, double ratio) {
    return add("ellipse-curve", {center, normal, major, ratio, infinite(), infinite()});
}

int PartMaker::plane(Point origin, Point normal, Point u) {
    return add("plane-surface", {origin, normal, u, Flag{false, "forward_v", "reverse_v"},
                                 infinite(), infinite(), infinite(), infinite()});
}

int PartMaker::cone(Point center, Point axis, Point major, double sine, double cosine,
                    double ratio) {
    Values values{center, axis, major, ratio, infinite(), infinite(), sine, cosine};
    if (release_.version >= 400) {
        values.emplace_back(length(major));
    }
    values.insert(values.end(), {Flag{}, infinite(), infinite(), infinite(), infinite()});
    return add("cone-surface", std::move(values));
}

int PartMaker::face(int surface, const std::vector<LoopOfUses>& loops, bool reversed,
                    bool double_sided) {
    const int face = reserve();
    int next_loop = -1;
    for (auto loop = loops.rbegin(); loop != loops.rend(); ++loop) {
        const int number = reserve();
        const int first = static_cast<int>(records_.size());
        const int count = static_cast<int>(loop->size());
        for (int i = 0; i < count; ++i) {
            const Use& use = (*loop)[static_cast<std::size_t>(i)];
            Values values{Ref{first + (i + 1) % count},
                          Ref{first + (i + count - 1) % count},
                          Ref{-1},
                          Ref{use.edge},
                          Flag{use.reversed},
                          Ref{number}};
            if (release_.version >= 22300) {
                values.emplace_back(Int{0});
            }
            values.emplace_back(Ref{use.pcurve});
            add("coedge", std::move(values));
        }
        set(number, "loop", {Ref{next_loop}, Ref{first}, Ref{face}});
        next_loop = number;
    }
    Values values{Ref{-1},
                  Ref{next_loop},
                  Ref{-1},
                  Ref{-1},
                  Ref{surface},
                  Flag{reversed},
                  Flag{double_sided, "single", "double"}};
    if (double_sided) {
        values.emplace_back(Flag{false, "out", "in"});
    }
    set(face, "face", std::move(values));
    return face;
}

int PartMaker::shell(const std::vector<int>& faces) {
    const int shell = reserve();
    for (std::size_t i = 0; i < faces.size(); ++i) {
        record(faces[i]).values[0] = Ref{i + 1 < faces.size() ? faces[i + 1] : -1};
        record(faces[i]).values[2] = Ref{shell};
    }
    Values values{Ref{-1}, Ref{-1}, Ref{faces.empty() ? -1 : faces[0]}};
    if (release_.version >= 107) {
        values.emplace_back(Ref{-1});
    }
    values.emplace_back(Ref{-1});
    set(shell, "shell", std::move(values));
    return shell;
}

int PartMaker::lump(const std::vector<int>& shells) {
    for (std::size_t i = 0; i + 1 < shells.size(); ++i) {
        record(shells[i]).values[0] = Ref{shells[i + 1]};
    }
    return add("lump", {Ref{-1}, Ref{shells.empty() ? -1 : shells[0]}, Ref{-1}});
}

void PartMaker::body(const std::vector<int>& lumps, int transform) {
    for (std::size_t i = 0; i + 1 < lumps.size(); ++i) {
        record(lumps[i]).values[0] = Ref{lumps[i + 1]};
    }
    add("body", {Ref{lumps.empty() ? -1 : lumps[0]}, Ref{-1}, Ref{transform}});
}

void PartMaker::solid(const std::vector<int>& faces, int transform) {
    body({lump({shell(faces)})}, transform);
}

std::vector<int> PartMaker::polyhedron(const std::vector<Point>& points,
                                       const std::vector<std::vector<std::vector<int>>>& faces) {
    std::vector<int> vertices;
    std::map<std::pair<int, int>, int> edges;
    for (const Point& p : points) {
        vertices.push_back(vertex(p));
    }
    const auto use_of = [&](int from, int to) {
        if (const auto back = edges.find({to, from}); back != edges.end()) {
            return Use{back->second, true};
        }
        if (!edges.contains({from, to})) {
            const Point way =
                minus(points[static_cast<std::size_t>(to)], points[static_cast<std::size_t>(from)]);
            const int curve = straight(points[static_cast<std::size_t>(from)], unit(way));
            edges[{from, to}] = edge(vertices[static_cast<std::size_t>(from)],
                                     vertices[static_cast<std::size_t>(to)], curve, 0, length(way));
        }
        return Use{edges[{from, to}], false};
    };
    std::vector<int> made;
    for (const auto& loops : faces) {
        std::vector<LoopOfUses> uses;
        for (const std::vector<int>& loop : loops) {
            uses.emplace_back();
            for (std::size_t i = 0; i < loop.size(); ++i) {
                uses.back().push_back(use_of(loop[i], loop[(i + 1) % loop.size()]));
            }
        }
        const auto corner = [&](std::size_t i) {
            return points[static_cast<std::size_t>(loops[0][i])];
        };
        const Point u = unit(minus(corner(1), corner(0)));
        const Point normal = unit(cross(u, minus(corner(2), corner(1))));
        // Every other face has its surface the wrong way and says so.
        const bool turned = made.size() % 2 == 1;
        const Point stored = turned ? minus({}, normal) : normal;
        made.push_back(face(plane(corner(0), stored, u), uses, turned));
    }
    return made;
}

Values PartMaker::heading(const MadeRecord& record) const {
    const std::string& kind = record.kind;
    Values values{Ref{record.attribute}};
    const bool attribute = kind.ends_with("attrib");
    if (release_.version < 700) {
        return values;
    }
    values.emplace_back(Int{-1});
    if (release_.version >= 1000 && release_.version < 10000 && !attribute) {
        values.emplace_back(Int{-1});
    }
    const bool geometry = kind.ends_with("-surface") || kind.ends_with("-curve") ||
                          kind == "pcurve" || kind == "point";
    if (isTopology(kind) || geometry) {
        values.emplace_back(Ref{-1});
    }
    return values;
}

std::string PartMaker::writeText() const {
    std::string text = fmt::format("{} {} 1 0\n", release_.version, records_.size());
    if (release_.version >= 200) {
        const char* const mark = release_.version >= 700 ? "@" : "";
        text += fmt::format("{0}4 Test {0}8 ACIS 1.0 {0}24 Mon Jan 01 00:00:00 2001\n"
                            "1 9.9999999999999995e-007 1e-010\n",
                            mark);
    }
    for (std::size_t i = 0; i < records_.size(); ++i) {
        if (release_.record_numbers) {
            text += fmt::format("-{} ", i);
        }
        text += records_[i].kind;
        for (const Values& values : {heading(records_[i]), records_[i].values}) {
            for (const Value& value : values) {
                text += " " + textOf(value, release_.version);
            }
        }
        text += " #\n";
    }
    return text + (release_.version > 10000 ? "End-of-ASM-data\n" : "End-of-ACIS-data\n");
}

std::string PartMaker::writeBinary() const {
    const bool wide = release_.form == Form::kBinary8;
    Bytes out(wide);
    out.bytes = release_.version < 10000 ? "ACIS BinaryFile"
                : wide                   ? "ASM BinaryFile8"
                                         : "ASM BinaryFile4";
    for (const int number : {release_.version, static_cast<int>(records_.size()), 1, 0}) {
        out.integer(number);
    }
    for (const char* text : {"Test", "ACIS 1.0", "Mon Jan 01 00:00:00 2001"}) {
        out.text(7, text);
    }
    for (const double number : {1.0, 1e-6, 1e-10}) {
        out.real(number);
    }
    for (const MadeRecord& record : records_) {
        out.kind(record.kind);
        for (const Values& values : {heading(record), record.values}) {
            for (const Value& value : values) {
                out.value(value);
            }
        }
        out.tag(17);
    }
    out.kind("End-of-ASM-data");
    return out.bytes;
}

std::string PartMaker::write() const {
    return release_.form == Form::kText ? writeText() : writeBinary();
}

brep::Body PartMaker::read() const { return readPart(write()); }

} // namespace test_acis
