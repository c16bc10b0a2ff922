// A module that plays the optional plug-in for RPC objects: two entity classes, the three functions
// that a render calls, and a list of what was called.
#include "host/db/entity.h"
#include "host/rx/module.h"

#include <stdexcept>
#include <string>

namespace {

std::string calls;
int answer = 0;

void note(const std::string& call) { calls += call + "\n"; }
std::string handle_of(const AcDbEntity& entity) {
    return std::to_string(entity.getAcDbHandle().value());
}

} // namespace

/// Draws only through the plug-in.
class rpcObject : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(rpcObject)
public:
    void list() const override { note("list " + handle_of(*this)); }
    bool worldDraw(AcGiWorldDraw*) override {
        note("worldDraw " + handle_of(*this));
        return true;
    }
};
/// A helper on the screen that no render shows.
class POPGuide : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(POPGuide)
public:
    void list() const override { note("list of a guide"); }
    bool worldDraw(AcGiWorldDraw*) override {
        note("worldDraw of a guide");
        return true;
    }
};
ACRX_DXF_DEFINE_MEMBERS(rpcObject, AcDbEntity, "RPC_OBJECT")
ACRX_DXF_DEFINE_MEMBERS(POPGuide, AcDbEntity, "POP_GUIDE")

extern "C" {

AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void*) {
    if (message == AcRx::kInitAppMsg) {
        rpcObject::rxInit();
        POPGuide::rxInit();
    } else if (message == AcRx::kUnloadAppMsg) {
        acrxDeleteClass("rpcObject");
        acrxDeleteClass("POPGuide");
    }
    return AcRx::kRetOK;
}
int acrxGetApiVersion() { return kAcrxApiVersion; }

int RPCarRenderBegin(int stage, int option) {
    note("begin " + std::to_string(stage) + " " + std::to_string(option));
    return 1;
}

/// A quad with texture coordinates as a shell and as a mesh, and one without as a shell.
int RPCarRenderViewportDraw(AcDbEntity* entity, AcGiViewportDraw* draw, void*) {
    note("draw " + handle_of(*entity));
    if (answer < 0) {
        throw std::runtime_error("a plug-in that fails");
    }
    const AcGePoint3d around[] = {{0, 0, 0}, {100, 0, 0}, {100, 100, 0}, {0, 100, 0}};
    const AcGePoint3d grid[] = {around[0], around[1], around[3], around[2]};
    const AcGePoint3d coordinates[] = {{0, 0, 7}, {0.5, 0, 7}, {0.5, 0.25, 7}, {0, 0.25, 7}};
    const std::int32_t list[] = {4, 0, 1, 2, 3};
    AcGiVertexData data;
    data.mapping_coords = coordinates;
    AcGiViewportGeometry& geometry = draw->geometry();
    geometry.shell(4, around, 5, list, nullptr, nullptr, &data);
    geometry.mesh(2, 2, grid, nullptr, nullptr, &data);
    geometry.shell(4, around, 5, list);
    return answer;
}

int RPCarRenderEnd() {
    note("end");
    return 1;
}

/// What was called so far, a line each.
const char* rpcCalls() { return calls.c_str(); }
/// What the drawing function answers from now on; below 0 it throws.
void rpcAnswer(int value) { answer = value; }

} // extern "C"
