// Objects of unknown kinds.
#include "host/db/unknown.h"

#include "host/db/database_impl.h"
#include "host/db/draw_util.h"
#include "host/db/proxy_graphics.h"
#include "host/dxf/load_context.h"
#include "host/dxf/object_tags.h"
#include "host/dxf/tag_reader.h"
#include "host/gi/recorder.h"

#include <algorithm>
#include <string_view>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbUnknownEntity, AcDbEntity)
ACRX_DXF_DEFINE_MEMBERS(AcDbProxyEntity, AcDbUnknownEntity, "ACAD_PROXY_ENTITY")
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbUnknownObject, AcDbObject)

namespace {

struct KindReason {
    std::string_view kind;
    const char* reason;
};
constexpr KindReason kReasons[] = {
    {"RTEXT", "text"},
    {"ARCALIGNEDTEXT", "text"},
};

/// The bytes that follow their length in a part of the tags: other bytes stand behind them, for
/// the program that made them.
std::string read_graphics(std::span<const dxf::Tag> part) {
    std::string bytes;
    auto tag = std::find_if(part.begin(), part.end(),
                            [](const dxf::Tag& t) { return t.code == 92 || t.code == 160; });
    for (tag += tag != part.end() ? 1 : 0; tag != part.end() && tag->code == 310; ++tag) {
        bytes += dxf::parse_chunk(*tag);
    }
    return bytes;
}

} // namespace

const char* AcDbUnknownEntity::reasonWithoutGraphics() const {
    const auto* row = std::find_if(std::begin(kReasons), std::end(kReasons),
                                   [&](const KindReason& r) { return r.kind == dxf_name_; });
    return row != std::end(kReasons) ? row->reason : "unknown-kind";
}

const char* AcDbUnknownEntity::notRenderedReason() const {
    if (graphics_.empty()) {
        return reasonWithoutGraphics();
    }
    const proxy::Outcome outcome = proxy::examine(graphics_, database());
    if (outcome.faces) {
        return nullptr;
    }
    if (outcome.curves || outcome.texts) {
        return outcome.curves ? draw::kNoThickness : "text";
    }
    return reasonWithoutGraphics();
}

void AcDbUnknownEntity::drawFindings(std::vector<AcDbDrawFinding>& findings) const {
    if (graphics_.empty()) {
        AcDbEntity::drawFindings(findings);
        return;
    }
    const proxy::Outcome outcome = proxy::examine(graphics_, database());
    if (outcome.damaged) {
        findings.push_back({"proxy-damaged", dxf_name_, 1});
    }
    if (!outcome.faces && !outcome.curves && !outcome.texts) {
        findings.push_back({reasonWithoutGraphics(), {}, 1});
    }
    if (outcome.curves) {
        findings.push_back({draw::kNoThickness, {}, 1});
    }
    if (outcome.texts) {
        findings.push_back({"text", {}, 1});
    }
    findings.insert(findings.end(), outcome.fonts.begin(), outcome.fonts.end());
}

Acad::ErrorStatus AcDbUnknownEntity::getGeomExtents(AcDbExtents& extents) const {
    if (graphics_.empty()) {
        return Acad::eNullExtents;
    }
    gi::Recorder recorder(database());
    proxy::replay(&recorder, graphics_, database());
    return draw::giveExtents(recorder.extents(), extents);
}

bool AcDbUnknownEntity::worldDraw(AcGiWorldDraw* draw) {
    if (!graphics_.empty()) {
        proxy::replay(draw, graphics_, database());
    }
    return true;
}

void AcDbUnknownEntity::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    graphics_ = read_graphics(tags.common());
    for (const char* part : {"AcDbProxyEntity", "AcDbZombieEntity"}) {
        if (graphics_.empty() && tags.has_subclasses()) {
            graphics_ = read_graphics(tags.subclass(part));
        }
    }
}

// ---- AcDbProxyEntity

void AcDbProxyEntity::dxfIn(const dxf::ObjectTags& tags) {
    AcDbUnknownEntity::dxfIn(tags);
    const dxf::Tag* id = tags.find(91);
    class_id_ = id != nullptr ? tags.int32(*id) : 0;
}

namespace {

/// A group of the drawing's class of that number, as it stands in the file.
std::string class_text(AcDbDatabase* database, std::int32_t id, int code) {
    constexpr std::int32_t kFirst = 500;
    const dxf::Document* document =
        database != nullptr ? DxfAccess::impl(*database).document.get() : nullptr;
    const auto* section = document != nullptr ? document->section("CLASSES") : nullptr;
    if (section == nullptr || id < kFirst) {
        return {};
    }
    dxf::TagReader reader(document->bytes(section->span), document->form().form,
                          document->form().line_end);
    std::int32_t at = kFirst - 1;
    for (dxf::Tag tag; reader.next(tag) && at <= id;) {
        at += tag.is(0, "CLASS") ? 1 : 0;
        if (at == id && tag.code == code) {
            return document->encoding.decode(tag.trimmed());
        }
    }
    return {};
}

} // namespace

std::string AcDbProxyEntity::originalClassName() const {
    return class_text(database(), class_id_, 2);
}

std::string AcDbProxyEntity::originalDxfName() const {
    return class_text(database(), class_id_, 1);
}
