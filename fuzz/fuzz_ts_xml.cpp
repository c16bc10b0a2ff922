// The readers of the files of lights, plants, covers and decals: any bytes are refused or read;
// what was read comes back the same after a write, and distant plants grow from it.
#include "toolkit/ts_decal.h"
#include "toolkit/ts_light.h"
#include "toolkit/ts_plant.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string_view>

namespace {

std::string written(const std::function<void(CTsXmlWriter&)>& write) {
    CTsXmlWriter writer;
    writer.Init("", 0, -1);
    write(writer);
    return writer.Text();
}

/// What is written is read and written once more: both texts must be equal.
template <typename Thing>
void check(const Thing& thing, void (Thing::*write)(CTsXmlWriter&) const,
           const std::function<bool(Thing&, const CTsXmlReader&)>& read) {
    const std::string once = written([&](CTsXmlWriter& writer) { (thing.*write)(writer); });
    CTsXmlReader reader;
    Thing back;
    if (!reader.InitFromText(once, "again") || !read(back, reader) ||
        written([&](CTsXmlWriter& writer) { (back.*write)(writer); }) != once) {
        std::abort();
    }
}

void check_plant(const CTsXmlReader& reader) {
    CTsPlant plant;
    const auto read = [](CTsPlant& p, const CTsXmlReader& r) { return p.Read(r); };
    const auto read_def = [](CTsPlant& p, const CTsXmlReader& r) { return p.ReadPlantDef(r); };
    if (plant.Read(reader)) {
        check<CTsPlant>(plant, plant.m_IsCover ? &CTsPlant::WriteCover : &CTsPlant::Write, read);
    }
    if (plant.ReadPlantDef(reader)) {
        check<CTsPlant>(
            plant, plant.m_IsCover ? &CTsPlant::WriteCoverDef : &CTsPlant::WritePlantDef, read_def);
        const auto season = static_cast<CTsSeason>(plant.m_Season);
        if (TsGrowPlant(plant.m_Definition, season, 0).TriangleCount() > 900) {
            std::abort();
        }
        if (TsScatterCover(plant, {}, {3, 0, 0}, {0, 3, 1}, 1, 1000).size() > 1000) {
            std::abort();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CTsXmlReader reader;
    if (!reader.InitFromText({reinterpret_cast<const char*>(data), size}, "fuzz")) {
        return 0;
    }
    std::string error;
    if (const auto light = CTsLight::ReadXml(reader, error)) {
        const auto read = [](CTsLight& l, const CTsXmlReader& r) {
            l.Read(r.Root());
            return true;
        };
        check<CTsLight>(*light, &CTsLight::Write, read);
    }
    check_plant(reader);
    if (std::string_view(reader.Root().name()) == "TsDecal") {
        CTsDecal decal;
        decal.Read(reader.Root());
        check<CTsDecal>(decal, &CTsDecal::Write, [](CTsDecal& d, const CTsXmlReader& r) {
            d.Read(r.Root());
            return true;
        });
    }
    return 0;
}
