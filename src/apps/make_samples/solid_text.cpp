// The text form of solid data: one record a line, pointers as record numbers. The layout of version
// 7.0: each entity begins with its attribute, -1 and its history, all absent here.
#include "apps/make_samples/bodies.h"

#include <fmt/format.h>

#include <map>

namespace make_samples {

namespace {

/// Without the last digits, in which mathematical libraries differ.
std::string word(double value) { return fmt::format("{:.12g}", value + 0.0); }
std::string words(const AcGeVector3d& v) { return word(v.x) + ' ' + word(v.y) + ' ' + word(v.z); }
std::string words(const AcGePoint3d& p) { return words(p.asVector()); }
const char* sense(bool reversed) { return reversed ? "reversed" : "forward"; }

/// Distinct knots with their counts; those at the ends count one less, as this format has it.
std::string knot_words(const std::vector<double>& knots, std::size_t& distinct) {
    std::map<double, int> counts;
    for (const double knot : knots) {
        ++counts[knot];
    }
    --counts.begin()->second;
    --counts.rbegin()->second;
    distinct = counts.size();
    std::string text;
    for (const auto& [knot, count] : counts) {
        text += word(knot) + fmt::format(" {} ", count);
    }
    return text;
}

struct CurveWords {
    std::string operator()(const std::monostate&) const { return {}; }
    std::string operator()(const brep::Line& c) const {
        return "straight-curve $-1 -1 $-1 " + words(c.origin) + ' ' + words(c.direction) + " I I";
    }
    std::string operator()(const brep::Ellipse& c) const {
        return "ellipse-curve $-1 -1 $-1 " + words(c.center) + ' ' + words(c.normal) + ' ' +
               words(c.major) + " " + word(c.ratio) + " I I";
    }
    std::string operator()(const brep::BSplineCurve&) const { return {}; }
};

struct SurfaceWords {
    template <class Other>
    std::string operator()(const Other&) const {
        return {};
    }
    std::string operator()(const brep::Plane& s) const {
        return "plane-surface $-1 -1 $-1 " + words(s.origin) + ' ' + words(s.normal) + ' ' +
               words(s.u_axis) + " forward_v I I I I";
    }
    std::string operator()(const brep::Cone& s) const {
        return "cone-surface $-1 -1 $-1 " + words(s.center) + ' ' + words(s.axis) + ' ' +
               words(s.major) +
               fmt::format(" {} I I {} {} {} forward I I I I", word(s.ratio), word(s.sine),
                           word(s.cosine), word(s.major.length()));
    }
    std::string operator()(const brep::Sphere& s) const {
        return "sphere-surface $-1 -1 $-1 " + words(s.center) + " " + word(s.radius) + " " +
               words(s.u_axis) + ' ' + words(s.pole) + " forward_v I I I I";
    }
    std::string operator()(const brep::Torus& s) const {
        return "torus-surface $-1 -1 $-1 " + words(s.center) + ' ' + words(s.axis) +
               fmt::format(" {} {} ", word(s.major_radius), word(s.minor_radius)) +
               words(s.u_axis) + " forward_v I I I I";
    }
    std::string operator()(const brep::BSplineSurface& s) const {
        std::size_t knots_u = 0, knots_v = 0;
        const std::string u = knot_words(s.knots_u, knots_u), v = knot_words(s.knots_v, knots_v);
        std::string text =
            fmt::format("spline-surface $-1 -1 $-1 forward {{ exactsur full nurbs {} {} both {} {} "
                        "none none {} {} {}{}",
                        s.degree_u, s.degree_v, s.closed_u ? "closed" : "open",
                        s.closed_v ? "closed" : "open", knots_u, knots_v, u, v);
        // Points run along u first.
        const std::size_t count_v = s.knots_v.size() - static_cast<std::size_t>(s.degree_v) - 1;
        const std::size_t count_u = s.points.size() / count_v;
        for (std::size_t j = 0; j < count_v; ++j) {
            for (std::size_t i = 0; i < count_u; ++i) {
                const std::size_t at = i * count_v + j;
                text += words(s.points[at]) + " " + word(s.weights[at]) + " ";
            }
        }
        return text + "0 0 0 0 0 0 0 } I I I I";
    }
};

/// Gives every object its record number, then writes them in that order.
class SolidText {
public:
    explicit SolidText(const brep::Body& body)
      : body_(body) {}
    std::string write();

private:
    struct CoedgeRef {
        std::size_t loop = 0, first = 0, count = 0, place = 0;
        const brep::Coedge* coedge = nullptr;
    };
    void number();
    void faces();
    void coedges();
    void edges();
    std::size_t partner(std::size_t coedge) const;
    void record(const std::string& text) { out_ += text + " #\n"; }

    const brep::Body& body_;
    std::vector<CoedgeRef> refs_;
    std::map<int, std::vector<std::size_t>> users_; ///< coedges of each edge
    std::size_t face0_ = 3, surface0_ = 0, loop0_ = 0, coedge0_ = 0, edge0_ = 0, vertex0_ = 0,
                point0_ = 0, curve0_ = 0;
    std::string out_;
};

void SolidText::number() {
    const std::vector<brep::Face>& faces = body_.lumps.front().shells.front().faces;
    std::size_t loops = 0;
    for (const brep::Face& face : faces) {
        for (const brep::Loop& loop : face.loops) {
            const std::size_t first = refs_.size();
            for (const brep::Coedge& coedge : loop.coedges) {
                users_[coedge.edge].push_back(refs_.size());
                refs_.push_back({loops, first, loop.coedges.size(), refs_.size() - first, &coedge});
            }
            ++loops;
        }
    }
    surface0_ = face0_ + faces.size();
    loop0_ = surface0_ + body_.surfaces.size();
    coedge0_ = loop0_ + loops;
    edge0_ = coedge0_ + refs_.size();
    vertex0_ = edge0_ + body_.edges.size();
    point0_ = vertex0_ + body_.vertices.size();
    curve0_ = point0_ + body_.vertices.size();
}

void SolidText::faces() {
    const std::vector<brep::Face>& faces = body_.lumps.front().shells.front().faces;
    std::size_t loop = loop0_;
    std::string loop_records;
    std::size_t coedge = coedge0_;
    for (std::size_t i = 0; i < faces.size(); ++i) {
        const brep::Face& face = faces[i];
        const std::string next = i + 1 < faces.size() ? std::to_string(face0_ + i + 1) : "-1";
        const std::string first = face.loops.empty() ? "-1" : std::to_string(loop);
        record(fmt::format("face $-1 -1 $-1 ${} ${} $2 $-1 ${} {} single", next, first,
                           surface0_ + static_cast<std::size_t>(face.surface),
                           sense(face.reversed)));
        for (std::size_t k = 0; k < face.loops.size(); ++k, ++loop) {
            const std::string following =
                k + 1 < face.loops.size() ? std::to_string(loop + 1) : "-1";
            loop_records +=
                fmt::format("loop $-1 -1 $-1 ${} ${} ${} #\n", following, coedge, face0_ + i);
            coedge += face.loops[k].coedges.size();
        }
    }
    for (const brep::Surface& surface : body_.surfaces) {
        record(std::visit(SurfaceWords{}, surface));
    }
    out_ += loop_records;
}

std::size_t SolidText::partner(std::size_t coedge) const {
    const std::vector<std::size_t>& users = users_.at(refs_[coedge].coedge->edge);
    return users.front() == coedge ? users.back() : users.front();
}

void SolidText::coedges() {
    for (std::size_t i = 0; i < refs_.size(); ++i) {
        const CoedgeRef& ref = refs_[i];
        const std::size_t next = ref.first + (ref.place + 1) % ref.count;
        const std::size_t previous = ref.first + (ref.place + ref.count - 1) % ref.count;
        const std::size_t other = partner(i);
        record(fmt::format("coedge $-1 -1 $-1 ${} ${} ${} ${} {} ${} $-1", coedge0_ + next,
                           coedge0_ + previous,
                           other == i ? "-1" : std::to_string(coedge0_ + other),
                           edge0_ + static_cast<std::size_t>(ref.coedge->edge),
                           sense(ref.coedge->reversed), loop0_ + ref.loop));
    }
}

void SolidText::edges() {
    std::map<int, std::size_t> edge_of_vertex;
    for (std::size_t i = 0; i < body_.edges.size(); ++i) {
        const brep::Edge& edge = body_.edges[i];
        edge_of_vertex.try_emplace(edge.start, edge0_ + i);
        edge_of_vertex.try_emplace(edge.end, edge0_ + i);
        record(fmt::format("edge $-1 -1 $-1 ${} {} ${} {} ${} ${} {} @7 unknown",
                           vertex0_ + static_cast<std::size_t>(edge.start), word(edge.from),
                           vertex0_ + static_cast<std::size_t>(edge.end), word(edge.to),
                           coedge0_ + users_.at(static_cast<int>(i)).front(),
                           curve0_ + static_cast<std::size_t>(edge.curve), sense(edge.reversed)));
    }
    for (std::size_t i = 0; i < body_.vertices.size(); ++i) {
        record(fmt::format("vertex $-1 -1 $-1 ${} ${}", edge_of_vertex.at(static_cast<int>(i)),
                           point0_ + i));
    }
    for (const brep::Vertex& vertex : body_.vertices) {
        record("point $-1 -1 $-1 " + words(vertex.point));
    }
    for (const brep::Curve& curve : body_.curves) {
        record(std::visit(CurveWords{}, curve));
    }
}

std::string SolidText::write() {
    number();
    out_ = "700 0 1 0\n"
           "@14 Kestra Qorvane @12 ACIS 32.0 NT @24 Thu Jan 01 00:00:00 2026\n"
           "1 9.9999999999999995e-007 1e-010\n";
    record("body $-1 -1 $-1 $1 $-1 $-1");
    record("lump $-1 -1 $-1 $-1 $2 $0");
    record(fmt::format("shell $-1 -1 $-1 $-1 $-1 ${} $-1 $1", face0_));
    faces();
    coedges();
    edges();
    out_ += "End-of-ACIS-data";
    return out_;
}

} // namespace

std::string solid_text(const brep::Body& body) { return SolidText(body).write(); }

} // namespace make_samples
