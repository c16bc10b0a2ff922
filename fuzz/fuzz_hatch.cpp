// A hatch made of any bytes: read, measured and filled. Bytes choose group codes and values, so
// that most inputs are hatches with loops, curves and gradients.
#include "host/db/database.h"
#include "host/db/hatch.h"
#include "host/gi/recorder.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

namespace {

constexpr int kCodes[] = {10, 20,  11,  21, 40,  42,  50,  51, 72,  73,  92,  93,  94,  95,  96,
                          97, 12,  13,  91, 75,  30,  70,  71, 450, 452, 453, 460, 461, 462, 463,
                          63, 421, 470, 2,  210, 220, 230, 22, 23,  74,  100, 330, 98,  41};
constexpr const char* kNames[] = {"SOLID",     "LINEAR",        "CYLINDER",       "INVCYLINDER",
                                  "SPHERICAL", "HEMISPHERICAL", "INVSPHERICAL",   "CURVED",
                                  "",          "AcDbHatch",     "AcDbHatchHatch", "ANSI31"};

/// One tag of two or four bytes: the code, then a whole number, a fraction, or a wild value.
std::string tagsOf(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const int code = kCodes[bytes[i] % std::size(kCodes)];
        const int value = static_cast<std::int8_t>(bytes[i + 1]);
        if (code == 2 || code == 470 || code == 100) {
            text += fmt::format("{}\n{}\n", code, kNames[bytes[i + 1] % std::size(kNames)]);
        } else if (bytes[i] < 128) {
            text += fmt::format("{}\n{}\n", code, value);
        } else if (bytes[i] < 224) {
            text += fmt::format("{}\n{}\n", code, value / 16.0);
        } else {
            const double wild = std::ldexp(static_cast<double>(value), (value % 7) * 100);
            text += fmt::format("{}\n{}\n", code, wild);
        }
    }
    return text;
}

void check(const gi::RecordedCall& call) {
    for (const AcGePoint3d& p : call.points) {
        if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) {
            std::abort();
        }
    }
    for (std::size_t i = 0; i < call.faces.size(); i += 4) {
        if (call.faces[i] != 3 || i + 3 >= call.faces.size()) {
            std::abort(); // areas are triangles
        }
        for (std::size_t k = 1; k <= 3; ++k) {
            if (call.faces[i + k] < 0 ||
                static_cast<std::size_t>(call.faces[i + k]) >= call.points.size()) {
                std::abort();
            }
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2 || size > 4096) {
        return 0;
    }
    const std::span<const std::uint8_t> bytes(data, size);
    const bool polygon = (bytes[0] & 1) != 0;
    const std::string text =
        "0\nSECTION\n2\nENTITIES\n0\n" + std::string(polygon ? "MPOLYGON" : "HATCH") +
        "\n8\n0\n30\n0\n70\n1\n" + tagsOf(bytes.subspan(1)) + "0\nENDSEC\n0\nEOF\n";
    AcDbDatabase db(false);
    std::string error;
    if (db.dxfInMemory(text, error) != Acad::eOk) {
        return 0;
    }
    const AcDbObjectPointer<AcDbBlockTableRecord> model(db.modelSpaceId());
    for (const AcDbObjectId id : model ? model->entities() : std::vector<AcDbObjectId>()) {
        const AcDbObjectPointer<AcDbEntity> entity(id);
        AcDbExtents box;
        entity->getGeomExtents(box);
        std::vector<AcDbDrawFinding> findings;
        entity->drawFindings(findings);
        gi::Recorder recorder(&db);
        recorder.chord_deviation = (bytes[0] & 2) != 0 ? 0.1 : 0;
        recorder.record(entity.object());
        for (const gi::RecordedCall& call : recorder.calls) {
            check(call);
        }
    }
    return 0;
}
