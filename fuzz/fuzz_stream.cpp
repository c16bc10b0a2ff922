// Feeds bytes to the stream reader: it must refuse or read them, in bounded memory.
#include "KestraBatch/stream_model.h"
#include "KestraBatch/stream_reader.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace KestraBatch;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    StreamLimits limits;
    limits.block_depth = 1000;
    try {
        WarningList warnings;
        StreamModel model;
        const StreamSummary summary = read_stream(text, "stream", model, warnings, limits);
        for (const MeshRecord& mesh : model.meshes) {
            for (std::size_t i = 0; i < mesh.triangle_count; ++i) {
                for (const std::uint32_t index : model.triangles[mesh.first_triangle + i]) {
                    if (index >= mesh.vertex_count) {
                        __builtin_trap(); // the reader promises indices that fit
                    }
                }
            }
        }
        if (summary.triangles != model.triangles.size()) {
            __builtin_trap();
        }
    } catch (const ReadError&) {
        // refused with a message
    }
    return 0;
}
