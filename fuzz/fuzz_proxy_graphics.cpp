// Any bytes as the stored graphics of an entity: replayed as faces and as lines, measured.
#include "host/db/database.h"
#include "host/db/proxy_graphics.h"
#include "host/gi/fallback.h"
#include "host/gi/recorder.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using gi::Primitive;

/// One drawing for all runs: replaying reads it only.
AcDbDatabase& drawing() {
    static AcDbDatabase only;
    return only;
}

void check(const gi::Recorder& recorder) {
    for (const gi::RecordedCall& call : recorder.calls) {
        for (std::size_t i = 0; i < call.faces.size();) {
            const auto corners = static_cast<std::size_t>(std::abs(call.faces[i]));
            if (corners == 0 || corners >= call.faces.size() - i) {
                std::abort(); // a face list that ends within a face
            }
            for (std::size_t k = i + 1; k <= i + corners; ++k) {
                if (static_cast<std::size_t>(call.faces[k]) >= call.points.size()) {
                    std::abort(); // a corner that is not there
                }
            }
            i += corners + 1;
        }
    }
    if (!(recorder.geometry().getModelToWorldTransform() == AcGeMatrix3d()) ||
        recorder.subEntityTraits().thickness() != 0) {
        std::abort(); // what was set is put back
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::set<Primitive> refusals[] = {{},
                                            {Primitive::kCircle, Primitive::kArc,
                                             Primitive::kEllipticalArc, Primitive::kMesh,
                                             Primitive::kPolygon, Primitive::kPline}};
    bool faces = false;
    for (const auto& refuse : refusals) {
        gi::Recorder recorder(&drawing());
        recorder.refuse = refuse;
        recorder.chord_deviation = 0.1;
        faces = proxy::replay(&recorder, bytes, &drawing()).faces;
        check(recorder);
        (void)recorder.extents();
    }
    if (proxy::examine(bytes, &drawing()).faces != faces) {
        std::abort(); // what is told is what is drawn
    }
    return 0;
}
