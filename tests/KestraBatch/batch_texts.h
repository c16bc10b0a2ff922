// Texts of small good files, and helpers that bend them, for the tests of this folder.
#pragma once

#include "KestraBatch/read_error.h"

#include <string>
#include <string_view>

namespace batch_test {

/// `text` with its first `from` replaced by `to`.
inline std::string with(std::string text, std::string_view from, std::string_view to) {
    const std::size_t at = text.find(from);
    return at == text.npos ? "text to replace is not there: " + std::string(from)
                           : text.replace(at, from.size(), to);
}

/// What a read says: the message of its ReadError, or "" when it went well.
template <typename Read>
std::string message_of(Read read) {
    try {
        read();
        return {};
    } catch (const KestraBatch::ReadError& error) {
        return error.what();
    }
}

inline const std::string good_params = "#;Tessara Qor Rendering parameters\n"
                                       "*@KEY:APPLICATION_NAME;Qorvane for AutoCAD\n"
                                       "*@KEY:CALLING_APP;QRAC\n"
                                       "*@KEY:MODEL_NAME;house\n"
                                       "*@KEY:MODEL_PATH;/drawings/house.dxf\n"
                                       "*@KEY:BATCH_GEOM_FILE;.\\batch_file.txt\n"
                                       "*@KEY:VIEW_FILE;.\\qor_view.txt\n"
                                       "*@KEY:MATERIAL_FOLDER;.\\Materials\n"
                                       "*@KEY:GLOBALS_FILE;.\\option_globals.txt\n"
                                       "*@KEY:DOC_FILE;.\\qor_doc.xml\n"
                                       "#; Other Qor Batch settings;\n"
                                       "*@KEY:DBUNIT;1\n"
                                       "#;\n"
                                       "*@KEY:SupportFolder;/opt/a\n"
                                       "*@KEY:SupportFolder;/opt/b\n"
                                       "*@KEY:GLOBAL;bks_qorvane_mode;0\n"
                                       "*@KEY:GLOBAL;bks_kestra_qor_mode;1\n";

inline const std::string good_view = "#;Batch_ViewSettingsFile\n"
                                     "ViewName;Current\n"
                                     "\n"
                                     "IsAcad;1\n"
                                     "viewport: width = 0  height = 0\n"
                                     "Eye;(0,-10,2)\n"
                                     "EyeX;0\n"
                                     "Target;(0,0,1)\n"
                                     "EyeX (inches);0\n"
                                     "Dir;(0,10,-1)\n"
                                     "dir_len;10.0498756\n"
                                     "m_Scale;0.001\n"
                                     "view_scale;0.001\n"
                                     "\n"
                                     "fieldWidth;8;\n"
                                     "\n"
                                     "fieldHeight;6\n"
                                     "Up;(0,0,0.001)\n"
                                     "FOV;53.1\n"
                                     "CameraType;Perspective\n"
                                     "Saturation;1\n"
                                     "END_CURRENT;\n";

/// Two triangles: a coloured mesh inside a block, and a shell with a normal.
inline const std::string good_stream = "#;Qor Batch Geometry from AutoCad\n"
                                       "#;Friday, November 20, 2026, 10:00:00 AM\n"
                                       "DFFC;c8c8c8\n"
                                       "DFEC;000000\n"
                                       "MATF;Tessara-Oak.TsMaterial\n"
                                       "MATI;10\n"
                                       "#;ACAD MESH;\n"
                                       "MESH;\n"
                                       "MPUV;0\n"
                                       "LAYR;LAY:Walls; old\n"
                                       "COLR;ff\n"
                                       "COLN;256\n"
                                       "#;MATL: \n"
                                       "MATL;0\n"
                                       "HNDL;18446744073709551615\n"
                                       "BROT;0\n"
                                       "BLOK;door\n"
                                       "BLYR;Doors\n"
                                       "VERT;(0,0, 0)\n"
                                       "ADDV;0\n"
                                       "VERT;(1,0, 0)\n"
                                       "ADDV;1\n"
                                       "VERT;(1,1e-3, -0.5)\n"
                                       "ADDV;2\n"
                                       "FACE;0,1,2\n"
                                       "EMSH;\n"
                                       "#;\n"
                                       "EBLK;door\n"
                                       "#;#;\n"
                                       "#;NEW MESH;\n"
                                       "MESH;\n"
                                       "#;ACAD SHELL;\n"
                                       "CULL;0\n"
                                       "MPUV;1\n"
                                       "#;MATL: Oak\n"
                                       "#;COLOR: 8040ff\n"
                                       "MATL;10\n"
                                       "BROT;0\n"
                                       "NORM;(0,0,1)\n"
                                       "UVQ;(0,0,0)\n"
                                       "VERT;(5,0, 0)\n"
                                       "ADDV;0\n"
                                       "VERT;(6,0, 0)\n"
                                       "ADDV;1\n"
                                       "VERT;(6,1, 0)\n"
                                       "ADDV;2\n"
                                       "FACE;2,1,0\n"
                                       "EMSH;\n"
                                       "#;\n"
                                       "END;\n";

} // namespace batch_test
