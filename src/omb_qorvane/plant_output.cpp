// Plants and ground covers: their files and records.
#include "omb/base/files.h"
#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/base/trace.h"
#include "omb_qorvane/entity_functions.h"
#include "omb_qorvane/omb_export.h"
#include "omb_qorvane/record_text.h"
#include "omb_qorvane/ts_ac_convert.h"
#include "omb_qorvane/ts_ac_plant.h"

#include <algorithm>
#include <cmath>
#include <fmt/printf.h>
#include <numbers>

namespace {

constexpr double degrees(double radians) { return radians * 180 / std::numbers::pi; }

/// One file of the toolkit; what fails is traced.
template <class Write>
bool write_xml(const std::string& path, Write&& write) {
    CTsXmlWriter writer;
    writer.Init(path, 0, -1);
    write(writer);
    if (writer.Close()) {
        return true;
    }
    OMB_TRACE(1, "Cannot write: %s", writer.Error());
    return false;
}

std::string location_text(const CTsPoint& p) {
    return fmt::sprintf("PLLC;(%0.9g,%0.9g,%0.9g)\n", p.x, p.y, p.z);
}

/// A block's name in file names: anonymous blocks begin with a star.
std::string plant_file_word(const std::string& block) {
    std::string word;
    for (const char c : record_name(block)) {
        word += c == '*' ? std::string("anon_") : std::string(1, c == '/' || c == '\\' ? '_' : c);
    }
    return word;
}

bool is_finite_placing(const CTsPlant& plant) {
    return std::isfinite(plant.m_Location.x) && std::isfinite(plant.m_Location.y) &&
           std::isfinite(plant.m_Location.z) && std::isfinite(plant.m_Rotation) &&
           std::isfinite(plant.m_Scale);
}

} // namespace

bool TsAcIsPlant(const AcDbEntity& entity, CTsAcCommonDraw& draw) {
    if (!entity.mayHaveAttachments()) {
        return false;
    }
    if (draw.tsdoc.IsPlant(entity)) {
        CTsAcPlant plant;
        // A cover is no plant that stands somewhere: it lies on the entity's own faces.
        return !(plant.load_from_entity(entity) && plant.m_IsCover) &&
               draw.tsdoc.GetGroupId(entity) < 0;
    }
    return TsAcIsOldPlant(entity) && draw.tsdoc.GetGroupId(entity) < 0;
}

void write_library_plant(const AcDbEntity& entity, CTsAcCommonDraw& draw) {
    if (draw.scan_only) {
        return;
    }
    if (!draw.tsdoc.IsPlant(entity)) {
        draw.stream.text("#;Old TS3 TsPlant\n");
        return;
    }
    CTsAcPlant plant;
    if (!plant.load_from_entity(entity)) {
        return; // traced
    }
    if (!is_finite_placing(plant)) {
        ++draw.report.bad_primitives;
        return;
    }
    cl_omb_export& exporter = draw.exporter;
    const double own_diameter =
        plant.m_Diameter > 0 ? plant.m_Diameter : plant.m_Definition.m_Diameter;
    plant.m_Diameter = own_diameter * plant.m_Scale;
    const std::string folder = exporter.get_drawing_plants_folder();
    const std::string name = fmt::sprintf("TsPlant_%d", exporter.plant_counter++);
    const std::string definition = name + "_def.TsPlant";
    plant.m_DefinitionFile = definition;
    write_xml(join_path(folder, name + ".TsPlant"), [&](CTsXmlWriter& w) { plant.Write(w); });
    write_xml(join_path(folder, definition), [&](CTsXmlWriter& w) { plant.WritePlantDef(w); });
    draw.stream.text("#;TsPlant\n#;PLANT\nPLLB;TsPlant\nPLNM;" + definition + "\n" +
                     location_text(plant.m_Location) +
                     fmt::sprintf("PLDM;%0.9g\nPLSN;%d\nPLRT;%0.9g\nPLSC;%0.9g\nPLNT;1\n",
                                  plant.m_Diameter, plant.m_Season, degrees(plant.m_Rotation),
                                  plant.m_Scale));
}

bool write_asuni_plant(AcDbEntity& entity, CTsAcCommonDraw& draw) {
    if (draw.save_plant == nullptr || !entity.isKindOf(AcDbBlockReference::desc()) ||
        draw.scan_only) {
        return false;
    }
    if (TsAcToolkit() == nullptr) {
        do_message_box("Unable to load Qor Toolkit.", "");
        return false;
    }
    if (TsAcToolkit()->CurrentDocument() == nullptr) {
        do_message_box("Unable to load Qor Toolkit Document for the current Drawing.", "");
        return false;
    }
    auto& reference = static_cast<AcDbBlockReference&>(entity);
    const AcDbObjectPointer<AcDbBlockTableRecord> block(reference.blockTableRecord());
    const std::string name = plant_file_word(block ? block->getName() : reference.blockName());
    cl_omb_export& exporter = draw.exporter;
    const std::string folder = exporter.get_drawing_plants_folder();
    const std::string stem = fmt::sprintf("%d_%s", exporter.plant_counter, name);
    const std::string plant = join_path(folder, stem + ".TsPlant");
    const std::string definition = join_path(folder, stem + "_def.TsPlant");
    if (draw.save_plant(&reference, plant.c_str(), definition.c_str()) != 1) {
        return false;
    }
    if (!file_exists(plant) || !file_exists(definition)) {
        do_message_box(fmt::sprintf("Asuni Plant files not found:\n%s\n%s.", plant, definition),
                       "");
        return false;
    }
    draw.stream.text("#;PLANT\nPLLB;TsPlant\nPLNM;" + stem + "_def.TsPlant\n" +
                     location_text(draw.tsdoc.ToTs(to_ts(reference.position()))) +
                     fmt::sprintf("PLRT;%0.9g\nPLSC;1\nPLNT;1\n", degrees(reference.rotation())));
    ++exporter.plant_counter;
    return true;
}

void TsAcGroundCover(const AcDbEntity& entity, CTsAcCommonDraw& draw) {
    const int kind = entity.mayHaveAttachments() ? draw.tsdoc.IsGroundcover(entity) : 0;
    if (kind == 0) {
        return;
    }
    auto plant = std::make_shared<CTsAcPlant>();
    if (kind == 1 ? plant->load_from_entity(entity) : plant->load_cover(entity)) {
        draw.traits->ground_cover = std::move(plant);
    }
}

void write_ground_cover(const CTsPlant& cover, CTsAcCommonDraw& draw) {
    cl_omb_export& exporter = draw.exporter;
    const std::string folder = exporter.get_drawing_plants_folder();
    const std::string name = fmt::sprintf("AGroundCover_%d", exporter.decal_counter++);
    const std::string definition = name + "_def.TsGroundCover";
    write_xml(join_path(folder, name + ".TsGroundCover"),
              [&](CTsXmlWriter& w) { cover.WriteCover(w); });
    write_xml(join_path(folder, definition), [&](CTsXmlWriter& w) { cover.WriteCoverDef(w); });
    draw.stream.integer("GCOR;", cover.GetCoverNumber());
    draw.stream.text("GNDC;" + definition + "\n");
}
