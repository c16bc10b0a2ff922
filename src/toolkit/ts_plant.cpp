// Plants and their files, see ts_plant.h.
#include "toolkit/ts_plant.h"

#include "toolkit/ts_fields.h"

#include <numbers>

namespace {

constexpr auto definition_fields = [](auto& self, auto&& visit) {
    visit("Name", self.m_Name);
    visit("Library", self.m_Library);
    TsVisitAs<int>("Kind", self.m_Kind, visit);
    visit("Height", self.m_Height);
    visit("Diameter", self.m_Diameter);
    visit("TrunkHeight", self.m_TrunkHeight);
    visit("TrunkDiameter", self.m_TrunkDiameter);
    visit("FoliageDensity", self.m_FoliageDensity);
    visit("BranchDensity", self.m_BranchDensity);
    visit("LeafSize", self.m_LeafSize);
    visit("LeafWidth", self.m_LeafWidth);
    visit("Droop", self.m_Droop);
    visit("Prune", self.m_Prune);
    visit("BarkColor", self.m_BarkColor);
    visit("SpringColor", self.m_LeafColor[0]);
    visit("SummerColor", self.m_LeafColor[1]);
    visit("AutumnColor", self.m_LeafColor[2]);
    visit("WinterColor", self.m_LeafColor[3]);
    visit("FlowerColor", self.m_FlowerColor);
    visit("Evergreen", self.m_Evergreen);
    visit("Bloom", self.m_Bloom);
};

/// The seed is a whole number of 32 bits, which only a double among the plain types can hold.
constexpr auto seed_field = [](auto& self, auto&& visit) {
    double seed = self.m_Seed;
    visit("Seed", seed);
    if constexpr (!std::is_const_v<std::remove_reference_t<decltype(self)>>) {
        TsClamp(seed, 0, 4294967295.0);
        self.m_Seed = static_cast<std::uint32_t>(seed);
    }
};

constexpr auto place_fields = [](auto& self, auto&& visit) {
    visit("Definition", self.m_DefinitionFile);
    visit("Location", self.m_Location);
    visit("Rotation", self.m_Rotation);
    visit("Scale", self.m_Scale);
    visit("Diameter", self.m_Diameter);
    visit("Season", self.m_Season);
};

constexpr auto cover_fields = [](auto& self, auto&& visit) {
    visit("CoverNumber", self.m_CoverNumber);
    visit("CoverDensity", self.m_CoverDensity);
    visit("CoverSpread", self.m_CoverSpread);
    visit("CoverVariation", self.m_CoverVariation);
    visit("CoverSlope", self.m_CoverSlope);
};

void BringIntoRange(CTsPlant& plant) {
    TsClamp(plant.m_Location);
    TsClamp(plant.m_Rotation, -1e6, 1e6);
    TsClamp(plant.m_Scale, 1e-4, 1e4);
    TsClamp(plant.m_Diameter, 0, 150);
    plant.m_Season = plant.m_Season < 0 || plant.m_Season > 3 ? 1 : plant.m_Season;
    TsClamp(plant.m_CoverNumber, 0, 1'000'000'000);
    TsClamp(plant.m_CoverDensity, 0, 1e5);
    TsClamp(plant.m_CoverSpread, 0, 1);
    TsClamp(plant.m_CoverVariation, 0, 0.95);
    TsClamp(plant.m_CoverSlope, 0, std::numbers::pi / 2);
}

/// The names that a list of fields shows.
template <typename Self, typename Fields>
void AddNames(Self& self, Fields&& fields, std::vector<std::string_view>& names) {
    CTsFieldReader reader{pugi::xml_node()};
    fields(self, reader);
    names.insert(names.end(), reader.Names().begin(), reader.Names().end());
}

bool IsCover(pugi::xml_node root) {
    return std::string_view(root.name()).starts_with("TsGroundCover");
}

} // namespace

// ---- definitions ----

void CTsPlantDefinition::Write(pugi::xml_node node) const {
    TsWriteFields(*this, node, [](auto& self, auto&& visit) {
        definition_fields(self, visit);
        seed_field(self, visit);
    });
}

void CTsPlantDefinition::Read(pugi::xml_node node) {
    std::vector<std::string_view> known{"version"};
    if (IsCover(node)) {
        CTsPlant other;
        AddNames(other, cover_fields, known);
    }
    TsReadFields(
        *this, node,
        [](auto& self, auto&& visit) {
            definition_fields(self, visit);
            seed_field(self, visit);
        },
        known);
    BringIntoRange();
}

void CTsPlantDefinition::BringIntoRange() {
    const int kind = static_cast<int>(m_Kind);
    if (kind < 0 || kind > static_cast<int>(CTsPlantKind::palm)) {
        m_Kind = CTsPlantKind::broadleaf;
    }
    TsClamp(m_Height, 0.005, 150);
    TsClamp(m_Diameter, 0.005, 150);
    TsClamp(m_TrunkHeight, 0, m_Height);
    TsClamp(m_TrunkDiameter, 0, m_Diameter);
    TsClamp(m_FoliageDensity, 0, 2);
    TsClamp(m_BranchDensity, 0, 2);
    TsClamp(m_LeafSize, 0.001, 5);
    TsClamp(m_LeafWidth, 0.005, 2);
    TsClamp(m_Droop, 0, 1);
    m_Bloom &= 15;
    m_Prune = m_Prune < 0 || m_Prune > 3 ? 0 : m_Prune;
    for (CTsColor& color : m_LeafColor) {
        TsClamp(color);
    }
    TsClamp(m_BarkColor);
    TsClamp(m_FlowerColor);
}

void CTsPlant::WritePlantDef(CTsXmlWriter& writer) const {
    m_Definition.Write(writer.Open("TsPlantDef"));
    writer.CloseElement();
}

void CTsPlant::WriteCoverDef(CTsXmlWriter& writer) const {
    const pugi::xml_node node = writer.Open("TsGroundCoverDef");
    cover_fields(*this, CTsFieldWriter(node));
    m_Definition.Write(node);
    writer.CloseElement();
}

bool CTsPlant::ReadPlantDef(const CTsXmlReader& reader) {
    const pugi::xml_node root = reader.Root();
    const std::string_view name = root.name();
    if (name != "TsPlantDef" && name != "TsGroundCoverDef") {
        return false;
    }
    m_Definition.Read(root);
    m_IsCover = IsCover(root);
    if (m_IsCover) {
        CTsFieldReader fields(root);
        cover_fields(*this, fields);
        BringIntoRange(*this);
    }
    return true;
}

// ---- places ----

void CTsPlant::Write(CTsXmlWriter& writer) const {
    TsWriteFields(*this, writer.Open("TsPlant"), place_fields);
    writer.CloseElement();
}

void CTsPlant::WriteCover(CTsXmlWriter& writer) const {
    TsWriteFields(*this, writer.Open("TsGroundCover"), [](auto& self, auto&& visit) {
        place_fields(self, visit);
        cover_fields(self, visit);
    });
    writer.CloseElement();
}

bool CTsPlant::Read(const CTsXmlReader& reader) {
    const pugi::xml_node root = reader.Root();
    const std::string_view name = root.name();
    if (name != "TsPlant" && name != "TsGroundCover") {
        return false;
    }
    m_IsCover = IsCover(root);
    TsReadFields(*this, root,
                 [](auto& self, auto&& visit) {
                     place_fields(self, visit);
                     if (self.m_IsCover) {
                         cover_fields(self, visit);
                     }
                 },
                 {"version"});
    BringIntoRange(*this);
    return true;
}
