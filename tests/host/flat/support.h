// Drawings from text, and sizes of what is drawn, for the tests of flat things.
#pragma once

#include "tests/host/db/support.h"

#include "host/gi/recorder.h"

#include <gmock/gmock.h>

#include <functional>

namespace test_flat {

/// "10 1 20 2" as lines of codes and values; values hold no blanks.
inline std::string tags(const std::string& words) {
    std::string lines = words;
    std::replace(lines.begin(), lines.end(), ' ', '\n');
    return lines + "\n";
}

/// A whole file with blocks, entities and objects, each as tags in one line.
inline std::string drawing(const std::string& blocks, const std::string& entities,
                           const std::string& objects = {}, const std::string& tables = {}) {
    return tags("0 SECTION 2 HEADER 9 $ACADVER 1 AC1032 0 ENDSEC") +
           tags("0 SECTION 2 TABLES" + tables + " 0 ENDSEC") +
           tags("0 SECTION 2 BLOCKS" + blocks + " 0 ENDSEC") +
           tags("0 SECTION 2 ENTITIES" + entities + " 0 ENDSEC") +
           tags("0 SECTION 2 OBJECTS" + objects + " 0 ENDSEC 0 EOF");
}

/// Calls that were accepted, nested draws left out.
inline std::vector<gi::RecordedCall> drawn(AcDbEntity& entity, double deviation = 1e-4,
                                           std::set<gi::Primitive> refuse = {}) {
    gi::Recorder recorder(entity.database());
    recorder.chord_deviation = deviation;
    recorder.refuse = std::move(refuse);
    recorder.record(&entity);
    std::erase_if(recorder.calls, [](const gi::RecordedCall& call) {
        return call.primitive == gi::Primitive::kDraw || !call.accepted;
    });
    return recorder.calls;
}

/// Calls `visit` with the corners of each triangle of the fans of a call's faces.
inline void eachTriangle(
    const gi::RecordedCall& call,
    const std::function<void(const AcGePoint3d&, const AcGePoint3d&, const AcGePoint3d&)>& visit) {
    std::vector<std::int32_t> faces = call.faces;
    if (call.primitive == gi::Primitive::kPolygon) {
        faces.push_back(static_cast<std::int32_t>(call.points.size()));
        for (std::size_t i = 0; i < call.points.size(); ++i) {
            faces.push_back(static_cast<std::int32_t>(i));
        }
    }
    for (std::size_t i = 0; i < faces.size();) {
        const auto corners = static_cast<std::size_t>(faces[i]);
        const auto at = [&](std::size_t k) {
            return call.points.at(static_cast<std::size_t>(faces[i + 1 + k]));
        };
        for (std::size_t k = 1; k + 1 < corners; ++k) {
            visit(at(0), at(k), at(k + 1));
        }
        i += corners + 1;
    }
}

/// The vector area: its length is the area only where all faces look one way, as they must.
inline AcGeVector3d areaOf(const std::vector<gi::RecordedCall>& calls) {
    AcGeVector3d area;
    for (const gi::RecordedCall& call : calls) {
        eachTriangle(call, [&](const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
            area = area + (b - a).crossProduct(c - a) / 2;
        });
    }
    return area;
}

/// The sum of the sizes of all faces, whichever way they look.
inline double surfaceOf(const std::vector<gi::RecordedCall>& calls) {
    double area = 0;
    for (const gi::RecordedCall& call : calls) {
        eachTriangle(call, [&](const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
            area += (b - a).crossProduct(c - a).length() / 2;
        });
    }
    return area;
}

/// What a closed shell with outward faces encloses.
inline double volumeOf(const std::vector<gi::RecordedCall>& calls) {
    double volume = 0;
    for (const gi::RecordedCall& call : calls) {
        eachTriangle(call, [&](const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
            volume += a.asVector().dotProduct(b.asVector().crossProduct(c.asVector())) / 6;
        });
    }
    return volume;
}

/// The codes that an entity tells of itself.
inline std::vector<std::string> codes(const AcDbEntity& entity) {
    std::vector<AcDbDrawFinding> findings;
    entity.drawFindings(findings);
    std::vector<std::string> codes;
    for (const AcDbDrawFinding& finding : findings) {
        EXPECT_NE(acdbFindDrawCode(finding.code), nullptr) << finding.code;
        codes.emplace_back(finding.code);
    }
    return codes;
}

} // namespace test_flat
