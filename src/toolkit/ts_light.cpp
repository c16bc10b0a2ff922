// Lights and their files, see ts_light.h.
#include "toolkit/ts_light.h"

#include "toolkit/ts_fields.h"

#include <array>
#include <charconv>
#include <cmath>
#include <numbers>
#include <type_traits>

// ---- kinds ----

namespace {

/// The number of a Type attribute and what makes its class.
struct Kind {
    int type;
    std::unique_ptr<CTsLight> (*make)();
};

template <typename Light>
std::unique_ptr<CTsLight> MakeLight() {
    return std::make_unique<Light>();
}

constexpr std::array<Kind, 6> kinds{{{1, MakeLight<CTsPointLight>},
                                     {2, MakeLight<CTsSpotLight>},
                                     {3, MakeLight<CTsRectangularLight>},
                                     {4, MakeLight<CTsLinearLight>},
                                     {5, MakeLight<CTsGoniometricLight>},
                                     {6, MakeLight<CTsDaylightSource>}}};

} // namespace

int CTsLight::Type() const {
    switch (m_Distribution) {
    case CTsDistribution::spot:
        return 2;
    case CTsDistribution::web:
        return 5;
    case CTsDistribution::daylight:
        return 6;
    case CTsDistribution::parallel:
        return 1;
    default:
        break;
    }
    return m_Geometry == CTsGeometry::rectangle ? 3 : m_Geometry == CTsGeometry::tube ? 4 : 1;
}

std::unique_ptr<CTsLight> CTsLight::Make(int type) {
    for (const Kind& kind : kinds) {
        if (kind.type == type) {
            return kind.make();
        }
    }
    return std::make_unique<CTsPointLight>();
}

CTsSpotLight::CTsSpotLight() {
    m_Distribution = CTsDistribution::spot;
    m_Geometry = CTsGeometry::disc;
}

// The sizes are those that the dialog for a new light begins with.
CTsLinearLight::CTsLinearLight() {
    m_Distribution = CTsDistribution::diffuse;
    m_Geometry = CTsGeometry::tube;
    m_Length = 0.6096, m_Radius = 0.0127;
}

CTsRectangularLight::CTsRectangularLight() {
    m_Distribution = CTsDistribution::diffuse;
    m_Geometry = CTsGeometry::rectangle;
    m_Length = 0.6096, m_Width = 0.3048;
}

CTsGoniometricLight::CTsGoniometricLight() { m_Distribution = CTsDistribution::web; }

CTsDaylightSource::CTsDaylightSource() {
    m_Distribution = CTsDistribution::daylight;
    m_Geometry = CTsGeometry::rectangle;
    m_Length = 1, m_Width = 1;
}

std::unique_ptr<CTsLight> CTsPointLight::Clone() const {
    return std::make_unique<CTsPointLight>(*this);
}
std::unique_ptr<CTsLight> CTsSpotLight::Clone() const {
    return std::make_unique<CTsSpotLight>(*this);
}
std::unique_ptr<CTsLight> CTsLinearLight::Clone() const {
    return std::make_unique<CTsLinearLight>(*this);
}
std::unique_ptr<CTsLight> CTsRectangularLight::Clone() const {
    return std::make_unique<CTsRectangularLight>(*this);
}
std::unique_ptr<CTsLight> CTsGoniometricLight::Clone() const {
    return std::make_unique<CTsGoniometricLight>(*this);
}
std::unique_ptr<CTsLight> CTsDaylightSource::Clone() const {
    return std::make_unique<CTsDaylightSource>(*this);
}

// ---- fields ----

namespace {

constexpr auto light_fields = [](auto& self, auto&& visit) {
    visit("Name", self.m_Name);
    TsVisitAs<int>("Distribution", self.m_Distribution, visit);
    TsVisitAs<int>("Geometry", self.m_Geometry, visit);
    visit("Location", self.m_Location);
    visit("Direction", self.m_Direction);
    visit("XAxis", self.m_XAxis);
    visit("Radius", self.m_Radius);
    visit("Length", self.m_Length);
    visit("Width", self.m_Width);
    visit("Beam", self.m_Beam);
    visit("Field", self.m_Field);
    visit("Flux", self.m_Flux);
    visit("Color", self.m_Color);
    visit("Channel", self.m_Channel);
    visit("On", self.m_On);
    visit("CastsShadows", self.m_CastsShadows);
    visit("Visible", self.m_Visible);
    visit("HostUnits", self.m_HostUnits);
};

/// An enumeration that counts from 1 to `last`; another number becomes `fall_back`.
template <typename Enum>
void Choose(Enum& value, Enum last, Enum fall_back) {
    const int number = static_cast<int>(value);
    value = number >= 1 && number <= static_cast<int>(last) ? value : fall_back;
}

/// Any unit vector across `direction`.
CTsVector Across(const CTsVector& direction) {
    const bool steep = std::abs(direction.x) > 0.9;
    CTsVector across =
        steep ? CTsVector{-direction.y, direction.x, 0} : CTsVector{0, -direction.z, direction.y};
    TsMakeUnit(across, {1, 0, 0});
    return across;
}

/// Brings the axes into the form that the rest of the program relies on: unit and at right angles.
/// Directions come as 32-bit floats, and what is right within those stays as it is.
void StraightenAxes(CTsVector& direction, CTsVector& x_axis) {
    TsMakeUnit(direction, CTsLight().m_Direction);
    TsMakeUnit(x_axis, Across(direction));
    const double along = x_axis.x * direction.x + x_axis.y * direction.y + x_axis.z * direction.z;
    if (std::abs(along) > 1e-6) {
        x_axis = {x_axis.x - along * direction.x, x_axis.y - along * direction.y,
                  x_axis.z - along * direction.z};
        const bool lost = x_axis.Length() < 1e-6;
        x_axis = lost ? Across(direction) : x_axis;
        TsMakeUnit(x_axis, Across(direction));
    }
}

void BringIntoRange(CTsLight& light, const CTsLight& before) {
    Choose(light.m_Distribution, CTsDistribution::daylight, before.m_Distribution);
    Choose(light.m_Geometry, CTsGeometry::sphere, before.m_Geometry);
    TsClamp(light.m_Location);
    StraightenAxes(light.m_Direction, light.m_XAxis);
    for (double* size : {&light.m_Radius, &light.m_Length, &light.m_Width}) {
        TsClamp(*size, 0, 1e6);
    }
    TsClamp(light.m_Beam, 0, std::numbers::pi);
    TsClamp(light.m_Field, light.m_Beam, std::numbers::pi);
    TsClamp(light.m_Flux, 0, 1e15);
    TsClamp(light.m_Color);
    TsClamp(light.m_Channel, 0, 1000);
}

// ---- webs ----

/// Numbers with blanks between, as few digits as bring the same float back.
std::string FloatsText(const std::vector<float>& values) {
    std::string text;
    char number[32];
    for (const float value : values) {
        text += text.empty() ? "" : " ";
        text.append(number, std::to_chars(number, number + sizeof(number), value).ptr);
    }
    return text;
}

/// At most `most` numbers; what is none ends the list.
std::vector<float> ParseFloats(std::string_view text, std::size_t most) {
    std::vector<float> values;
    while (values.size() < most) {
        const std::size_t begin = text.find_first_not_of(" \t\r\n");
        text.remove_prefix(begin == std::string_view::npos ? text.size() : begin);
        float value = 0;
        const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
        if (result.ec != std::errc()) {
            break;
        }
        values.push_back(value);
        text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    }
    return values;
}

constexpr auto web_fields = [](auto& self, auto&& visit) {
    visit("Name", self.m_Name);
    visit("Symmetry", self.m_Symmetry);
    double multiplier = self.m_Multiplier;
    visit("Multiplier", multiplier);
    if constexpr (!std::is_const_v<std::remove_reference_t<decltype(self)>>) {
        TsClamp(multiplier, 0, 1e30);
        self.m_Multiplier = static_cast<float>(multiplier);
    }
};

/// The lists of a web, one element of text each. The candela values are those of one vertical angle
/// after the other.
constexpr auto web_lists = [](auto& self, auto&& visit) {
    visit("Horizontal", self.m_Horizontal, CTsPhotometricWeb::angle_limit);
    visit("Vertical", self.m_Vertical, CTsPhotometricWeb::angle_limit);
    visit("Candela", self.m_Candela, CTsPhotometricWeb::value_limit);
};

void WriteWeb(const CTsPhotometricWeb& web, pugi::xml_node node) {
    web_fields(web, CTsFieldWriter(node));
    web_lists(web, [&](const char* name, const std::vector<float>& values, std::size_t) {
        node.append_child(name).text() = FloatsText(values).c_str();
    });
}

void ReadWeb(CTsPhotometricWeb& web, CTsXmlRest& rest, pugi::xml_node node) {
    CTsFieldReader reader(node);
    web_fields(web, reader);
    std::vector<std::string_view> known = reader.Names();
    web_lists(web, [&](const char* name, std::vector<float>& values, std::size_t most) {
        known.emplace_back(name);
        values = ParseFloats(node.child(name).text().get(), most);
    });
    rest.Collect(node, known);
    for (float& value : web.m_Candela) {
        value = value < 0 ? 0 : value;
    }
    if (!web.Valid()) {
        web = {};
    }
}

} // namespace

// ---- reading and writing ----

void CTsLight::Write(CTsXmlWriter& writer) const {
    const pugi::xml_node node = writer.Open("TsLight");
    CTsFieldWriter fields(node);
    fields("Type", Type());
    light_fields(*this, fields);
    if (!m_Web.Empty()) {
        WriteWeb(m_Web, writer.Open("Web"));
        m_WebRest.Append(writer.Current());
        writer.CloseElement();
    }
    m_Rest.Append(node);
    writer.CloseElement();
}

void CTsLight::Read(pugi::xml_node node) {
    const CTsLight before = *this;
    TsReadFields(*this, node, light_fields, {"version", "Type", "Web"});
    BringIntoRange(*this, before);
    m_Web = {};
    m_WebRest = {};
    if (const pugi::xml_node web = node.child("Web")) {
        ReadWeb(m_Web, m_WebRest, web);
    }
}

std::unique_ptr<CTsLight> CTsLight::ReadXml(const CTsXmlReader& reader, std::string& error) {
    const pugi::xml_node root = reader.Root();
    if (std::string_view(root.name()) != "TsLight") {
        error = "is no light file";
        return nullptr;
    }
    // The type gives the values that the file leaves out; what the file tells decides in the end.
    std::unique_ptr<CTsLight> light = Make(root.attribute("Type").as_int(1));
    light->Read(root);
    std::unique_ptr<CTsLight> fitting = Make(light->Type());
    static_cast<CTsLight&>(*fitting) = *light;
    return fitting;
}

std::unique_ptr<CTsLight> CTsLight::ReadFile(const std::string& path, std::string& error) {
    CTsXmlReader reader;
    if (!reader.Init(path)) {
        error = reader.Error();
        return nullptr;
    }
    std::unique_ptr<CTsLight> light = ReadXml(reader, error);
    error = light ? "" : path + ": " + error;
    return light;
}
