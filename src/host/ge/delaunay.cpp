// Constrained Delaunay triangulation: points by insertion with Lawson's flips, segments by flipping
// what they cross (S. W. Sloan, "A fast algorithm for generating constrained Delaunay
// triangulations", Computers & Structures 47, 1993).
#include "host/ge/delaunay.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace ge {
namespace {

__extension__ typedef __int128 Wide;

/// Crossings beyond this leave their segments out: areas of millions of crossings are damage.
constexpr std::size_t kMostCrossings = 1'000'000;

/// Twice the area of the triangle: above 0 when it is counter-clockwise.
std::int64_t orient(const Cell& a, const Cell& b, const Cell& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// d lies inside the circle through the counter-clockwise triangle.
bool in_circle(const Cell& a, const Cell& b, const Cell& c, const Cell& d) {
    const Cell p{a.x - d.x, a.y - d.y}, q{b.x - d.x, b.y - d.y}, r{c.x - d.x, c.y - d.y};
    const auto lift = [](const Cell& v) { return v.x * v.x + v.y * v.y; };
    const auto minor = [](const Cell& v, const Cell& w) { return v.x * w.y - v.y * w.x; };
    const Wide sum =
        Wide{lift(p)} * minor(q, r) + Wide{lift(q)} * minor(r, p) + Wide{lift(r)} * minor(p, q);
    return sum > 0;
}

/// a / b to the nearest whole number, b above 0.
std::int64_t round_divide(Wide a, Wide b) {
    Wide quotient = (2 * a + b) / (2 * b);
    if ((2 * a + b) % (2 * b) < 0) {
        --quotient;
    }
    return static_cast<std::int64_t>(quotient);
}

/// Where the segments a-b and p-q, which cross, meet; rounded, and so in the boxes of both.
Cell crossing(const Cell& a, const Cell& b, const Cell& p, const Cell& q) {
    Wide from = orient(p, q, a);
    Wide all = from - orient(p, q, b);
    if (all < 0) {
        from = -from;
        all = -all;
    }
    return {a.x + round_divide((b.x - a.x) * from, all),
            a.y + round_divide((b.y - a.y) * from, all)};
}

/// A cell within a step of the segment a-b that would split it into shorter ones. Flat crossings go
/// through such an end: a new point for each would be followed by the next, a step further on.
bool near(const Cell& cell, const Cell& a, const Cell& b) {
    const auto square = [](const Cell& p, const Cell& q) {
        return (q.x - p.x) * (q.x - p.x) + (q.y - p.y) * (q.y - p.y);
    };
    const std::int64_t length = square(a, b);
    const Wide off = orient(a, b, cell);
    return off * off <= length && square(a, cell) < length && square(cell, b) < length;
}

int after(int i) { return i == 2 ? 0 : i + 1; }
int before(int i) { return i == 0 ? 2 : i - 1; }

} // namespace

Builder::Builder(std::vector<Cell> cells, std::int32_t first_corner)
  : cells_(std::move(cells)) {
    triangle_of_.assign(cells_.size(), -1);
    const std::int32_t c = first_corner;
    triangles_.resize(2);
    tri(0).corner = {c, c + 1, c + 2};
    tri(1).corner = {c, c + 2, c + 3};
    tri(0).next = {-1, 1, -1};
    tri(1).next = {-1, -1, 0};
    for (std::size_t i = 0; i < 4; ++i) {
        triangle_of_[static_cast<std::size_t>(c) + i] = i == 3 ? 1 : 0;
    }
}

Side Builder::across(const Side& side) const {
    const Triangle& t = tri(side.triangle);
    const std::int32_t other = t.next[static_cast<std::size_t>(side.edge)];
    if (other < 0) {
        return {};
    }
    const std::int32_t end = t.corner[static_cast<std::size_t>(before(side.edge))];
    for (int i = 0; i < 3; ++i) {
        if (tri(other).corner[static_cast<std::size_t>(after(i))] == end) {
            return {other, i};
        }
    }
    return {};
}

Builder::Place Builder::place_in(std::int32_t triangle, const Cell& cell) const {
    Place place{{triangle, -1}, -1};
    const Triangle& t = tri(triangle);
    for (int i = 0; i < 3; ++i) {
        const std::int32_t a = t.corner[static_cast<std::size_t>(after(i))];
        const std::int32_t b = t.corner[static_cast<std::size_t>(before(i))];
        if (at(a) == cell) {
            place.vertex = a;
        }
        const std::int64_t turn = orient(at(a), at(b), cell);
        if (turn < 0) {
            return {};
        }
        if (turn == 0) {
            place.side.edge = i;
        }
    }
    return place;
}

Builder::Place Builder::locate(const Cell& cell, std::int32_t start) const {
    std::int32_t current = start;
    std::int32_t came_from = -1;
    // Each step starts with another edge, so that a walk among long constrained triangles does not
    // go in circles; a search of all triangles stands behind it.
    for (std::size_t step = 0; step <= triangles_.size(); ++step) {
        const Triangle& t = tri(current);
        std::int32_t go = -1;
        for (std::size_t k = 0; k < 3 && go < 0; ++k) {
            const std::size_t i = (k + step) % 3;
            const std::int32_t next = t.next[i];
            if (next >= 0 && next != came_from &&
                orient(at(t.corner[(i + 1) % 3]), at(t.corner[(i + 2) % 3]), cell) < 0) {
                go = next;
            }
        }
        if (go < 0) {
            const Place place = place_in(current, cell);
            if (place.side.found()) {
                return place;
            }
            break;
        }
        came_from = current;
        current = go;
    }
    for (std::size_t i = 0; i < triangles_.size(); ++i) {
        const Place place = place_in(static_cast<std::int32_t>(i), cell);
        if (place.side.found()) {
            return place;
        }
    }
    return {};
}

void Builder::relink(std::int32_t triangle, int edge, std::int32_t next) {
    const std::int32_t other = tri(triangle).next[static_cast<std::size_t>(edge)];
    if (other < 0) {
        return;
    }
    const Side side = across({triangle, edge});
    if (side.found()) {
        tri(other).next[static_cast<std::size_t>(side.edge)] = next;
    }
}

/// Joins a new vertex to the corners of the triangle, or of the two at the edge, that it lies in.
void Builder::fan(std::int32_t vertex, const Place& place) {
    struct Rim {
        std::int32_t from, next;
        Bound outer, spoke; ///< of the rim's edge, and of the one from `from` to the new vertex
        Side side;
    };
    std::array<Rim, 4> rim{};
    std::size_t count = 0;
    std::array<std::int32_t, 4> use{};
    std::size_t used = 0;
    const auto add = [&](const Side& side, const Bound& spoke) {
        const Triangle& t = tri(side.triangle);
        const auto i = static_cast<std::size_t>(side.edge);
        rim[count++] = {t.corner[(i + 1) % 3], t.next[i], t.bound[i], spoke, side};
    };
    const Side& side = place.side;
    use[used++] = side.triangle;
    if (side.edge < 0) {
        for (int i = 0; i < 3; ++i) {
            add({side.triangle, i}, {});
        }
    } else {
        const Bound bound = tri(side.triangle).bound[static_cast<std::size_t>(side.edge)];
        const Side other = across(side);
        use[used++] = other.triangle;
        // From the edge's end (c) round to its start (b): the bound runs from b to c.
        add({side.triangle, after(side.edge)}, bound.turned());
        add({side.triangle, before(side.edge)}, {});
        add({other.triangle, after(other.edge)}, bound);
        add({other.triangle, before(other.edge)}, {});
    }
    while (used < count) {
        use[used++] = static_cast<std::int32_t>(triangles_.size());
        triangles_.emplace_back();
    }
    for (std::size_t i = 0; i < count; ++i) {
        // Before any triangle is overwritten; the sides still tell of the old ones.
        relink(rim[i].side.triangle, rim[i].side.edge, use[i]);
    }
    std::vector<std::int32_t> open;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t right = (i + 1) % count, left = (i + count - 1) % count;
        Triangle& t = tri(use[i]);
        t.corner = {vertex, rim[i].from, rim[right].from};
        t.next = {rim[i].next, use[right], use[left]};
        t.bound = {rim[i].outer, rim[right].spoke, rim[i].spoke.turned()};
        triangle_of_[static_cast<std::size_t>(rim[i].from)] = use[i];
        open.push_back(use[i]);
    }
    triangle_of_[static_cast<std::size_t>(vertex)] = use[0];
    last_ = use[0];
    restore(open);
}

/// Turns the diagonal of the two triangles at an edge. Both then have the first one's corner
/// opposite that edge as their corner 0.
void Builder::flip(const Side& side) {
    const Side opposite = across(side);
    const auto i = static_cast<std::size_t>(side.edge), j = static_cast<std::size_t>(opposite.edge);
    const std::size_t i1 = (i + 1) % 3, i2 = (i + 2) % 3, j1 = (j + 1) % 3, j2 = (j + 2) % 3;
    const std::int32_t first = side.triangle, second = opposite.triangle;
    // first (a, b, c), second (d, c, b) become (a, b, d), (a, d, c).
    relink(second, static_cast<int>(j1), first);
    relink(first, static_cast<int>(i1), second);
    const Triangle t = tri(first), o = tri(second);
    const std::int32_t a = t.corner[i], b = t.corner[i1], c = t.corner[i2], d = o.corner[j];
    Triangle& one = tri(first);
    one.corner = {a, b, d};
    one.next = {o.next[j1], second, t.next[i2]};
    one.bound = {o.bound[j1], Bound{}, t.bound[i2]};
    Triangle& two = tri(second);
    two.corner = {a, d, c};
    two.next = {o.next[j2], t.next[i1], first};
    two.bound = {o.bound[j2], t.bound[i1], Bound{}};
    for (const auto& [vertex, triangle] :
         {std::pair{a, first}, {b, first}, {d, first}, {c, second}}) {
        triangle_of_[static_cast<std::size_t>(vertex)] = triangle;
    }
}

/// Lawson's flips for triangles whose corner 0 is new.
void Builder::restore(std::vector<std::int32_t>& open) {
    while (!open.empty()) {
        const std::int32_t t = open.back();
        open.pop_back();
        const Side other = across({t, 0});
        if (!other.found() || tri(t).bound[0].count != 0) {
            continue;
        }
        const std::int32_t d = tri(other.triangle).corner[static_cast<std::size_t>(other.edge)];
        const auto& corner = tri(t).corner;
        if (in_circle(at(corner[0]), at(corner[1]), at(corner[2]), at(d))) {
            flip({t, 0});
            open.push_back(t);
            open.push_back(other.triangle);
        }
    }
}

/// Lawson's flips from given edges on.
void Builder::restore_edges(std::vector<std::array<std::int32_t, 2>>& open) {
    while (!open.empty()) {
        const auto [from, to] = open.back();
        open.pop_back();
        const Side side = find_edge(from, to);
        if (!side.found()) {
            continue;
        }
        const Side other = across(side);
        const auto i = static_cast<std::size_t>(side.edge);
        if (!other.found() || tri(side.triangle).bound[i].count != 0) {
            continue;
        }
        const auto& corner = tri(side.triangle).corner;
        const std::int32_t a = corner[i];
        const std::int32_t d = tri(other.triangle).corner[static_cast<std::size_t>(other.edge)];
        if (in_circle(at(corner[0]), at(corner[1]), at(corner[2]), at(d))) {
            flip(side);
            open.insert(open.end(), {{a, from}, {from, d}, {d, to}, {to, a}});
        }
    }
}

std::int32_t Builder::insert(std::int32_t vertex) {
    const Place place = locate(at(vertex), last_);
    if (!place.side.found() || place.vertex >= 0) {
        return place.vertex;
    }
    fan(vertex, place);
    return vertex;
}

/// The edge as the triangle to its left has it.
Side Builder::find_edge(std::int32_t from, std::int32_t to) const {
    const std::int32_t start = triangle_of_[static_cast<std::size_t>(from)];
    for (const bool backwards : {false, true}) {
        std::int32_t t = start;
        while (t >= 0) {
            const Triangle& current = tri(t);
            std::size_t i = 0;
            while (current.corner[i] != from) {
                ++i;
            }
            if (current.corner[(i + 1) % 3] == to) {
                return {t, before(static_cast<int>(i))};
            }
            t = current.next[backwards ? (i + 2) % 3 : (i + 1) % 3];
            if (t == start) {
                return {};
            }
        }
    }
    return {};
}

void Builder::mark(const Side& side, const Bound& bound) {
    const auto add = [&](const Side& s, const Bound& b) {
        Bound& sum = tri(s.triangle).bound[static_cast<std::size_t>(s.edge)];
        crossed_ = crossed_ || sum.count != 0;
        sum = {sum.count + b.count, sum.wind + b.wind};
    };
    const Side other = across(side);
    add(side, bound);
    if (other.found()) {
        add(other, bound.turned());
    }
}

void Builder::clear(const Side& side) {
    const Side other = across(side);
    tri(side.triangle).bound[static_cast<std::size_t>(side.edge)] = {};
    if (other.found()) {
        tri(other.triangle).bound[static_cast<std::size_t>(other.edge)] = {};
    }
}

/// Splitting ends: each piece is shorter than the segment it comes from, and lengths in steps do
/// not shrink for ever. (Rounded crossings lie in the boxes of both segments.)
void Builder::constrain(const Piece& piece) {
    pieces_.push_back(piece);
    while (!pieces_.empty()) {
        const Piece next = pieces_.back();
        pieces_.pop_back();
        if (next.from != next.to) {
            insert_piece(next);
        }
    }
}

void Builder::insert_piece(const Piece& piece) {
    if (const Side side = find_edge(piece.from, piece.to); side.found()) {
        mark(side, piece.bound);
        return;
    }
    std::int32_t reached = piece.to;
    const Side side = first_crossed(piece, reached);
    std::vector<std::array<std::int32_t, 2>> crossed;
    if (side.found() && !collect(piece, side, reached, crossed)) {
        return;
    }
    if (!side.found() && reached == piece.to) {
        return; // cannot be; better an edge less than an endless search
    }
    if (reached != piece.to) {
        pieces_.push_back({reached, piece.to, piece.bound});
    }
    if (!crossed.empty()) {
        flip_away(piece.from, reached, crossed);
    }
    if (const Side made = find_edge(piece.from, reached); made.found()) {
        mark(made, piece.bound);
    }
    restore_edges(crossed);
}

/// The edge opposite the piece's start through which it leaves, seen from the start's triangle; or
/// none, and the vertex next to the start that it runs through.
Side Builder::first_crossed(const Piece& piece, std::int32_t& reached) const {
    const Cell& a = at(piece.from);
    const Cell& b = at(piece.to);
    const std::int32_t start = triangle_of_[static_cast<std::size_t>(piece.from)];
    std::int32_t t = start;
    do {
        const Triangle& current = tri(t);
        std::size_t i = 0;
        while (current.corner[i] != piece.from) {
            ++i;
        }
        const std::int32_t p = current.corner[(i + 1) % 3];
        const std::int64_t turn = orient(a, b, at(p));
        if (turn == 0 && (at(p).x - a.x) * (b.x - a.x) + (at(p).y - a.y) * (b.y - a.y) > 0) {
            reached = p;
            return {};
        }
        if (turn < 0 && orient(a, b, at(current.corner[(i + 2) % 3])) > 0) {
            return {t, static_cast<int>(i)};
        }
        t = current.next[(i + 1) % 3];
    } while (t >= 0 && t != start);
    return {};
}

/// The edges between the piece's start and the next vertex on it. False when it met another
/// segment, which has then been dealt with.
bool Builder::collect(const Piece& piece, Side side, std::int32_t& reached,
                      std::vector<std::array<std::int32_t, 2>>& crossed) {
    const Cell& a = at(piece.from);
    const Cell& b = at(piece.to);
    for (;;) {
        const Triangle& t = tri(side.triangle);
        const auto i = static_cast<std::size_t>(side.edge);
        if (t.bound[i].count != 0) {
            cross(piece, side);
            return false;
        }
        crossed.push_back({t.corner[(i + 1) % 3], t.corner[(i + 2) % 3]});
        const Side other = across(side);
        if (!other.found()) {
            return false;
        }
        const std::int32_t apex = tri(other.triangle).corner[static_cast<std::size_t>(other.edge)];
        const std::int64_t turn = orient(a, b, at(apex));
        if (turn == 0) {
            reached = apex;
            return true;
        }
        // The far triangle is (apex, left end, right end) of the edge just crossed.
        side = {other.triangle, turn > 0 ? after(other.edge) : before(other.edge)};
    }
}

/// Splits the piece, and the segment on the edge that it crosses, where they meet.
void Builder::cross(const Piece& piece, const Side& side) {
    const Triangle& t = tri(side.triangle);
    const auto i = static_cast<std::size_t>(side.edge);
    const Piece other{t.corner[(i + 1) % 3], t.corner[(i + 2) % 3], t.bound[i]};
    crossed_ = true;
    if (++crossings_ > kMostCrossings) {
        return;
    }
    const Cell cell = crossing(at(piece.from), at(piece.to), at(other.from), at(other.to));
    std::int32_t vertex = -1;
    for (const std::int32_t end : {piece.from, piece.to, other.from, other.to}) {
        const bool of_piece = end == piece.from || end == piece.to;
        const Piece& far = of_piece ? other : piece;
        if (vertex < 0 && (at(end) == cell || near(at(end), at(far.from), at(far.to)))) {
            vertex = end;
        }
    }
    if (vertex < 0) {
        clear(side);
        cells_.push_back(cell);
        triangle_of_.push_back(-1);
        last_ = side.triangle;
        vertex = insert(static_cast<std::int32_t>(cells_.size() - 1));
        if (vertex + 1 != static_cast<std::int32_t>(cells_.size())) {
            cells_.pop_back();
            triangle_of_.pop_back();
        }
        if (vertex < 0) {
            return; // cannot be: the frame holds every cell
        }
        pieces_.push_back({other.from, vertex, other.bound});
        pieces_.push_back({vertex, other.to, other.bound});
    } else if (vertex == piece.from || vertex == piece.to) {
        clear(side);
        pieces_.push_back(piece);
        pieces_.push_back({other.from, vertex, other.bound});
        pieces_.push_back({vertex, other.to, other.bound});
        std::vector<std::array<std::int32_t, 2>> open{{other.from, other.to}};
        restore_edges(open);
        return;
    }
    pieces_.push_back({piece.from, vertex, piece.bound});
    pieces_.push_back({vertex, piece.to, piece.bound});
    std::vector<std::array<std::int32_t, 2>> open{{other.from, other.to}};
    restore_edges(open);
}

bool Builder::crosses(std::int32_t a, std::int32_t b, std::int32_t p, std::int32_t q) const {
    if (p == a || p == b || q == a || q == b) {
        return false;
    }
    const std::int64_t one = orient(at(a), at(b), at(p)), two = orient(at(a), at(b), at(q));
    const std::int64_t three = orient(at(p), at(q), at(a)), four = orient(at(p), at(q), at(b));
    return ((one > 0) != (two > 0)) && ((three > 0) != (four > 0));
}

/// Flips the crossed edges until from-to is an edge. Leaves the new edges in `crossed`.
void Builder::flip_away(std::int32_t from, std::int32_t to,
                        std::vector<std::array<std::int32_t, 2>>& crossed) {
    std::deque<std::array<std::int32_t, 2>> open(crossed.begin(), crossed.end());
    crossed.clear();
    // Sloan's bound is the square of the edges met; the factor only guards against mistakes.
    std::size_t left = 4 * open.size() * open.size() + 64;
    while (!open.empty() && left-- > 0) {
        const auto [p, q] = open.front();
        open.pop_front();
        const Side side = find_edge(p, q);
        const Side other = side.found() ? across(side) : Side{};
        if (!other.found()) {
            continue;
        }
        const std::int32_t a = tri(side.triangle).corner[static_cast<std::size_t>(side.edge)];
        const std::int32_t d = tri(other.triangle).corner[static_cast<std::size_t>(other.edge)];
        const bool convex = orient(at(a), at(p), at(d)) > 0 && orient(at(a), at(d), at(q)) > 0;
        if (!convex) {
            open.push_back({p, q});
            continue;
        }
        flip(side);
        if (crosses(from, to, a, d)) {
            open.push_back({a, d});
        } else {
            crossed.push_back({a, d});
        }
    }
}

/// Regions get their winding from the frame inwards, each wholly before the next is entered, so
/// that segments with the same region on both sides (open chains) change nothing.
std::vector<bool> Builder::inside(FillRule rule) const {
    struct Sum {
        std::int32_t count = 0, wind = 0;
    };
    std::vector<Sum> sums(triangles_.size());
    std::vector<bool> seen(triangles_.size(), false);
    std::vector<bool> result(triangles_.size(), false);
    std::deque<std::pair<std::int32_t, Sum>> open;
    // The triangle of the first corner of the frame.
    for (std::size_t i = 0; i < triangles_.size() && open.empty(); ++i) {
        const auto& next = triangles_[i].next;
        if (next[0] < 0 || next[1] < 0 || next[2] < 0) {
            open.emplace_back(static_cast<std::int32_t>(i), Sum{});
        }
    }
    while (!open.empty()) {
        const auto [t, sum] = open.front();
        open.pop_front();
        if (seen[static_cast<std::size_t>(t)]) {
            continue;
        }
        seen[static_cast<std::size_t>(t)] = true;
        result[static_cast<std::size_t>(t)] =
            rule == FillRule::kEvenOdd ? (sum.count & 1) != 0 : sum.wind != 0;
        for (std::size_t i = 0; i < 3; ++i) {
            const std::int32_t next = tri(t).next[i];
            if (next < 0 || seen[static_cast<std::size_t>(next)]) {
                continue;
            }
            const Bound& bound = tri(t).bound[i];
            if (bound.count == 0) {
                open.emplace_front(next, sum);
            } else {
                open.emplace_back(next, Sum{(sum.count + bound.count) & 1, sum.wind - bound.wind});
            }
        }
    }
    return result;
}

} // namespace ge
