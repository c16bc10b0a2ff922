// Light records on entities.
#include "omb_qorvane/ts_ac_light.h"

#include "omb/base/trace.h"
#include "omb_qorvane/ts_ac_binary_data.h"
#include "toolkit/ts_fields.h"

#include <cmath>
#include <fmt/format.h>
#include <numbers>

namespace {

constexpr int old_type = 2021, old_location = 2022;

/// Types of older drawings, as lights count them now; 0 is none.
int type_of_old(int old) {
    switch (old) {
    case 1:
        return 1;
    case 2:
    case 3:
        return old + 1; // surfaces and lines moved up by one
    case 6:
        return 2;
    default:
        return 0;
    }
}

void set_kind(CTsLight& light, int type) {
    switch (type) {
    case 2:
        light.m_Distribution = CTsDistribution::spot;
        light.m_Geometry = CTsGeometry::disc;
        break;
    case 3:
        light.m_Distribution = CTsDistribution::diffuse;
        light.m_Geometry = CTsGeometry::rectangle;
        break;
    case 4:
        light.m_Distribution = CTsDistribution::diffuse;
        light.m_Geometry = CTsGeometry::tube;
        break;
    default:
        light.m_Distribution = CTsDistribution::uniform;
        light.m_Geometry = CTsGeometry::point;
    }
}

/// Values of older records in the order in which they are read, each with its place.
struct old_value {
    int code;
    void (*take)(CTsAcLight&, double);
};
constexpr double radians(double degrees) { return degrees * std::numbers::pi / 180; }
constexpr old_value old_values[] = {
    {2003, [](CTsAcLight& l, double v) { l.m_Placing[3] = v; }},
    {2075, [](CTsAcLight& l, double v) { l.m_Flags = static_cast<int>(v); }},
    {2076, [](CTsAcLight& l, double v) { l.m_On = v != 0; }},
    {2002, [](CTsAcLight& l, double v) { l.m_Placing[4] = v; }},
    {2000, [](CTsAcLight& l, double v) { l.m_Placing[5] = v; }},
    {2015, [](CTsAcLight& l, double v) { l.m_Flux = v; }},
    {2021, [](CTsAcLight&, double) {}}, // the type, taken first
    {2070, [](CTsAcLight& l, double v) { l.m_Channel = static_cast<int>(v); }},
    {2011, [](CTsAcLight& l, double v) { l.m_Radius = v; }},
    {2030, [](CTsAcLight& l, double v) { l.m_Beam = radians(v); }},
    {2031, [](CTsAcLight& l, double v) { l.m_Field = radians(v); }},
    {2004, [](CTsAcLight& l, double v) { l.m_Color.r = v; }},
    {2005, [](CTsAcLight& l, double v) { l.m_Color.g = v; }},
    {2006, [](CTsAcLight& l, double v) { l.m_Color.b = v; }},
    {2071, [](CTsAcLight& l, double v) { l.m_Length = v; }},
    {2072, [](CTsAcLight& l, double v) { l.m_Width = v; }},
};

AcGeVector3d vector_at(const std::array<double, 10>& values, std::size_t at) {
    return {values[at], values[at + 1], values[at + 2]};
}

/// The ten numbers as text, and back; what is no number keeps the value it had.
std::string numbers_text(const std::array<double, 10>& values) {
    std::string text;
    for (const double value : values) {
        text += (text.empty() ? "" : " ") + fmt::format("{}", value);
    }
    return text;
}

void read_numbers(std::string_view text, std::array<double, 10>& values) {
    for (double& value : values) {
        while (!text.empty() && text.front() == ' ') {
            text.remove_prefix(1);
        }
        const std::string_view word = text.substr(0, text.find(' '));
        const double read = TsParseNumber(word, value);
        value = std::isfinite(read) ? read : value;
        text.remove_prefix(word.size());
    }
}

} // namespace

bool TsAcIsOldLight(const AcDbEntity& entity) {
    const cl_old_values values(entity);
    return values.find(old_type) != nullptr && type_of_old(values.integer(old_type)) != 0;
}

bool CTsAcLight::LoadOldStuff(const AcDbEntity& entity) {
    const cl_old_values values(entity);
    const int type = values.find(old_type) != nullptr ? type_of_old(values.integer(old_type)) : 0;
    if (type == 0) {
        return false;
    }
    set_kind(*this, type);
    if (const AcDbValue* location = values.find(old_location)) {
        // Along the stored axes, which are those of the drawing here.
        const AcGePoint3d p = location->point();
        m_Placing[0] = p.x, m_Placing[1] = p.y, m_Placing[2] = p.z;
    }
    for (const old_value& row : old_values) {
        if (values.find(row.code) != nullptr) {
            row.take(*this, values.number(row.code));
        }
    }
    return true;
}

bool CTsAcLight::read_record(const AcDbEntity& entity) {
    const std::string text = CTsAcBinaryData::ReadText(entity, ts_data::light);
    if (text.empty()) {
        return false;
    }
    CTsXmlReader reader;
    if (!reader.InitFromText(text, ts_data::light)) {
        OMB_TRACE(1, "A light record cannot be read: %s", reader.Error());
        return false;
    }
    const pugi::xml_node root = reader.Root();
    if (std::string_view(root.name()) != "TsLight") {
        OMB_TRACE(1, "A light record is none: %s", root.name());
        return false;
    }
    Read(root);
    m_Flags = root.attribute("flags").as_int(m_Flags);
    read_numbers(root.attribute("placing").value(), m_Placing);
    if (const pugi::xml_node implicit = root.child("ImplicitSource")) {
        m_ImplicitSource = std::make_shared<CTsLight>();
        m_ImplicitSource->Read(implicit);
    }
    return true;
}

bool CTsAcLight::load_from_entity(const AcDbEntity& entity, bool read_old) {
    bool found = read_old && LoadOldStuff(entity);
    const std::size_t size = Ts3AcReadBinaryDataFromEntity(entity, ts_data::ies, nullptr, 0);
    if (size != 0) {
        std::vector<unsigned char> block(size);
        Ts3AcReadBinaryDataFromEntity(entity, ts_data::ies, block.data(), block.size());
        if (!m_Web.ReadBlock(block)) {
            OMB_TRACE(1, "The photometric data of a light cannot be read: %d bytes",
                      static_cast<int>(size));
        }
    }
    const CTsPhotometricWeb block_web = m_Web;
    found = read_record(entity) || found;
    if (m_Web.Empty()) {
        m_Web = block_web;
    }
    return found;
}

std::string CTsAcLight::record_text() const {
    CTsXmlWriter writer;
    writer.Init("", 1, -1);
    Write(writer);
    pugi::xml_document document;
    document.load_string(writer.Text().c_str());
    pugi::xml_node root = document.document_element();
    if (!root) {
        return {};
    }
    const auto set = [&root](const char* name) {
        root.remove_attribute(name);
        return root.append_attribute(name);
    };
    set("flags").set_value(m_Flags);
    set("placing").set_value(numbers_text(m_Placing).c_str());
    root.remove_child("ImplicitSource");
    if (m_ImplicitSource != nullptr) {
        CTsXmlWriter inner;
        inner.Init("", 1, -1);
        m_ImplicitSource->Write(inner);
        pugi::xml_document source;
        source.load_string(inner.Text().c_str());
        root.append_copy(source.document_element()).set_name("ImplicitSource");
    }
    struct text_writer : pugi::xml_writer {
        std::string text;
        void write(const void* data, std::size_t size) override {
            text.append(static_cast<const char*>(data), size);
        }
    } out;
    document.save(out, "", pugi::format_raw);
    return out.text;
}

bool CTsAcLight::save_to_entity(AcDbEntity& entity) const {
    const std::string text = record_text();
    if (text.empty() || !Ts3AcWriteBinaryDataToEntity(entity, ts_data::light, text)) {
        return false;
    }
    const std::vector<unsigned char> block =
        m_Web.Empty() ? std::vector<unsigned char>() : m_Web.WriteBlock();
    if ((!block.empty() || CTsAcBinaryData::Has(entity, ts_data::ies)) &&
        !Ts3AcWriteBinaryDataToEntity(entity, ts_data::ies, block)) {
        return false;
    }
    const auto point = [this](std::size_t at) {
        return AcGePoint3d{m_Placing[at], m_Placing[at + 1], m_Placing[at + 2]};
    };
    const AcDbValues list{{1001, std::string(ts_data::light)},
                          {1070, std::int64_t{Type()}},
                          {1013, point(0)},
                          {1013, point(3)},
                          {1070, std::int64_t{m_Channel}},
                          {1070, std::int64_t{m_On ? 1 : 0}}};
    return entity.setXData(list) == Acad::eOk;
}

bool CTsAcLight::place_on(const AcDbEntity& entity, AcGePoint3d& location, AcGeVector3d& direction,
                          AcGeVector3d& x_axis) const {
    AcDbExtents extents;
    if (entity.getGeomExtents(extents) != Acad::eOk || extents.isEmpty()) {
        return false;
    }
    const AcGePoint3d middle = extents.minPoint() + (extents.maxPoint() - extents.minPoint()) * 0.5;
    location = middle + vector_at(m_Placing, 0);
    const AcGePoint3d aim = middle + vector_at(m_Placing, 3);
    direction = (aim - location).normal();
    x_axis = vector_at(m_Placing, 6).normal();
    return true;
}

bool CTsAcLight::LoadImplicitSource(CTsLight& source) const {
    if (m_ImplicitSource == nullptr) {
        return false;
    }
    source = *m_ImplicitSource;
    return true;
}
