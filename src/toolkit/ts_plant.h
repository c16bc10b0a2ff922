// `CTsPlant`: a plant in the drawing, its definition, and covers of the ground made of such plants.
// Lengths metres, angles radians.
#pragma once

#include "toolkit/ts_math.h"
#include "toolkit/ts_xml.h"

#include <cstdint>
#include <string>
#include <vector>

/// As the setting `iks_plant_season` counts.
enum class CTsSeason { spring = 0, summer = 1, autumn = 2, winter = 3 };
enum class CTsPlantKind { broadleaf = 0, conifer = 1, shrub = 2, grass = 3, flower = 4, palm = 5 };

/// What a plant is: everything that its shape grows from.
struct CTsPlantDefinition {
    std::string m_Name, m_Library;
    CTsPlantKind m_Kind = CTsPlantKind::broadleaf;
    double m_Height = 8;   ///< of the grown plant
    double m_Diameter = 5; ///< of its crown
    double m_TrunkHeight = 1.8, m_TrunkDiameter = 0.25;
    double m_FoliageDensity = 1; ///< 0 to 2, factor on the number of leaves
    double m_BranchDensity = 1;  ///< 0 to 2, factor on the number of branches
    double m_LeafSize = 0.07;    ///< length of a leaf, blade or frond
    /// Its width, share of the length. Flowers bear spikes below 0.13, cups below 0.32, then discs;
    /// palms have fans above 0.5.
    double m_LeafWidth = 0.6;
    double m_Droop = 0.2; ///< 0 branches rise, 1 they hang
    std::uint32_t m_Seed = 1;
    int m_Prune = 0; ///< 0 free, 1 ball, 2 box, 3 cone
    CTsColor m_BarkColor{0.36, 0.28, 0.21};
    /// Of the leaves in spring, summer, autumn and winter; a winter colour is only seen on what
    /// keeps its leaves.
    CTsColor m_LeafColor[4] = {
        {0.42, 0.55, 0.19}, {0.24, 0.40, 0.13}, {0.72, 0.42, 0.10}, {0.30, 0.34, 0.18}};
    CTsColor m_FlowerColor{0.93, 0.90, 0.95};
    bool m_Evergreen = false;
    int m_Bloom = 0; ///< seasons with blossoms: 1 spring, 2 summer, 4 autumn, 8 winter, or a sum
    CTsXmlRest m_Rest;

    void Write(pugi::xml_node node) const;
    void Read(pugi::xml_node node); ///< numbers out of range are brought into it
    void BringIntoRange();
    bool operator==(const CTsPlantDefinition&) const = default;

    /// Ready-made definitions by name without case ("oak", "birch", "pine", "box hedge", "lawn"
    /// ...); a name that is not known gives the nearest kind by its words, else a broadleaf tree,
    /// with a seed made from the name.
    static CTsPlantDefinition Named(const std::string& name);
    static const std::vector<std::string>& Names();
};

/// One placing of a plant.
class CTsPlant {
public:
    CTsPlantDefinition m_Definition;
    std::string m_DefinitionFile; ///< without a path
    CTsPoint m_Location;
    double m_Rotation = 0; ///< about Z
    double m_Scale = 1;
    double m_Diameter = 0; ///< 0: that of the definition
    int m_Season = 1;      ///< see CTsSeason
    CTsXmlRest m_Rest;

    /// Root element `TsPlant`: the placing. Read also takes `TsGroundCover`; false for another
    /// root.
    void Write(CTsXmlWriter& writer) const;
    bool Read(const CTsXmlReader& reader);
    /// Root element `TsPlantDef`: the definition.
    void WritePlantDef(CTsXmlWriter& writer) const;
    /// Also takes `TsGroundCoverDef`, for a plant that stands for a cover. False for another root.
    bool ReadPlantDef(const CTsXmlReader& reader);

    // A plant as a ground cover.
    bool m_IsCover = false;
    int m_CoverNumber = 1;                    ///< told in the stream with each mesh that is covered
    double m_CoverDensity = 60;               ///< plants a square metre
    double m_CoverSpread = 1;                 ///< 0 a regular grid to 1 free places
    double m_CoverVariation = 0.35;           ///< of the plants' sizes, share
    double m_CoverSlope = 1.0471975511965976; ///< steeper faces stay bare
    /// Root elements `TsGroundCover` (placing and cover) and `TsGroundCoverDef` (definition and
    /// cover: all that a renderer needs, since the stream names this file alone).
    void WriteCover(CTsXmlWriter& writer) const;
    void WriteCoverDef(CTsXmlWriter& writer) const;
    int GetCoverNumber() const { return m_CoverNumber; }
};

/// A grown plant: parts of one look each, in metres, Z up, standing on the origin.
struct CTsPlantPart {
    enum class Look { bark, leaf, flower } look = Look::bark;
    CTsColor color;
    std::vector<float> positions;         ///< x, y, z
    std::vector<float> normals;           ///< as many
    std::vector<std::uint32_t> triangles; ///< three indices each
};
struct CTsPlantShape {
    std::vector<CTsPlantPart> parts; ///< none is empty
    std::size_t TriangleCount() const;
};

/// Grows the shape of a definition. Equal arguments give equal shapes. `detail` 0 (a distant
/// stand-in, some hundred triangles) to 3 (close-ups); 1 is the setting's default and stays below
/// 60,000 triangles. `density` scales foliage beside the definition's own. Leaves that do not fit
/// are drawn fewer and larger. Numbers out of range are brought into it.
CTsPlantShape TsGrowPlant(const CTsPlantDefinition& definition, CTsSeason season, int detail = 1,
                          double density = 1);

/// One plant of a cover.
struct CTsCoverPlace {
    CTsPoint location;
    double rotation = 0; ///< about Z, radians
    double scale = 1;
};
/// Places for the plants of a cover on the triangle a, b, c (metres): evenly spread without a
/// visible pattern, the same for the same triangle, seed and cover. Places hang on the world's x
/// and y alone, so that faces of one seed continue each other without seams. At most `most` places:
/// a face that would hold more has them further apart.
std::vector<CTsCoverPlace> TsScatterCover(const CTsPlant& cover, const CTsPoint& a,
                                          const CTsPoint& b, const CTsPoint& c, std::uint32_t seed,
                                          std::size_t most);
