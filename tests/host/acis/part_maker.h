// Small parts for tests: records of values without a form, written as text or binary of any
// release.
#pragma once

#include "host/acis/acis.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace test_acis {

struct Ref {
    int number = -1;
};
struct Int {
    std::int64_t value = 0;
};
/// An enumeration: a word in text, a number in binary.
struct Enum {
    const char* word = "";
    int value = 0;
};
struct Word {
    const char* text = "";
};
struct Text {
    std::string text;
};
/// Values that binary parts have as one text.
struct Literal {
    std::string text;
};
/// A truth value with its two words in text.
struct Flag {
    bool value = false;
    const char* if_false = "forward";
    const char* if_true = "reversed";
};
struct Open {};
struct Close {};
struct Point {
    double x = 0, y = 0, z = 0;
};

using Value = std::variant<Ref, Int, double, Enum, Word, Text, Literal, Flag, Open, Close, Point>;
using Values = std::vector<Value>;

/// Range ends without a bound.
inline Flag infinite() { return {false, "I", "F"}; }
inline Flag finite() { return {true, "I", "F"}; }

enum class Form { kText, kBinary4, kBinary8 };

/// How a part is written.
struct Release {
    int version = 400;
    Form form = Form::kText;
    bool record_numbers = false; ///< "-0 body"
};

/// The releases and forms that differ in what stands where.
std::vector<Release> allReleases();
std::string nameOf(const Release& release);

struct MadeRecord {
    std::string kind; ///< "plane-surface"
    Values values;    ///< without the heading that all records of a release have
    int attribute = -1;
};

/// Builds parts record by record, with shapes on top. References are record numbers.
class PartMaker {
public:
    explicit PartMaker(Release release)
      : release_(release) {}

    const Release& release() const { return release_; }
    int size() const { return static_cast<int>(records_.size()); }
    int reserve();
    int add(std::string kind, Values values);
    void set(int number, std::string kind, Values values);
    MadeRecord& record(int number) { return records_[static_cast<std::size_t>(number)]; }

    /// Gives a record an attribute.
    void attach(int number, int attribute) { record(number).attribute = attribute; }

    int vertex(Point p);
    /// An edge; `curve` -1 for an edge that is a point.
    int edge(int start, int end, int curve, double from, double to, bool reversed = false);
    int straight(Point from, Point direction);
    int circle(Point center, Point normal, Point major, double ratio = 1);
    int plane(Point origin, Point normal, Point u);
    int cone(Point center, Point axis, Point major, double sine, double cosine, double ratio = 1);

    /// One use of an edge in a loop.
    struct Use {
        int edge;
        bool reversed;
        int pcurve = -1;
    };
    using LoopOfUses = std::vector<Use>;
    /// A face with its loops; it gets its shell when one takes it.
    int face(int surface, const std::vector<LoopOfUses>& loops, bool reversed = false,
             bool double_sided = false);
    /// Faces to a shell, shells to a lump, lumps to the body.
    int shell(const std::vector<int>& faces);
    int lump(const std::vector<int>& shells);
    void body(const std::vector<int>& lumps, int transform = -1);
    /// All in one: a body of one lump and one shell.
    void solid(const std::vector<int>& faces, int transform = -1);

    /// Flat faces through points; each face is loops of point numbers, the first the outer one,
    /// all with the face to their left.
    std::vector<int> polyhedron(const std::vector<Point>& points,
                                const std::vector<std::vector<std::vector<int>>>& faces);

    std::string write() const;
    brep::Body read() const;

private:
    std::string writeText() const;
    std::string writeBinary() const;
    Values heading(const MadeRecord& record) const;

    Release release_;
    std::vector<MadeRecord> records_;
};

/// Reads bytes in either form.
brep::Body readPart(const std::string& bytes);

/// A box with a corner at the origin.
std::vector<int> addBox(PartMaker& maker, Point size, Point corner = {});
/// A cylinder about Z of two circles, without a seam.
std::vector<int> addCylinder(PartMaker& maker, double radius, double height);
/// A cone about Z with its base at 0 and an apex.
std::vector<int> addCone(PartMaker& maker, double radius, double height);

/// What there is, for comparisons: "1 lump 1 shell 6 faces ...".
struct Counts {
    int lumps = 0, shells = 0, faces = 0, loops = 0, coedges = 0, pcurves = 0;
    int edges = 0, vertices = 0;
    bool operator==(const Counts&) const = default;
};
Counts countsOf(const brep::Body& body);

/// The first thing wrong with a body as far as it shows without a mesh: indices, edges that do not
/// end where their vertices are, loops that are open, edges that are not used once in each
/// direction. Empty when there is none.
std::string faultOf(const brep::Body& body, bool closed = true, double tolerance = 1e-6);

/// Everything in a body, as text to compare.
std::string described(const brep::Body& body);

/// The volume within flat faces with straight edges: above 0 when the normals lead outwards, no
/// number when a face does not lie to the left of its loops.
double polyhedronVolume(const brep::Body& body);

} // namespace test_acis
