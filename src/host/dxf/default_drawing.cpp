// The file of a new drawing, from which new databases are read like any other. What is here is
// what programs expect of a complete drawing; all else is left to their defaults.
#include "host/dxf/reader.h"

#include <string_view>

namespace dxf {
namespace {

// Groups as code and value, apart by semicolons, an object a line. Handles below 0x40 are given
// here; $HANDSEED leads on from there.
// Long rows are broken into pieces on purpose.
// NOLINTBEGIN(bugprone-suspicious-missing-comma)
constexpr std::string_view kHeader[] = {
    "0|SECTION;2|HEADER",
    "9|$ACADVER;1|AC1027;9|$DWGCODEPAGE;3|ANSI_1252;9|$HANDSEED;5|40",
    "9|$INSBASE;10|0.0;20|0.0;30|0.0;9|$EXTMIN;10|0.0;20|0.0;30|0.0;9|$EXTMAX;10|0.0;20|0.0;30|0.0",
    "9|$LIMMIN;10|0.0;20|0.0;9|$LIMMAX;10|420.0;20|297.0;9|$LTSCALE;40|1.0",
    "9|$TEXTSIZE;40|0.2;9|$TEXTSTYLE;7|Standard;9|$CLAYER;8|0;9|$CELTYPE;6|ByLayer;9|$CECOLOR;62|"
    "256",
    "9|$DIMSTYLE;2|Standard;9|$LUNITS;70|2;9|$LUPREC;70|4;9|$AUNITS;70|0;9|$AUPREC;70|2",
    "9|$TILEMODE;70|1;9|$MEASUREMENT;70|1;9|$INSUNITS;70|6;9|$FACETRES;40|0.5;9|$PSTYLEMODE;290|1",
    "0|ENDSEC",
};

constexpr std::string_view kClasses[] = {
    "0|SECTION;2|CLASSES",
    "0|CLASS;1|ACDBDICTIONARYWDFLT;2|AcDbDictionaryWithDefault;3|ObjectDBX "
    "Classes;90|0;91|1;280|0;281|0",
    "0|CLASS;1|ACDBPLACEHOLDER;2|AcDbPlaceHolder;3|ObjectDBX Classes;90|0;91|1;280|0;281|0",
    "0|CLASS;1|LAYOUT;2|AcDbLayout;3|ObjectDBX Classes;90|0;91|2;280|0;281|0",
    "0|CLASS;1|MATERIAL;2|AcDbMaterial;3|ObjectDBX Classes;90|1153;91|3;280|0;281|0",
    "0|CLASS;1|MESH;2|AcDbSubDMesh;3|ObjectDBX Classes;90|0;91|0;280|0;281|1",
    "0|CLASS;1|SUN;2|AcDbSun;3|SCENEOE;90|1153;91|0;280|0;281|0",
    "0|ENDSEC",
};

constexpr std::string_view kTables[] = {
    "0|SECTION;2|TABLES",
    "0|TABLE;2|VPORT;5|8;330|0;100|AcDbSymbolTable;70|1",
    "0|VPORT;5|29;330|8;100|AcDbSymbolTableRecord;100|AcDbViewportTableRecord;2|*Active;70|0;"
    "10|0.0;20|0.0;11|1.0;21|1.0;12|0.0;22|0.0;13|0.0;23|0.0;14|10.0;24|10.0;15|10.0;25|10.0;"
    "16|0.0;26|0.0;36|1.0;17|0.0;27|0.0;37|0.0;40|10.0;41|1.5;42|50.0;43|0.0;44|0.0;50|0.0;51|0.0;"
    "71|0;72|1000;73|1;74|3;75|0;76|0;77|0;78|0;281|0;65|1;"
    "110|0.0;120|0.0;130|0.0;111|1.0;121|0.0;131|0.0;112|0.0;122|1.0;132|0.0;79|0;146|0.0",
    "0|ENDTAB",
    "0|TABLE;2|LTYPE;5|5;330|0;100|AcDbSymbolTable;70|3",
    "0|LTYPE;5|14;330|5;100|AcDbSymbolTableRecord;100|AcDbLinetypeTableRecord;2|ByBlock;70|0;3|;"
    "72|65;73|0;40|0.0",
    "0|LTYPE;5|15;330|5;100|AcDbSymbolTableRecord;100|AcDbLinetypeTableRecord;2|ByLayer;70|0;3|;"
    "72|65;73|0;40|0.0",
    "0|LTYPE;5|16;330|5;100|AcDbSymbolTableRecord;100|AcDbLinetypeTableRecord;2|Continuous;70|0;"
    "3|Solid line;72|65;73|0;40|0.0",
    "0|ENDTAB",
    "0|TABLE;2|LAYER;5|2;330|0;100|AcDbSymbolTable;70|1",
    "0|LAYER;5|10;330|2;100|AcDbSymbolTableRecord;100|AcDbLayerTableRecord;2|0;70|0;62|7;"
    "6|Continuous;370|-3;390|2F;347|2E",
    "0|ENDTAB",
    "0|TABLE;2|STYLE;5|3;330|0;100|AcDbSymbolTable;70|1",
    "0|STYLE;5|11;330|3;100|AcDbSymbolTableRecord;100|AcDbTextStyleTableRecord;2|Standard;70|0;"
    "40|0.0;41|1.0;50|0.0;71|0;42|0.2;3|txt;4|",
    "0|ENDTAB",
    "0|TABLE;2|VIEW;5|6;330|0;100|AcDbSymbolTable;70|0",
    "0|ENDTAB",
    "0|TABLE;2|UCS;5|7;330|0;100|AcDbSymbolTable;70|0",
    "0|ENDTAB",
    "0|TABLE;2|APPID;5|9;330|0;100|AcDbSymbolTable;70|1",
    "0|APPID;5|12;330|9;100|AcDbSymbolTableRecord;100|AcDbRegAppTableRecord;2|ACAD;70|0",
    "0|ENDTAB",
    "0|TABLE;2|DIMSTYLE;5|A;330|0;100|AcDbSymbolTable;70|1;100|AcDbDimStyleTable",
    "0|DIMSTYLE;105|27;330|A;100|AcDbSymbolTableRecord;100|AcDbDimStyleTableRecord;2|Standard;70|0;"
    "340|11",
    "0|ENDTAB",
    "0|TABLE;2|BLOCK_RECORD;5|1;330|0;100|AcDbSymbolTable;70|2",
    "0|BLOCK_RECORD;5|1F;330|1;100|AcDbSymbolTableRecord;100|AcDbBlockTableRecord;2|*Model_Space;"
    "340|22;70|0;280|1;281|0",
    "0|BLOCK_RECORD;5|1B;330|1;100|AcDbSymbolTableRecord;100|AcDbBlockTableRecord;2|*Paper_Space;"
    "340|1E;70|0;280|1;281|0",
    "0|ENDTAB",
    "0|ENDSEC",
};

constexpr std::string_view kBlocks[] = {
    "0|SECTION;2|BLOCKS",
    "0|BLOCK;5|20;330|1F;100|AcDbEntity;8|0;100|AcDbBlockBegin;2|*Model_Space;70|0;"
    "10|0.0;20|0.0;30|0.0;3|*Model_Space;1|",
    "0|ENDBLK;5|21;330|1F;100|AcDbEntity;8|0;100|AcDbBlockEnd",
    "0|BLOCK;5|1C;330|1B;100|AcDbEntity;67|1;8|0;100|AcDbBlockBegin;2|*Paper_Space;70|0;"
    "10|0.0;20|0.0;30|0.0;3|*Paper_Space;1|",
    "0|ENDBLK;5|1D;330|1B;100|AcDbEntity;67|1;8|0;100|AcDbBlockEnd",
    "0|ENDSEC",
    "0|SECTION;2|ENTITIES",
    "0|ENDSEC",
};

constexpr std::string_view kObjects[] = {
    "0|SECTION;2|OBJECTS",
    "0|DICTIONARY;5|C;330|0;100|AcDbDictionary;281|1;3|ACAD_GROUP;350|D;3|ACAD_LAYOUT;350|1A;"
    "3|ACAD_MATERIAL;350|2B;3|ACAD_MLINESTYLE;350|17;3|ACAD_PLOTSETTINGS;350|19;"
    "3|ACAD_PLOTSTYLENAME;350|E",
    "0|DICTIONARY;5|D;330|C;100|AcDbDictionary;281|1",
    "0|DICTIONARY;5|1A;330|C;100|AcDbDictionary;281|1;3|Layout1;350|1E;3|Model;350|22",
    "0|DICTIONARY;5|2B;330|C;100|AcDbDictionary;281|1;3|ByBlock;350|2C;3|ByLayer;350|2D;"
    "3|Global;350|2E",
    "0|DICTIONARY;5|17;330|C;100|AcDbDictionary;281|1;3|Standard;350|18",
    "0|DICTIONARY;5|19;330|C;100|AcDbDictionary;281|1",
    "0|ACDBDICTIONARYWDFLT;5|E;330|C;100|AcDbDictionary;281|1;3|Normal;350|2F;"
    "100|AcDbDictionaryWithDefault;340|2F",
    "0|ACDBPLACEHOLDER;5|2F;330|E",
    "0|MLINESTYLE;5|18;330|17;100|AcDbMlineStyle;2|Standard;70|0;3|;62|256;51|90.0;52|90.0;71|2;"
    "49|0.5;62|256;6|BYLAYER;49|-0.5;62|256;6|BYLAYER",
    "0|MATERIAL;5|2C;330|2B;100|AcDbMaterial;1|ByBlock",
    "0|MATERIAL;5|2D;330|2B;100|AcDbMaterial;1|ByLayer",
    "0|MATERIAL;5|2E;330|2B;100|AcDbMaterial;1|Global",
};

// NOLINTEND(bugprone-suspicious-missing-comma)

/// A layout but for its name, order, flags and block.
constexpr std::string_view kPlotSettings =
    "100|AcDbPlotSettings;1|;2|none_device;4|;6|;40|0.0;41|0.0;42|0.0;43|0.0;44|0.0;45|0.0;46|0.0;"
    "47|0.0;48|0.0;49|0.0;140|0.0;141|0.0;142|1.0;143|1.0;70|1712;72|0;73|0;74|0;7|;75|0;147|1.0;"
    "76|0;77|2;78|300;148|0.0;149|0.0";
constexpr std::string_view kLayoutFrame =
    "10|0.0;20|0.0;11|12.0;21|9.0;12|0.0;22|0.0;32|0.0;14|0.0;24|0.0;34|0.0;15|0.0;25|0.0;35|0.0;"
    "146|0.0;13|0.0;23|0.0;33|0.0;16|1.0;26|0.0;36|0.0;17|0.0;27|1.0;37|0.0;76|0";

void put(std::string& out, std::string_view groups) {
    while (!groups.empty()) {
        const std::size_t stop = std::min(groups.find(';'), groups.size());
        const std::string_view group = groups.substr(0, stop);
        groups.remove_prefix(std::min(stop + 1, groups.size()));
        const std::size_t bar = group.find('|');
        out.append(bar < 3 ? 3 - bar : 0, ' ');
        out += group.substr(0, bar);
        out += '\n';
        out += group.substr(bar + 1);
        out += '\n';
    }
}

void put_layout(std::string& out, std::string_view head, std::string_view tail,
                std::string_view block) {
    put(out, head);
    put(out, kPlotSettings);
    put(out, tail);
    put(out, kLayoutFrame);
    put(out, block);
}

} // namespace

std::string default_drawing() {
    std::string out;
    const auto put_all = [&](const auto& lines) {
        for (const std::string_view line : lines) {
            put(out, line);
        }
    };
    put_all(kHeader);
    put_all(kClasses);
    put_all(kTables);
    put_all(kBlocks);
    put_all(kObjects);
    put_layout(out, "0|LAYOUT;5|22;330|1A", "100|AcDbLayout;1|Model;70|1;71|0", "330|1F");
    put_layout(out, "0|LAYOUT;5|1E;330|1A", "100|AcDbLayout;1|Layout1;70|1;71|1", "330|1B");
    put(out, "0|ENDSEC");
    put(out, "0|EOF");
    return out;
}

} // namespace dxf
