// The record table: keyword, form, place, and the method of the target that takes it.
#include "KestraBatch/stream_records.h"

#include "KestraBatch/stream_target.h"

#include <algorithm>

namespace KestraBatch {

namespace {

using Target = StreamTarget;
using Value = RecordValue;

constexpr RecordScope in_file = RecordScope::file;
constexpr RecordScope in_mesh = RecordScope::mesh;
constexpr RecordScope anywhere = RecordScope::anywhere;

template <MeshFlag flag>
void deliver_flag(Target& t, const Value& v) {
    t.mesh_flag(flag, v.integer);
}

std::string_view without_indent(std::string_view name) {
    const std::size_t first = name.find_first_not_of(' ');
    return first == name.npos ? std::string_view() : name.substr(first);
}

constexpr auto rows = std::to_array<RecordRow>({
    {"ADDV", FieldForm::integer, in_mesh,
     [](Target& t, const Value& v) { t.add_vertex(static_cast<std::uint32_t>(v.integer)); }},
    {"ALPH", FieldForm::integer, in_mesh, deliver_flag<MeshFlag::alpha>},
    {"BLOK", FieldForm::text, anywhere,
     [](Target& t, const Value& v) { t.begin_block(without_indent(v.text)); }},
    {"BLYR", FieldForm::text, anywhere,
     [](Target& t, const Value& v) { t.block_layer(without_indent(v.text)); }},
    {"BROT", FieldForm::number, in_mesh, [](Target& t, const Value& v) { t.rotation(v.number); }},
    {"CAUS", FieldForm::integer, in_mesh, deliver_flag<MeshFlag::caustics>},
    {"COLN", FieldForm::integer, in_mesh,
     [](Target& t, const Value& v) { t.color_index(v.integer); }},
    {"COLR", FieldForm::color, in_mesh, [](Target& t, const Value& v) { t.color(v.color); }},
    {"CULL", FieldForm::integer, in_mesh, deliver_flag<MeshFlag::culled>},
    {"DEC1", FieldForm::triple, anywhere,
     [](Target& t, const Value& v) { t.decal_triple("DEC1", v.triple); }},
    {"DEC2", FieldForm::triple, anywhere,
     [](Target& t, const Value& v) { t.decal_triple("DEC2", v.triple); }},
    {"DECH", FieldForm::number, anywhere,
     [](Target& t, const Value& v) { t.decal_number("DECH", v.number); }},
    {"DECL", FieldForm::text, anywhere, [](Target& t, const Value& v) { t.end_decal(v.text); }},
    {"DECN", FieldForm::triple, anywhere,
     [](Target& t, const Value& v) { t.decal_triple("DECN", v.triple); }},
    {"DECO", FieldForm::triple, anywhere,
     [](Target& t, const Value& v) { t.decal_triple("DECO", v.triple); }},
    {"DECS", FieldForm::triple, anywhere,
     [](Target& t, const Value& v) { t.decal_triple("DECS", v.triple); }},
    {"DECW", FieldForm::number, anywhere,
     [](Target& t, const Value& v) { t.decal_number("DECW", v.number); }},
    {"DECX", FieldForm::triple, anywhere,
     [](Target& t, const Value& v) { t.decal_triple("DECX", v.triple); }},
    {"DECY", FieldForm::triple, anywhere,
     [](Target& t, const Value& v) { t.decal_triple("DECY", v.triple); }},
    {"DECZ", FieldForm::triple, anywhere,
     [](Target& t, const Value& v) { t.decal_triple("DECZ", v.triple); }},
    {"DFEC", FieldForm::color, in_file,
     [](Target& t, const Value& v) { t.default_edge_color(v.color); }},
    {"DFFC", FieldForm::color, in_file,
     [](Target& t, const Value& v) { t.default_face_color(v.color); }},
    {"DYLT", FieldForm::integer, in_mesh,
     [](Target& t, const Value& v) { t.dynamic_lamp(v.integer); }},
    {"EBLK", FieldForm::text, anywhere,
     [](Target& t, const Value& v) { t.end_block(without_indent(v.text)); }},
    {"EMSH", FieldForm::none, in_mesh, [](Target& t, const Value&) { t.end_mesh(); }},
    {"END", FieldForm::none, in_file, [](Target& t, const Value&) { t.end(); }},
    {"FACE", FieldForm::triangle, in_mesh, [](Target& t, const Value& v) { t.face(v.triangle); }},
    {"FCTD", FieldForm::integer, in_mesh, deliver_flag<MeshFlag::faceted>},
    {"GATHER", FieldForm::integer, in_mesh, deliver_flag<MeshFlag::gather>},
    {"GCOR", FieldForm::integer, in_mesh,
     [](Target& t, const Value& v) { t.ground_cover(v.integer); }},
    {"GNDC", FieldForm::text, in_mesh,
     [](Target& t, const Value& v) { t.ground_cover_file(v.text); }},
    {"HNDL", FieldForm::handle, in_mesh, [](Target& t, const Value& v) { t.handle(v.handle); }},
    {"INVS", FieldForm::integer, in_mesh, deliver_flag<MeshFlag::invisible>},
    {"LAYR", FieldForm::text, in_mesh, [](Target& t, const Value& v) { t.mapping_key(v.text); }},
    {"LGHT", FieldForm::integer, anywhere,
     [](Target& t, const Value& v) { t.end_light(v.integer); }},
    {"LITE", FieldForm::integer, in_mesh, [](Target& t, const Value& v) { t.lamp(v.integer); }},
    {"LLIT", FieldForm::text, in_mesh, [](Target& t, const Value& v) { t.light_tag(v.text); },
     "mesh on a light layer"},
    {"LORG", FieldForm::triple, anywhere,
     [](Target& t, const Value& v) { t.light_origin(v.triple); }},
    {"LTYP", FieldForm::integer, anywhere,
     [](Target& t, const Value& v) { t.light_type(v.integer); }},
    {"MATF", FieldForm::text, anywhere, [](Target& t, const Value& v) { t.material_file(v.text); }},
    {"MATI", FieldForm::integer, anywhere,
     [](Target& t, const Value& v) { t.material_index(v.integer); }},
    {"MATL", FieldForm::integer, in_mesh,
     [](Target& t, const Value& v) { t.mesh_material(v.integer); }},
    {"MESH", FieldForm::none, in_file, [](Target& t, const Value&) { t.begin_mesh(); }},
    {"MNCR", FieldForm::integer, in_mesh, deliver_flag<MeshFlag::mirror>},
    {"MPUV", FieldForm::integer, in_mesh, deliver_flag<MeshFlag::own_texture_coordinates>},
    {"NOLY", FieldForm::none, in_mesh, [](Target& t, const Value&) { t.no_layer(); }},
    {"NORM", FieldForm::triple, in_mesh, [](Target& t, const Value& v) { t.normal(v.triple); }},
    {"PLDM", FieldForm::number, anywhere,
     [](Target& t, const Value& v) { t.plant_number("PLDM", v.number); }},
    {"PLLB", FieldForm::text, anywhere,
     [](Target& t, const Value& v) { t.plant_text("PLLB", v.text); }},
    {"PLLC", FieldForm::triple, anywhere,
     [](Target& t, const Value& v) { t.plant_location(v.triple); }},
    {"PLNM", FieldForm::text, anywhere,
     [](Target& t, const Value& v) { t.plant_text("PLNM", v.text); }},
    {"PLNT", FieldForm::integer, anywhere,
     [](Target& t, const Value& v) { t.end_plant(v.integer); }},
    {"PLRT", FieldForm::number, anywhere,
     [](Target& t, const Value& v) { t.plant_number("PLRT", v.number); }},
    {"PLSC", FieldForm::number, anywhere,
     [](Target& t, const Value& v) { t.plant_number("PLSC", v.number); }},
    {"PLSN", FieldForm::integer, anywhere,
     [](Target& t, const Value& v) { t.plant_number("PLSN", v.integer); }},
    {"SHDW", FieldForm::integer, in_mesh, deliver_flag<MeshFlag::shadow>},
    {"THICK", FieldForm::integer, in_mesh, deliver_flag<MeshFlag::thick>},
    {"UVQ", FieldForm::triple, in_mesh, [](Target& t, const Value& v) { t.texture(v.triple); }},
    {"VERT", FieldForm::triple, in_mesh, [](Target& t, const Value& v) { t.vertex(v.triple); }},
});

static_assert(std::is_sorted(rows.begin(), rows.end(), [](const RecordRow& a, const RecordRow& b) {
    return a.keyword < b.keyword;
}));

} // namespace

std::span<const RecordRow> record_rows() { return rows; }

int find_record(std::string_view keyword) {
    const auto at = std::lower_bound(
        rows.begin(), rows.end(), keyword,
        [](const RecordRow& row, std::string_view key) { return row.keyword < key; });
    return at != rows.end() && at->keyword == keyword ? static_cast<int>(at - rows.begin()) : -1;
}

} // namespace KestraBatch
