// Ready-made plants. Sizes are those of grown garden and street plants; colours are display values
// chosen by eye from photographs.
#include "toolkit/ts_plant.h"

#include <algorithm>
#include <array>

namespace {

using Kind = CTsPlantKind;

/// One plant; words are further names, with commas between.
struct Row {
    const char* name;
    const char* words;
    Kind kind;
    double height, diameter, trunk_height, trunk_diameter;
    double leaf, width, droop, foliage, branches;
    int prune, bloom;
    bool evergreen;
    CTsColor spring, summer, autumn, flower, bark;
};

constexpr CTsColor brown{0.33, 0.26, 0.20}, grey{0.42, 0.39, 0.35}, dark{0.24, 0.20, 0.17};
constexpr CTsColor white{0.92, 0.91, 0.88};

// clang-format off
constexpr std::array rows{
    Row{"oak", "eiche,chene,quercus", Kind::broadleaf, 13, 12, 2.6, 0.6, 0.10, 0.55, 0.15, 1, 1,
        0, 0, false, {0.40, 0.50, 0.17}, {0.22, 0.36, 0.11}, {0.58, 0.36, 0.11}, white, dark},
    Row{"maple", "ahorn,erable,acer", Kind::broadleaf, 12, 9, 2.4, 0.4, 0.13, 0.85, 0.15, 1.1,
        1, 0, 0, false, {0.45, 0.56, 0.18}, {0.25, 0.42, 0.13}, {0.80, 0.38, 0.07}, white,
        grey},
    Row{"birch", "birke,bouleau,betula", Kind::broadleaf, 13, 6, 2.2, 0.26, 0.055, 0.7, 0.62,
        0.8, 1.1, 0, 0, false, {0.48, 0.58, 0.22}, {0.33, 0.47, 0.17}, {0.82, 0.64, 0.12},
        white, {0.82, 0.80, 0.76}},
    Row{"beech", "buche,hetre,fagus", Kind::broadleaf, 17, 12, 3, 0.6, 0.085, 0.62, 0.12, 1.15,
        1, 0, 0, false, {0.44, 0.56, 0.19}, {0.23, 0.38, 0.12}, {0.68, 0.36, 0.10}, white,
        {0.45, 0.43, 0.40}},
    Row{"lime", "linde,linden,tilleul,tilia,basswood", Kind::broadleaf, 14, 9, 2.6, 0.45, 0.09,
        0.85, 0.28, 1.15, 1, 0, 0, false, {0.46, 0.57, 0.20}, {0.27, 0.43, 0.14}, {0.78, 0.62,
        0.15}, white, brown},
    Row{"poplar", "pappel,peuplier,populus", Kind::broadleaf, 18, 3.4, 1.6, 0.45, 0.07, 0.8, 0,
        1, 1, 0, 0, false, {0.45, 0.54, 0.20}, {0.29, 0.43, 0.16}, {0.80, 0.64, 0.14}, white,
        grey},
    Row{"willow", "weide,saule,salix", Kind::broadleaf, 10, 10, 2, 0.55, 0.10, 0.16, 0.92, 1,
        0.9, 0, 0, false, {0.52, 0.60, 0.24}, {0.38, 0.50, 0.21}, {0.72, 0.63, 0.20}, white,
        brown},
    Row{"apple", "apfel,pommier,malus,fruit,obst", Kind::broadleaf, 5, 5, 1.3, 0.2, 0.07, 0.55,
        0.25, 1, 1, 0, 1, false, {0.42, 0.54, 0.20}, {0.26, 0.41, 0.14}, {0.66, 0.52, 0.14},
        {0.95, 0.86, 0.88}, brown},
    Row{"cherry", "kirsch,cerisier,prunus,sakura", Kind::broadleaf, 7, 6.5, 1.6, 0.26, 0.09,
        0.5, 0.2, 1, 1, 0, 1, false, {0.44, 0.42, 0.20}, {0.24, 0.39, 0.13}, {0.80, 0.32, 0.09},
        {0.95, 0.74, 0.80}, {0.30, 0.20, 0.18}},
    Row{"olive", "olivier,olea,oliven", Kind::broadleaf, 5.5, 5, 1.3, 0.4, 0.06, 0.2, 0.2, 0.95,
        1, 0, 0, true, {0.40, 0.46, 0.31}, {0.37, 0.43, 0.29}, {0.36, 0.41, 0.28}, white, grey},
    Row{"cypress", "zypresse,cupressus,thuja,column,saeule", Kind::conifer, 12, 1.8, 0.25, 0.25,
        0.03, 0.3, 0, 1, 1, 0, 0, true, {0.17, 0.28, 0.12}, {0.13, 0.23, 0.10}, {0.13, 0.22,
        0.10}, white, brown},
    Row{"spruce", "fichte,epicea,picea,conifer,christmas,nadel", Kind::conifer, 16, 6.4, 0.6,
        0.38, 0.022, 0.09, 0.55, 1, 1, 0, 0, true, {0.20, 0.34, 0.14}, {0.13, 0.24, 0.11},
        {0.12, 0.22, 0.11}, white, {0.34, 0.25, 0.20}},
    Row{"fir", "tanne,sapin,abies,douglas", Kind::conifer, 14, 6, 0.5, 0.36, 0.028, 0.1, 0.2,
        1.1, 1.1, 0, 0, true, {0.23, 0.38, 0.18}, {0.15, 0.28, 0.15}, {0.14, 0.26, 0.14}, white,
        grey},
    Row{"pine", "kiefer,pin,pinus,foehre", Kind::conifer, 13, 7.5, 6, 0.4, 0.11, 0.05, 0.1,
        0.85, 0.8, 0, 0, true, {0.24, 0.36, 0.17}, {0.18, 0.30, 0.15}, {0.18, 0.29, 0.14},
        white, {0.50, 0.32, 0.21}},
    Row{"yew", "eibe,if,taxus,juniper,wacholder", Kind::shrub, 2.6, 2.6, 0.1, 0.16, 0.03, 0.16,
        0.1, 1.2, 1.1, 0, 0, true, {0.19, 0.33, 0.12}, {0.12, 0.23, 0.09}, {0.12, 0.22, 0.09},
        white, {0.36, 0.22, 0.16}},
    Row{"box ball", "buchskugel,buxus,ball,kugel,topiary,boxwood", Kind::shrub, 0.9, 0.9, 0,
        0.05, 0.018, 0.6, 0.1, 1.1, 1, 1, 0, true, {0.32, 0.46, 0.15}, {0.20, 0.34, 0.11},
        {0.20, 0.32, 0.11}, white, brown},
    Row{"box hedge", "hedge,hecke,haie,buchshecke", Kind::shrub, 1, 1, 0, 0.05, 0.02, 0.6, 0.1,
        1.1, 1, 2, 0, true, {0.31, 0.45, 0.15}, {0.19, 0.33, 0.11}, {0.19, 0.31, 0.11}, white,
        brown},
    Row{"lavender", "lavendel,lavande,lavandula", Kind::flower, 0.55, 0.6, 0, 0.02, 0.05, 0.1,
        0.05, 1, 2, 0, 2, true, {0.45, 0.52, 0.38}, {0.42, 0.48, 0.36}, {0.40, 0.45, 0.35},
        {0.45, 0.36, 0.68}, brown},
    Row{"rose", "rosen,rosa,rosier", Kind::shrub, 1.1, 1, 0.1, 0.04, 0.045, 0.6, 0.25, 0.85,
        0.9, 0, 2 | 4, false, {0.36, 0.48, 0.18}, {0.20, 0.35, 0.13}, {0.45, 0.36, 0.13}, {0.78,
        0.16, 0.22}, {0.30, 0.30, 0.17}},
    Row{"rhododendron", "azalea,rhodo", Kind::shrub, 1.8, 2.1, 0.1, 0.08, 0.11, 0.34, 0.3, 1,
        0.9, 0, 1, true, {0.25, 0.40, 0.14}, {0.17, 0.31, 0.12}, {0.17, 0.29, 0.11}, {0.80,
        0.36, 0.62}, brown},
    Row{"hydrangea", "hortensie,hortensia", Kind::shrub, 1.3, 1.5, 0.05, 0.05, 0.13, 0.68, 0.3,
        1, 0.8, 0, 2 | 4, false, {0.40, 0.53, 0.19}, {0.25, 0.41, 0.14}, {0.52, 0.44, 0.16},
        {0.62, 0.68, 0.88}, brown},
    Row{"shrub", "bush,busch,strauch,hazel,hasel,dogwood,privet,liguster", Kind::shrub, 2.2,
        2.4, 0.15, 0.08, 0.07, 0.62, 0.25, 1, 1, 0, 0, false, {0.42, 0.54, 0.19}, {0.26, 0.41,
        0.14}, {0.70, 0.40, 0.11}, white, brown},
    Row{"fern", "farn,fougere,bracken", Kind::palm, 0.66, 1.4, 0, 0.05, 0.8, 0.3, 0.25, 0.7, 1,
        0, 0, true, {0.42, 0.56, 0.18}, {0.27, 0.44, 0.14}, {0.42, 0.42, 0.14}, white, {0.30,
        0.24, 0.14}},
    Row{"lawn", "rasen,gazon,turf", Kind::grass, 0.055, 0.24, 0, 0, 0.05, 0.07, 0.35, 1, 1, 0,
        0, true, {0.36, 0.50, 0.15}, {0.28, 0.43, 0.12}, {0.32, 0.42, 0.14}, white, brown},
    Row{"meadow", "wiese,prairie,wildflower", Kind::grass, 0.38, 0.5, 0, 0, 0.2, 0.03, 0.4, 1,
        1, 0, 2, false, {0.36, 0.49, 0.16}, {0.36, 0.46, 0.17}, {0.55, 0.49, 0.25}, {0.62, 0.50,
        0.30}, brown},
    Row{"tall grass", "grass,gras,graminee,miscanthus,pampas,ziergras", Kind::grass, 1.4, 1.3,
        0, 0, 0.6, 0.02, 0.7, 1.6, 1, 0, 2 | 4 | 8, false, {0.38, 0.50, 0.20}, {0.36, 0.46,
        0.19}, {0.66, 0.54, 0.28}, {0.78, 0.70, 0.56}, brown},
    Row{"reed", "schilf,roseau,phragmites,rush,bamboo", Kind::grass, 2.1, 0.8, 0, 0, 0.5, 0.04,
        0.12, 1, 1, 0, 2 | 4 | 8, false, {0.42, 0.52, 0.22}, {0.37, 0.46, 0.21}, {0.68, 0.57,
        0.32}, {0.45, 0.34, 0.26}, brown},
    Row{"tulip", "tulpe,tulipe,tulipa,narcissus,daffodil", Kind::flower, 0.42, 0.3, 0, 0.01,
        0.28, 0.2, 0.15, 1, 1, 0, 1, false, {0.36, 0.52, 0.27}, {0.36, 0.49, 0.25}, {0.55, 0.50,
        0.22}, {0.82, 0.12, 0.12}, {0.45, 0.38, 0.24}},
    Row{"daisy", "flower,blume,fleur,margerite,perennial,staude,aster,poppy,sunflower",
        Kind::flower, 0.5, 0.4, 0, 0.01, 0.09, 0.4, 0.2, 1, 1, 0, 1 | 2 | 4, false, {0.40, 0.54,
        0.19}, {0.29, 0.45, 0.15}, {0.45, 0.43, 0.17}, {0.94, 0.93, 0.90}, {0.42, 0.34, 0.20}},
    Row{"palm", "palme,palmier,phoenix,coconut,date", Kind::palm, 10, 6.6, 7, 0.36, 3.4, 0.3,
        0.35, 1, 1, 0, 0, true, {0.31, 0.43, 0.17}, {0.28, 0.40, 0.16}, {0.28, 0.39, 0.16},
        white, grey},
    Row{"fan palm", "faecherpalme,trachycarpus,washingtonia,chamaerops", Kind::palm, 5.5, 2.9,
        4, 0.26, 1.55, 0.9, 0.35, 1, 1, 0, 0, true, {0.30, 0.43, 0.18}, {0.26, 0.39, 0.17},
        {0.26, 0.38, 0.17}, white, {0.36, 0.28, 0.20}},
};
// clang-format on

std::string Lower(const std::string& text) {
    std::string lower = text;
    for (char& c : lower) {
        c = c >= 'A' && c <= 'Z'   ? static_cast<char>(c - 'A' + 'a')
            : c == '_' || c == '-' ? ' '
                                   : c;
    }
    return lower;
}

/// FNV-1a, the 32-bit form.
std::uint32_t SeedOf(const std::string& name) {
    std::uint32_t seed = 2166136261U;
    for (const char c : name) {
        seed = (seed ^ static_cast<unsigned char>(c)) * 16777619U;
    }
    return seed;
}

/// Length of the longest of a row's names that `text` contains.
std::size_t Fit(const Row& row, const std::string& text) {
    const std::string name = row.name;
    std::size_t best = text.find(name) != std::string::npos ? name.size() : 0;
    std::string_view words = row.words;
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(','), words.size());
        const std::string_view word = words.substr(0, end);
        // Short words stand in others ("if", "pin"): they count only as whole words.
        const std::string padded = " " + text + " ";
        const bool found = word.size() < 5
                               ? padded.find(" " + std::string(word) + " ") != std::string::npos
                               : text.find(word) != std::string::npos;
        best = found ? std::max(best, word.size()) : best;
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return best;
}

CTsPlantDefinition FromRow(const Row& row) {
    CTsPlantDefinition plant;
    plant.m_Name = row.name;
    plant.m_Kind = row.kind;
    plant.m_Height = row.height, plant.m_Diameter = row.diameter;
    plant.m_TrunkHeight = row.trunk_height, plant.m_TrunkDiameter = row.trunk_diameter;
    plant.m_LeafSize = row.leaf, plant.m_LeafWidth = row.width;
    plant.m_Droop = row.droop;
    plant.m_FoliageDensity = row.foliage, plant.m_BranchDensity = row.branches;
    plant.m_Prune = row.prune, plant.m_Bloom = row.bloom;
    plant.m_Evergreen = row.evergreen;
    plant.m_BarkColor = row.bark, plant.m_FlowerColor = row.flower;
    plant.m_LeafColor[0] = row.spring, plant.m_LeafColor[1] = row.summer;
    plant.m_LeafColor[2] = row.autumn;
    // What stays over winter is duller; what is dry by then is straw.
    const CTsColor& s = row.summer;
    plant.m_LeafColor[3] = row.evergreen
                               ? CTsColor{0.92 * s.r + 0.02, 0.88 * s.g + 0.02, 0.95 * s.b}
                               : CTsColor{0.58, 0.49, 0.30};
    plant.m_Seed = SeedOf(row.name);
    return plant;
}

} // namespace

CTsPlantDefinition CTsPlantDefinition::Named(const std::string& name) {
    const std::string text = Lower(name);
    const Row* best = nullptr;
    std::size_t length = 0;
    for (const Row& row : rows) {
        const std::size_t fit = text == row.name ? text.size() + 1 : Fit(row, text);
        if (fit > length) {
            best = &row, length = fit;
        }
    }
    CTsPlantDefinition plant = FromRow(best != nullptr ? *best : rows.front());
    if (text != plant.m_Name) {
        plant.m_Seed = SeedOf(text);
        plant.m_Name = name;
    }
    return plant;
}

const std::vector<std::string>& CTsPlantDefinition::Names() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        all.reserve(rows.size());
        for (const Row& row : rows) {
            all.emplace_back(row.name);
        }
        return all;
    }();
    return names;
}
