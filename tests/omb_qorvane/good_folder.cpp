#include "good_folder.h"

#include <fstream>

namespace {

const char* const params = R"(#;Tessara Qor Rendering parameters
*@KEY:APPLICATION_NAME;Qorvane for AutoCAD
*@KEY:CALLING_APP;QRAC
*@KEY:VERSION;GreenButton
*@KEY:APPLICATION_FOLDER;/opt/OMB_SUPPORT
*@KEY:MATERIAL_MAPS;.\Materials\qor_matl_map.csv
*@KEY:VERSION_INFO;1.1
*@KEY:MODEL_NAME;house.dxf
*@KEY:MODEL_PATH;/drawings/house.dxf
*@KEY:UUID;UUID not set
*@KEY:BATCH_GEOM_FILE;.\batch_file.txt
*@KEY:VIEW_FILE;.\qor_view.txt
*@KEY:LIGHT_FOLDER;.\QorBatch_Lights
*@KEY:MATERIAL_FOLDER;.\Materials
*@KEY:GLOBALS_FILE;.\option_globals.txt
*@KEY:DOC_FILE;.\qor_doc.xml
*@KEY:PROPS_FILE;.\qor_props.txt
*@KEY:TS3MATS_FILE;.\qor_ts3mats.txt
*@KEY:RPC_FOLDER;.\rpcs
#; Other Qor Batch settings;
*@KEY:DBUNIT;1
*@KEY:HWND;4711
*@KEY:WTITLE;Drawing Office
#;
#;
*@KEY:SupportFolder;C:\Program Files\tessara qor
*@KEY:SupportFolder;/more/pictures
#;
*@KEY:GLOBAL;bks_qorvane_mode;0
*@KEY:GLOBAL;bks_kestra_qor_mode;1
)";

// Half a metre a unit, a field of 120 by 240 units, so that both cosines are plain.
const char* const view = R"(#;Batch_ViewSettingsFile
ViewName;Current

IsAcad;1

PixelWidth;0
PixelHeight;0


viewport: width = 0  height = 0


Eye;(3,4,0)
EyeX;3
EyeY;4
EyeZ;0

Target;(0,0,0)
TargetX;0
TargetY;0
TargetZ;0

EyeX (inches);3
EyeY (inches);4
EyeZ (inches);0

Dir;(-3,-4,0)
DirX (meters);-3
DirY (meters);-4
DirZ (meters);0

DirX (inches);-6
DirY (inches);-8
DirZ (inches);0

dir_len;5

m_Scale;0.5
view_scale;0.5

fieldWidth;60;

fieldHeight;120
DirX;-0.6
DirY;-0.8
DirZ;0

Up;(0,0,0.5)
UpX;0
UpY;0
UpZ;1

m_d;1
m_l;-0.25
m_r;0.25
m_t;-0.25
m_b;0.25
FOV;28.0724869
FOVW;28.0724869

CameraType;Perspective
OrthoHeight;120


Brightness;0
Burn;0
Saturation;1
END_CURRENT;
)";

const char* const head_and_things = R"(#;Qor Batch Geometry from AutoCad
#;Saturday, November 21, 2026, 04:42:03 PM
DFFC;c8c8c8
DFEC;000000
MATF;Global.TsMaterial
MATI;10
MATF;Tessara-Brick.TsMaterial
MATI;11
MATF;Brick.TsMaterial
MATI;11
MATF;Glas%20gr%fcn.TsMaterial
MATI;13
#;
LTYP;2
LORG;(1.500000, -2.000000, 3.000000)
LGHT;1
#;
LTYP;4
LORG;(0.000000, 0.000000, 9.144000)
LGHT;2
#;TsPlant
#;PLANT
PLLB;TsPlant
PLNM;TsPlant_0_def.TsPlant
PLLC;(100,200.5,0)
PLDM;3.25
PLSN;2
PLRT;45
PLSC;1.5
PLNT;1
#;PLANT
PLLB;TsPlant
PLNM;1_anon_U7_def.TsPlant
PLLC;(2.54,5.08,0)
PLRT;30
PLSC;1
PLNT;1
#;Old TS3 TsPlant
#;DECAL, sourceFileName: .\pictures\logo.png
#;Found relative image: /drawings/pictures/logo.png
#;CopyFile: /drawings/pictures/logo.png -> /batch/Decals/logo.png
#;
DEC1;(0.000000,0.000000,0.000000)
DEC2;(2.000000,1.000000,0.000000)
DECW;2.000000
DECH;1.000000
DECN;(0.000000,0.000000,1.000000)
DECL;logo.png
#;
#;DECAL, sourceFileName: lost.png
#;Could not get ATIL Image; lost
#;DECL; Not Found: DECAL - lost.png
)";

const char* const line_with_everything = R"(#;
DECO;(0.000000,0.000000,0.000000)
DECX;(1.000000,0.000000,0.000000)
DECY;(0.000000,1.000000,0.000000)
DECZ;(0.000000,0.000000,1.000000)
DECS;(1.000000,1.000000,1.000000)
DECL;OMB_Decal_0.TsDecal
#;
#;DECAL not written
#;ACAD LINE;
MESH;
MPUV;0
THICK;1
SHDW;1
GCOR;12
GNDC;AGroundCover_2_def.TsGroundCover
LLIT;spot 3
LAYR;LAY:x OMB-LIGHT-spot 3
COLR;ff
COLN;256
#;MATL: Brick
MATL;11
HNDL;70
BROT;-12.5
NORM;(0,-1,0)
VERT;(0,0, 0)
ADDV;0
NORM;(0,-1,0)
VERT;(2.54,0, 0)
ADDV;1
NORM;(0,-1,0)
VERT;(0,0, 1.27)
ADDV;2
NORM;(0,-1,0)
VERT;(2.54,0, 1.27)
ADDV;3
FACE;0,3,2
FACE;0,1,3
EMSH;
#;
)";

const char* const lamp_preamble = R"(#;ACAD CIRCLE 1;
MESH;
MPUV;0
LITE;1
THICK;1
SHDW;1
LAYR;RGB:(16,32,48)
COLR;302010
COLN;257
#;MATL: none of ours
MATL;0
HNDL;0
BROT;90
LITE;1
#;BLOK: house  HNDL: 0x8f000001  -1895825407
BLOK;house
BLYR;site
)";

const char* const grid_and_shells = R"(#;ACAD MESH;
MESH;
MPUV;1
DYLT;2
THICK;1
SHDW;1
LAYR;COL:30
COLR;7fff
COLN;30
#;MATL: Glas grün
MATL;13
HNDL;18446744073709551615
BROT;0
LITE;2
NORM;(0,0,1)
UVQ;(0,0,0)
VERT;(0,0, 0)
ADDV;0
NORM;(0,0,1)
UVQ;(0.5,0.25,0)
VERT;(1,0, 0)
ADDV;1
NORM;(0,0,1)
UVQ;(0,1,0)
VERT;(0,1, 0)
ADDV;2
NORM;(0,0,1)
UVQ;(1,1,0)
VERT;(1,1, 0)
ADDV;3
FACE;0,1,3
FACE;0,3,2
EMSH;
#;
#;BLOK:   room  HNDL: 0x2a  42
BLOK;  room
BLYR;  0
#;NEW MESH;
MESH;
#;ACAD SHELL;
CULL;0
MPUV;0
#;
DECO;(5.000000,0.000000,0.000000)
DECX;(1.000000,0.000000,0.000000)
DECY;(0.000000,1.000000,0.000000)
DECZ;(0.000000,0.000000,1.000000)
DECS;(1.000000,1.000000,1.000000)
DECL;OMB_Decal_3.TsDecal
#;
THICK;1
SHDW;1
#;MATL: Global
#;COLOR: ffffff
#;KEY: LAY:0
MATL;10
HNDL;43
BROT;1e-05
UVQ;(0,0,0)
VERT;(1234567.89,-0.5, 1e-07)
ADDV;0
UVQ;(0,0,0)
VERT;(1,0, 0)
ADDV;1
UVQ;(0,0,0)
VERT;(1,1, 0)
ADDV;2
UVQ;(0,0,0)
VERT;(0,1, 0)
ADDV;3
#;Need Triangulator
FACE;0,1,2
FACE;0,2,3
FACE;1,2,3
EMSH;
#;
EBLK;  room
#;#;
EBLK;house
#;#;
#;ACAD ARC - Rad;
MESH;
MPUV;0
THICK;1
SHDW;1
NOLY;0
COLR;0
COLN;0
#;MATL: 
MATL;0
HNDL;1
BROT;0
NORM;(-1,0,0)
VERT;(1,0, 0)
ADDV;0
NORM;(-1,0,0)
VERT;(1,0, 1)
ADDV;1
NORM;(0,-1,0)
VERT;(0,1, 1)
ADDV;2
NORM;(0,-1,0)
VERT;(0,1, 0)
ADDV;3
FACE;0,1,2
FACE;2,3,0
EMSH;
#;
END;
)";

std::string ring_vertex(const std::string& place, const char* height, int number) {
    return "NORM;(" + place + ",0)\nVERT;(" + place + height + ")\nADDV;" + std::to_string(number) +
           "\n";
}
std::string face(int a, int b, int c) {
    return "FACE;" + std::to_string(a) + "," + std::to_string(b) + "," + std::to_string(c) + "\n";
}

/// A tube of six sides: its centre, six points below, no 7, and seven above.
std::string tube() {
    static constexpr const char* around[] = {"1,0",  "0.5,0.866025404",   "-0.5,0.866025404",
                                             "-1,0", "-0.5,-0.866025404", "0.5,-0.866025404"};
    std::string text = "VERT;(0,0, 0)\nADDV;0\n";
    for (int i = 0; i < 6; ++i) {
        text += ring_vertex(around[i], ", 0", i + 1);
    }
    for (int i = 0; i < 7; ++i) {
        text += ring_vertex(around[i % 6], ", 2", i + 8);
    }
    for (int k = 1; k <= 6; ++k) {
        const int next = k % 6 + 1, beside = k < 6 ? k + 8 : 8;
        text += face(k, next, beside) + face(k, beside, k + 7);
    }
    return text + "EMSH;\n#;\n";
}

std::string stream() {
    return std::string(head_and_things) + line_with_everything + lamp_preamble + tube() +
           grid_and_shells;
}

} // namespace

const std::map<std::string, std::string>& good_folder_files() {
    static const std::map<std::string, std::string> files = [] {
        std::map<std::string, std::string> all{{"qor_render_params.txt", params},
                                               {"qor_view.txt", view},
                                               {"batch_file.txt", stream()}};
        for (const char* name :
             {"option_globals.txt", "qor_doc.xml", "Materials/Global.TsMaterial",
              "Materials/Tessara-Brick.TsMaterial", "Materials/Glas%20gr%fcn.TsMaterial",
              "QorBatch_Lights/light_1.xml", "QorBatch_Lights/light_2.xml",
              "Plants/TsPlant_0.TsPlant", "Plants/TsPlant_0_def.TsPlant",
              "Plants/1_anon_U7.TsPlant", "Plants/1_anon_U7_def.TsPlant",
              "Plants/AGroundCover_2.TsGroundCover", "Plants/AGroundCover_2_def.TsGroundCover",
              "Decals/logo.png", "Decals/OMB_Decal_0.TsDecal", "Decals/OMB_Decal_3.TsDecal"}) {
            all[name] = "there";
        }
        return all;
    }();
    return files;
}

void write_file(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

void write_good_folder(const std::filesystem::path& folder) {
    for (const auto& [name, text] : good_folder_files()) {
        write_file(folder / name, text);
    }
}
