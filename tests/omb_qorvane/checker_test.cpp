// The checker sees every fault: a good folder by hand, and one thing at a time spoilt in it.
#include "good_folder.h"
#include "stream_checker.h"
#include "tests/test_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// A text of a file replaced by another, and the rule that must be named.
struct Spoilt {
    const char *find, *replace, *rule;
};

/// Cut off anywhere, and with bytes changed at random, any of the files is read by all readers.
void survives(const std::string& good) {
    std::mt19937 random(11);
    std::map<std::string, std::string> words;
    std::map<std::string, double> numbers;
    for (std::size_t i = 0; i < 300; ++i) {
        const std::string cut = good.substr(0, good.size() * i / 300);
        EXPECT_THAT(checker::check_stream(cut).faults, testing::Not(IsEmpty()));
        std::string changed = good;
        for (int byte = 0; byte < 5; ++byte) {
            changed[random() % changed.size()] = "\n;0-9(%\xff"[random() % 8];
        }
        checker::check_stream(changed);
        EXPECT_THAT(checker::check_params(cut, words), testing::Not(IsEmpty()));
        checker::check_params(changed, words);
        EXPECT_THAT(checker::check_view(cut, numbers), testing::Not(IsEmpty()));
        checker::check_view(changed, numbers);
    }
}

class Checker : public testing::Test {
protected:
    void SetUp() override { write_good_folder(folder); }
    void TearDown() override { fs::remove_all(folder); }

    void expect_seen(const std::string& file, const std::vector<Spoilt>& table) {
        const std::string good = good_folder_files().at(file);
        for (const Spoilt& row : table) {
            SCOPED_TRACE(std::string(row.find) + " -> " + row.replace);
            std::string text = good;
            const std::size_t at = text.find(row.find);
            ASSERT_NE(at, std::string::npos);
            EXPECT_EQ(text.find(row.find, at + 1), std::string::npos) << "not the only place";
            write_file(folder / file, text.replace(at, std::string(row.find).size(), row.replace));
            EXPECT_THAT(checker::check_folder(folder),
                        Contains(AllOf(StartsWith(file + ", line "), HasSubstr(row.rule))));
        }
        write_file(folder / file, good);
    }
    fs::path folder = unique_test_path("checked");
};

TEST_F(Checker, FindsNothingInTheGoodFolder) {
    EXPECT_THAT(checker::check_folder(folder), IsEmpty());
    const checker::stream stream = checker::check_stream(good_folder_files().at("batch_file.txt"));
    EXPECT_EQ(stream.meshes.size(), 5U);
    EXPECT_EQ(stream.lights.size(), 2U);
    EXPECT_EQ(stream.plants.size(), 2U);
    EXPECT_EQ(stream.decals.size(), 3U);
    EXPECT_EQ(stream.brackets, 2);
    EXPECT_EQ(stream.meshes.at(1).vertices.size(), 14U);
    EXPECT_THAT(stream.meshes.at(3).blocks, testing::ElementsAre("house", "room"));
}

TEST_F(Checker, SeesFaultsOfTheFrame) {
    expect_seen("batch_file.txt",
                {{"#;Qor Batch", "#;Batch", "wanted '#;Qor Batch Geometry from AutoCad'"},
                 {"#;Saturday,", "#;Sunday,", "no time of the form %A, %B %d, %Y"},
                 {"November 21,", "November 31,", "no time of the form"},
                 {"04:42:03 PM", "16:42:03 PM", "no time of the form"},
                 {"04:42:03", "4:42:03", "no time of the form"},
                 {"DFFC;c8c8c8", "DFFC;C8C8C8", "wanted 'DFFC;c8c8c8'"},
                 {"DFEC;000000", "DFEC;0", "wanted 'DFEC;000000'"},
                 {"MATI;10", "MATI;9", "the indices 1 to 9 are never given"},
                 {"MATI;13", "MATI;11", "a row has two files only when"},
                 {"MATI;13", "MATI;10", "material indices do not ascend"},
                 {"MATF;Tessara-Brick", "MATF;Other", "a row has two files only when"},
                 {"MATF;Global.TsMaterial", "MATF;Global", "no encoded name of a material file"},
                 {"MATF;Glas%20", "MATF;Glas/", "no encoded name of a material file"},
                 {"\nEND;\n", "\n", "the stream does not end with END;"},
                 {"\nEND;\n", "\nEND;", "the last line has no line end"},
                 {"\nEND;\n", "\nEND;\n#;\n", "lines behind END;"},
                 {"EBLK;house\n#;#;\n", "", "END; with an open block"},
                 {"#;ACAD ARC", "#;done\n#;ACAD ARC", "has no place in the body"},
                 {"#;ACAD ARC", "\n#;ACAD ARC", "has no place in the body"},
                 {"#;ACAD ARC", "CAMR;1\n#;ACAD ARC", "no record has this keyword"}});
}

TEST_F(Checker, SeesFaultsOfBlockBrackets) {
    expect_seen(
        "batch_file.txt",
        {{"BLOK;  room", "BLOK;room", "wanted 'BLOK;  ...'"},
         {"BLYR;  0", "BLYR;0", "wanted 'BLYR;  ...'"},
         {"0x2a  42", "0x2A  42", "the comment above is not '#;BLOK: %s%s  HNDL: 0x%x  %d'"},
         {"0x2a  42", "0x2a  43", "the comment above is not"},
         {"-1895825407", "2399141889", "the comment above is not"},
         {"#;BLOK: house", "#;BLOK: hause", "the comment above is not"},
         {"BLOK;house", "BLOK;", "a block without a name"},
         {"EBLK;  room", "EBLK;room", "wanted 'EBLK;  room'"},
         {"EBLK;house", "EBLK;room", "wanted 'EBLK;house'"},
         {"EBLK;house\n#;#;", "EBLK;house\n#;", "wanted '#;#;'"},
         {"EBLK;house\n#;#;", "EBLK;house\n#;#;\nEBLK;house\n#;#;", "without an open block"},
         {"EBLK;  room", "#;BLOK:     x  HNDL: 0x1  1\nBLOK;    x\nBLYR;    0\nEBLK;    x",
          "wanted '#;NEW MESH;'"}});
}

TEST_F(Checker, SeesFaultsOfPreambles) {
    expect_seen(
        "batch_file.txt",
        {{"#;ACAD LINE;", "#;ACAD LINES;", "no comment of a primitive"},
         {"#;ACAD LINE;\nMESH;\nMPUV;0", "#;ACAD LINE;\nMESH;\nMPUV;1", "only meshes and shells"},
         {"#;ACAD LINE;\nMESH;\nMPUV;0\n", "#;ACAD LINE;\nMESH;\n", "wanted 'MPUV;0'"},
         {"SHDW;1\nGCOR", "GCOR", "wanted 'SHDW;1'"},
         {"GCOR;12", "CAUS;1\nGCOR;12", "the flag CAUS is never written"},
         {"GCOR;12", "GCOR;1.5", "no integer of the form %d"},
         {"GNDC;AGroundCover_2_def", "GNDC;AGroundCover_2", "named AGroundCover_%d_def"},
         {"LLIT;spot 3\n", "MATF;a.TsMaterial\nMATI;10\nLLIT;spot 3\n", "file level only"},
         {"LLIT;spot 3", "LLIT;spot", "what follows OMB-LIGHT-"},
         {"LLIT;spot 3\n", "", "what follows OMB-LIGHT-"},
         {"NOLY;0", "NOLY;1", "wanted 'NOLY;0'"},
         {"LAYR;COL:30", "LAYR;COL:300", "no mapping key"},
         {"LAYR;COL:30", "LAYR;COL:31", "COLN and the key COL differ"},
         {"LAYR;COL:30", "LAYR;LAY:a", "a colour of its own without its key"},
         {"RGB:(16,32,48)", "RGB:(16, 32, 48)", "no mapping key"},
         {"RGB:(16,32,48)", "RGB:(48,32,16)", "COLR and the key RGB differ"},
         {"COLN;257", "COLN;258", "COLN of a true colour is not 257"},
         {"COLR;7fff", "COLR;7FFF", "no colour of the form %x"},
         {"COLR;7fff", "COLR;007fff", "no colour of the form %x"},
         {"COLR;302010\nCOLN;257", "COLN;257\nCOLR;302010", "wanted 'COLR;...'"},
         {"#;MATL: Brick\nMATL;11", "#;MATL: Brick\nMATL;10", "another material than the comment"},
         {"#;MATL: Brick\nMATL;11", "#;MATL: Brick\nMATL;0", "not the first index of the material"},
         {"#;MATL: Brick\nMATL;11", "#;MATL: Brick\nMATL;12", "no index of the material list"},
         {"#;MATL: Brick\n", "", "wanted '#;MATL: ...'"},
         {"HNDL;70\n", "", "wanted 'HNDL;...'"},
         {"HNDL;70", "HNDL;-70", "no handle of the form %llu"},
         {"HNDL;70", "HNDL;0x46", "no handle of the form %llu"},
         {"BROT;-12.5", "BROT;-12.50", "not in the form BROT;%g"},
         {"BROT;-12.5", "BROT;-12.5000001", "not in the form BROT;%g"},
         {"BROT;90\nLITE;1", "BROT;90", "wanted 'LITE;...'"},
         {"BROT;90\nLITE;1", "BROT;90\nLITE;2", "the second light number is another"},
         {"BROT;90\nLITE;1", "BROT;90\nLITE;1\nINVS;1", "INVS is never written"},
         {"BROT;0\nLITE;2", "BROT;0\nDYLT;2", "wanted 'LITE;...'"},
         {"LITE;1\nTHICK", "DYLT;1\nTHICK", "two dynamic lights"},
         {"#;NEW MESH;\nMESH;", "MESH;\n#;NEW MESH;",
          "wanted '#;NEW MESH;' in the preamble of a s"},
         {"CULL;0\n", "", "wanted 'CULL;0' in the preamble of a shell"},
         {"#;KEY: LAY:0", "#;KEY: LAYER:0", "no mapping key"},
         {"HNDL;43", "HNDL;0", "a shell has no HNDL of 0"},
         {"HNDL;43\n", "LAYR;LAY:0\nHNDL;43\n", "wanted 'BROT;...'"}});
}

TEST_F(Checker, SeesFaultsOfVerticesAndFaces) {
    expect_seen(
        "batch_file.txt",
        {{"VERT;(2.54,0, 1.27)", "VERT;(2.54,0,1.27)", "not in the form VERT;(%0.9g,%0.9g, %0.9g)"},
         {"VERT;(2.54,0, 1.27)", "VERT;(2.540,0, 1.27)", "not in the form VERT"},
         {"VERT;(2.54,0, 1.27)", "VERT;(2.54,0, nan)", "not in the form VERT"},
         {"VERT;(1234567.89,", "VERT;(1234567.891,", "not in the form VERT"},
         {"VERT;(1234567.89,-0.5, 1e-07)", "VERT;(1234567.89,-0.5, 1e-7)", "not in the form VERT"},
         {"NORM;(-0.5,0.866025404,0)\nVERT;(-0.5,0.866025404, 2)",
          "NORM;(-0.5,0.866025404, 0)\nVERT;(-0.5,0.866025404, 2)", "not in the form NORM"},
         {"NORM;(-0.5,0.866025404,0)\nVERT;(-0.5,0.866025404, 2)",
          "NORM;(-0.5,0.9,0)\nVERT;(-0.5,0.866025404, 2)", "a normal that is not unit"},
         {"NORM;(-0.5,0.866025404,0)\nVERT;(-0.5,0.866025404, 2)", "VERT;(-0.5,0.866025404, 2)",
          "a vertex without its normal"},
         {"BLYR;site\nVERT", "BLYR;site\nNORM;(0,0,1)\nVERT", "centre of a circle has no normal"},
         {"NORM;(0,0,1)\nUVQ;(0.5,0.25,0)", "UVQ;(0.5,0.25,0)", "with and without a normal"},
         {"UVQ;(0.5,0.25,0)", "UVQ;(0.5,0.25,0.0)", "not in the form UVQ;(%0.9g,%0.9g,0)"},
         {"UVQ;(0.5,0.25,0)\n", "", "wanted 'UVQ;...'"},
         {"MPUV;1", "MPUV;0", "MPUV is 0 and UVQ is not (0,0,0)"},
         {"VERT;(2.54,0, 1.27)\nADDV;3", "VERT;(2.54,0, 1.27)\nADDV;4", "ADDV out of order"},
         {"ADDV;14", "ADDV;15", "ADDV out of order"},
         {"NORM;(1,0,0)\nVERT;(1,0, 2)\nADDV;14\n", "", "a tube is not numbered"},
         {"NORM;(0,-1,0)\nVERT;(2.54,0, 1.27)\nADDV;3\n", "", "a line without a top"},
         {"FACE;0,3,2\nFACE;0,1,3", "FACE;0,4,2\nFACE;0,1,3", "FACE names no vertex of its mesh"},
         {"FACE;0,3,2\nFACE;0,1,3", "FACE;0,3,3\nFACE;0,1,3", "a face with two equal corners"},
         {"FACE;0,3,2\nFACE;0,1,3", "FACE;0, 3,2\nFACE;0,1,3", "no face of the form %d,%d,%d"},
         {"FACE;0,3,2\nFACE;0,1,3", "#;Need Triangulator\nFACE;0,1,3", "only shells tell"},
         {"FACE;2,3,0\n", "", "quads are written as two triangles each"},
         {"FACE;1,2,3\nEMSH;\n#;", "FACE;1,2,3\nEMSH;\n#;#;", "wanted '#;' in the end of a mesh"},
         {"FACE;1,2,3\nEMSH;", "FACE;1,2,3\n#;almost\nEMSH;",
          "wanted 'EMSH;' in the end of a mes"}});
}

TEST_F(Checker, SeesFaultsOfLightsPlantsAndDecals) {
    expect_seen("batch_file.txt",
                {{"(1.500000, -2.000000, 3.000000)", "(1.500000,-2.000000,3.000000)",
                  "not in the form LORG;(%f, %f, %f)"},
                 {"(1.500000, -2.000000, 3.000000)", "(1.5, -2.000000, 3.000000)", "form LORG;"},
                 {"LTYP;4", "LTYP;7", "no kind of light"},
                 {"LGHT;2", "LGHT;3", "light numbers do not ascend from 1"},
                 {"LGHT;1", "LGHT;0", "light numbers do not ascend from 1"},
                 {"#;TsPlant\n#;PLANT", "#;PLANT", "no plant file named 0_%s"},
                 {"#;TsPlant\n#;PLANT", "#;TsPlant", "wanted '#;PLANT'"},
                 {"TsPlant_0_def", "TsPlant_1_def", "file numbers do not go on: 0 is next"},
                 {"1_anon_U7_def", "1_*U7_def", "no stripped name of a plant definition"},
                 {"PLDM;3.25", "PLDM;3.250", "not in the form PLDM;%0.9g"},
                 {"PLSN;2\n", "", "wanted 'PLSN;...'"},
                 {"PLRT;30\nPLSC;1\n", "PLRT;30\nPLSC;2\n", "the scale of such a plant is 1"},
                 {"PLRT;30\nPLSC;1\nPLNT;1", "PLRT;30\nPLSC;1\nPLNT;2", "wanted 'PLNT;1'"},
                 {"PLLC;(100,200.5,0)", "PLLC;(100,200.5, 0)", "not in the form PLLC;"},
                 {"DECO;(5.000000,", "DECO;(5,", "not in the form DECO;(%f,%f,%f)"},
                 {"DECL;OMB_Decal_3", "DECL;OMB_Decal_1", "file numbers do not go on: 3 is next"},
                 {"#;DECAL not written\n", "", "file numbers do not go on: 1 is next"},
                 {"DECW;2.000000", "DECW;-2.000000", "a width below 0"},
                 {"DECH;1.000000\n", "", "wanted 'DECH;...'"},
                 {"DECL;logo.png", "DECL;.\\logo.png", "no stripped name of an image"},
                 {" -> /batch", " to /batch", "CopyFile without its target"},
                 {"#;DECL; Not Found: DECAL - lost.png\n", "", "no 'DECL; Not Found' of it"}});
}

TEST_F(Checker, SeesFaultsOfTheParameterFile) {
    expect_seen(
        "qor_render_params.txt",
        {{"#;Tessara Qor", "#;BricsCAD", "the first line and APPLICATION_NAME are of two"},
         {"#;Tessara Qor", "#;Other", "the first line names no program"},
         {"CALLING_APP;QRAC", "CALLING_APP;QRAC_BRICS", "CALLING_APP are of two programs"},
         {"VERSION;GreenButton", "VERSION;OEM", "OEM for DeltaCADD"},
         {"VERSION_INFO;1.1", "VERSION_INFO;1.2", "wanted '*@KEY:VERSION_INFO;1.1'"},
         {"MODEL_NAME;house.dxf", "MODEL_NAME;house", "not the file of MODEL_PATH"},
         {"MATERIAL_MAPS;.\\", "MATERIAL_MAPS;./", "wanted '*@KEY:MATERIAL_MAPS;"},
         {"*@KEY:UUID;UUID not set\n", "", "wanted '*@KEY:UUID;UUID not set'"},
         {"VIEW_FILE;.\\qor_view.txt", "VIEW_FILE;qor_view.txt", "wanted '*@KEY:VIEW_FILE;"},
         {"DBUNIT;1", "DBUNIT;2", "wanted '*@KEY:DBUNIT;1'"},
         {"*@KEY:WTITLE;Drawing Office\n", "", "wanted '*@KEY:WTITLE;...'"},
         {"HWND;4711", "HWND;0x1267", "no integer of the form %d"},
         {"tessara qor\n", "tessara qor\\\n", "ends in no backslash"},
         {"SupportFolder;/more/pictures", "SupportFolder;", "SupportFolder without a folder"},
         {"bks_kestra_qor_mode;1\n", "bks_kestra_qor_mode;1\n#;\n", "nothing behind its last"},
         {"bks_qorvane_mode;0", "bks_qorvane_mode;1", "wanted '*@KEY:GLOBAL;bks_qorvane"}});
}

TEST_F(Checker, SeesFaultsOfTheViewFile) {
    expect_seen("qor_view.txt",
                {{"IsAcad;1\n\n", "IsAcad;1\n", "wanted '' in the view file"},
                 {"Eye;(3,4,0)", "Eye;(3,4, 0)", "not in the form Eye;(%0.9g,%0.9g,%0.9g)"},
                 {"EyeX;3", "EyeX;3.5", "the three lines are not those of Eye"},
                 {"EyeX (inches);3", "EyeX (inches);6", "tell the scaled eye as well"},
                 {"Dir;(-3,-4,0)\nDirX (meters);-3", "Dir;(3,-4,0)\nDirX (meters);3",
                  "Dir does not lead from Eye to Target"},
                 {"DirY (inches);-8", "DirY (inches);-4", "Dir in inches is not Dir without"},
                 {"dir_len;5", "dir_len;10", "dir_len is not the length of Dir"},
                 {"view_scale;0.5", "view_scale;0.0254", "m_Scale and view_scale differ"},
                 {"fieldWidth;60;", "fieldWidth;60", "not in the form fieldWidth;%0.9g;"},
                 {"DirX;-0.6", "DirX;0.6", "not Dir of length 1"},
                 {"Up;(0,0,0.5)", "Up;(0,0,1)", "Up is not the up axis with the scale"},
                 {"UpZ;1", "UpZ;2", "the up axis is not of length 1"},
                 {"m_r;0.25", "m_r;-0.25", "m_r is not half the cosine"},
                 {"m_d;1", "m_d;1.0", "wanted 'm_d;1'"},
                 {"FOV;28.0724869", "FOV;28.1", "FOV does not follow from m_t"},
                 {"OrthoHeight;120", "OrthoHeight;60", "OrthoHeight is not fieldHeight"},
                 {"Perspective", "Parallel", "wanted 'CameraType;Perspective'"},
                 {"END_CURRENT;\n", "END_CURRENT;\n\n", "nothing behind END_CURRENT;"}});
}

TEST_F(Checker, MissesEveryFileThatIsNamed) {
    for (const auto& [name, text] : good_folder_files()) {
        fs::remove(folder / name);
        // A row with two names needs one file, and the second name is the one that meshes use.
        const bool of_two = name == "Materials/Tessara-Brick.TsMaterial";
        const std::string missing = of_two ? "Materials/Brick.TsMaterial" : name;
        EXPECT_THAT(checker::check_folder(folder),
                    Contains(StartsWith(missing + ": the file is missing")));
        write_file(folder / name, text);
    }
    EXPECT_THAT(checker::check_folder(folder / "nowhere"), Contains("no folder"));
}

TEST_F(Checker, FindsFilesTooManyAndLampsWithoutLight) {
    write_file(folder / "Materials" / "Old.TsMaterial", "there");
    write_file(folder / "Materials" / "Global.omobj", "there");
    write_file(folder / "QorBatch_Lights" / "light_3.xml", "there");
    EXPECT_THAT(
        checker::check_folder(folder),
        testing::UnorderedElementsAre(StartsWith("Materials/Old.TsMaterial: a file too many"),
                                      StartsWith("QorBatch_Lights/light_3.xml: a file")));
    std::string text = good_folder_files().at("batch_file.txt");
    const std::size_t light = text.find("#;\nLTYP;4");
    text.erase(light, text.find("#;TsPlant") - light);
    write_file(folder / "batch_file.txt", text);
    EXPECT_THAT(checker::check_folder(folder), Contains(HasSubstr("the lamp of light 2")));
    write_file(folder / "option_globals.txt", "");
    EXPECT_THAT(checker::check_folder(folder), Contains("option_globals.txt: the file is empty"));
}

TEST_F(Checker, GoesOnBehindAFaultAndSurvivesAnything) {
    std::string text = good_folder_files().at("batch_file.txt");
    for (const char* word : {"CULL;0\n", "SHDW;1\nGCOR", "NOLY;0\n"}) {
        text.erase(text.find(word), std::string_view(word).size());
    }
    EXPECT_EQ(checker::check_stream(text).faults.size(), 3U);
    for (const char* name : {"batch_file.txt", "qor_render_params.txt", "qor_view.txt"}) {
        survives(good_folder_files().at(name));
    }
}

} // namespace
