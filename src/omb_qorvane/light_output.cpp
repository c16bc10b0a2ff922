// Lights: `light_%d.xml` and the record that names it.
#include "host/db/light.h"
#include "omb/base/folders.h"
#include "omb/base/trace.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/drawing_files.h"
#include "omb_qorvane/entity_functions.h"
#include "omb_qorvane/omb_export.h"
#include "omb_qorvane/ts_ac_convert.h"
#include "omb_qorvane/ts_ac_light.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fmt/printf.h>
#include <numbers>

namespace {

/// Host lights are taken for feet, whatever the drawing's unit; readers know them by their mark.
constexpr double host_light_unit = 0.3048;
constexpr float flux_of_intensity = 1700;
constexpr double flux_factor = 20.799999999999997; // the next double below 20.8

double as_float(double value) { return static_cast<double>(static_cast<float>(value)); }

bool is_finite_light(const CTsLight& light) {
    return std::isfinite(light.m_Location.x) && std::isfinite(light.m_Location.y) &&
           std::isfinite(light.m_Location.z) && std::isfinite(light.m_Flux) &&
           std::isfinite(light.m_Direction.x) && std::isfinite(light.m_Direction.y) &&
           std::isfinite(light.m_Direction.z);
}

/// File and record. The light's number, or -1 when it could not be written.
int write_light(const CTsLight& light, int record_type, CTsAcCommonDraw& draw) {
    cl_omb_export& exporter = draw.exporter;
    if (!is_finite_light(light)) {
        ++draw.report.bad_primitives;
        return -1;
    }
    exporter.num_lighting_channels = std::max(exporter.num_lighting_channels, light.m_Channel);
    const int number = ++exporter.next_light_number;
    const std::string path =
        join_path(exporter.get_drawing_lights_folder(), fmt::sprintf("light_%d.xml", number));
    std::error_code error;
    std::filesystem::remove(path, error); // a folder with something in it stays
    if (error) {
        acutPrintf(fmt::sprintf("\nRender Error: Cannot save light file: %s", path));
        OMB_TRACE(0, "Render Error: Cannot save light file: %s", path);
        return -1;
    }
    CTsXmlWriter writer;
    writer.Init(path, 0, -1);
    light.Write(writer);
    if (!writer.Close()) {
        acutPrintf(fmt::sprintf("\nRender Error: Cannot save light file: %s", path));
        OMB_TRACE(0, "Render Error: Cannot save light file: %s", writer.Error());
        return -1;
    }
    draw.stream.text(fmt::sprintf("#;\nLTYP;%d\nLORG;(%f, %f, %f)\nLGHT;%d\n", record_type,
                                  light.m_Location.x, light.m_Location.y, light.m_Location.z,
                                  number));
    return number;
}

/// Types of host lights and what each becomes; all others shine in one direction.
struct host_light_row {
    int host_type;
    CTsDistribution distribution;
    CTsGeometry geometry;
    int record_type;
};
constexpr host_light_row host_light_rows[] = {
    {AcDbLight::kSpotLight, CTsDistribution::spot, CTsGeometry::disc, 2},
    {AcDbLight::kPointLight, CTsDistribution::uniform, CTsGeometry::point, 1},
};
constexpr host_light_row other_host_light{0, CTsDistribution::parallel, CTsGeometry::infinite, 4};

const host_light_row& row_of(int host_type) {
    for (const host_light_row& row : host_light_rows) {
        if (row.host_type == host_type) {
            return row;
        }
    }
    return other_host_light;
}

/// A web light keeps its place and its measured candela, times the light's intensity, beside the
/// record of its kind. One whose file cannot be read shines like a bulb in all directions.
void add_web(const AcDbLight& light, CTsLight& out) {
    const std::string path = find_drawing_file(light.webFile());
    std::string error = "not found";
    if (!path.empty() && out.m_Web.ReadFile(path, error)) {
        out.m_Web.m_Multiplier *= static_cast<float>(light.intensity());
        return;
    }
    OMB_TRACE(0, "Photometric file of light \"%s\": %s: %s", light.name(), light.webFile(), error);
    out.m_Web.m_Horizontal = {0};
    out.m_Web.m_Vertical = {0, std::numbers::pi_v<float>};
    const auto candela = static_cast<float>(out.m_Flux / (4 * std::numbers::pi));
    out.m_Web.m_Candela = {candela, candela};
}

/// Other lights' channel; a setting of fewer channels than it takes is raised.
int channel_of_other_lights() {
    constexpr int fewest_channels = 3;
    if (get_global_int("iks_lighting_channels") < fewest_channels) {
        set_global_int("iks_lighting_channels", fewest_channels);
    }
    return get_global_int("iks_channel_other");
}

} // namespace

void write_host_light(const AcGiDrawable& drawable, CTsAcCommonDraw& draw) {
    const auto& host = static_cast<const AcDbLight&>(drawable);
    if (!host.isOn() || draw.scan_only) {
        return;
    }
    // The file's numbers are those of the drawing's world: a light in a block moves with it.
    const AcGeMatrix3d to_world = draw.tsdoc.ModelToWorldTransform();
    const AcGePoint3d position = host.position().transformedBy(to_world);
    const AcGeVector3d direction = host.lightDirection().transformedBy(to_world).normal();
    const host_light_row& row = row_of(host.lightType());
    CTsLight light;
    light.m_Name = host.name();
    light.m_HostUnits = true;
    light.m_Location = {as_float(position.x * host_light_unit),
                        as_float(position.y * host_light_unit),
                        as_float(position.z * host_light_unit)};
    light.m_Direction = {as_float(direction.x), as_float(direction.y), as_float(direction.z)};
    light.SetFlux(static_cast<double>(static_cast<float>(host.intensity()) * flux_of_intensity) *
                  flux_factor);
    const std::uint32_t rgb = host.lightRgb();
    light.SetColor({(rgb >> 16 & 0xff) / 255.0, (rgb >> 8 & 0xff) / 255.0, (rgb & 0xff) / 255.0});
    light.SetChannel(channel_of_other_lights());
    light.m_CastsShadows = host.castShadows();
    light.m_Distribution = row.distribution;
    light.m_Geometry = row.geometry;
    light.m_Radius = 0;
    if (row.distribution == CTsDistribution::spot) {
        light.m_Beam = host.hotspotAngle() * 0.5;
        light.m_Field = host.falloffAngle() * 0.5;
    }
    if (host.lightType() == AcDbLight::kWebLight) {
        add_web(host, light);
    }
    write_light(light, row.record_type, draw);
}

void TsAcProcessNewLightInfo(const AcDbEntity& entity, CTsAcCommonDraw& draw) {
    if (!entity.mayHaveAttachments() || draw.scan_only) {
        return;
    }
    CTsAcLight light;
    if (!draw.tsdoc.IsLight(entity) || !light.load_from_entity(entity, true) || !light.m_On) {
        return;
    }
    AcGePoint3d location;
    AcGeVector3d direction, x_axis;
    if (!light.place_on(entity, location, direction, x_axis)) {
        OMB_TRACE(1, "%s", std::string("A light record on an entity without a size is left out."));
        return;
    }
    const auto place = [&](CTsLight& at) {
        at.m_Location = draw.tsdoc.ToTs(to_ts(location));
        at.m_Direction = to_ts(to_ac(draw.tsdoc.ToTs(to_ts(direction))).normal());
        at.m_XAxis = to_ts(to_ac(draw.tsdoc.ToTs(to_ts(x_axis))).normal());
    };
    if (light.m_Flags < 0) {
        light.m_Distribution = CTsDistribution::daylight;
        light.m_Geometry = CTsGeometry::infinite;
    }
    place(light);
    const int number = write_light(light, light.Type(), draw);
    if (number < 0) {
        return;
    }
    draw.traits->light_number = number; // the entity's meshes are its lamp
    draw.traits->channel = static_cast<std::uint32_t>(std::max(light.m_Channel, 0));
    if (CTsLight source; light.LoadImplicitSource(source)) {
        place(source);
        write_light(source, source.Type(), draw);
    }
}
