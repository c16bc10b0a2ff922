// A batch folder on disk that a test can bend: a red box on the left, a blue one on the right, on
// an endless ground under sun and sky.
#pragma once

#include "KestraBatch/progress.h"
#include "omb/base/profile.h"
#include "tests/KestraBatch/batch_texts.h"
#include "tests/test_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <string>
#include <vector>

namespace batch_test {

/// Records what a run says.
class OutputRecord : public KestraBatch::cl_batch_output {
public:
    std::vector<std::string> messages, errors, states;
    void message(const std::string& text) override { messages.push_back(text); }
    void error(const std::string& text) override { errors.push_back(text); }
    void status(const std::string& text) override { states.push_back(text); }
    bool has_message(std::string_view part) const {
        for (const std::string& text : messages) {
            if (text.find(part) != text.npos) {
                return true;
            }
        }
        return false;
    }
};

/// The six faces of an upright box in metres, as a stream of a drawing in metres has them.
inline std::string box_mesh(double x0, double y0, double x1, double y1, double height,
                            const std::string& head) {
    const double f = 0.0254;
    std::string text = "MESH;\n" + head;
    int count = 0;
    for (const double z : {0.0, height}) {
        for (const auto& [x, y] : {std::pair{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}}) {
            text += fmt::format("VERT;({:.9g},{:.9g}, {:.9g})\nADDV;{}\n", x * f, y * f, z * f,
                                count++);
        }
    }
    const int quads[6][4] = {{0, 1, 2, 3}, {4, 5, 6, 7}, {0, 1, 5, 4},
                             {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}};
    for (const auto& q : quads) {
        text += fmt::format("FACE;{},{},{}\nFACE;{},{},{}\n", q[0], q[1], q[2], q[0], q[2], q[3]);
    }
    return text + "EMSH;\n#;\n";
}

/// Seen from the south, eye 3 m up; x runs to the right.
inline std::string box_stream() {
    return "#;Qor Batch Geometry from AutoCad\nDFFC;c8c8c8\nDFEC;000000\n" +
           box_mesh(-4, 0, -1, 3, 2, "COLR;0000ff\nCOLN;1\nMATL;0\n") +
           box_mesh(1, 0, 4, 3, 2, "CULL;0\n#;COLOR: ff0000\nMATL;0\n") + "END;\n";
}

inline const std::string box_view = "#;Batch_ViewSettingsFile\nViewName;Current\n\nIsAcad;1\n"
                                    "Eye;(0,-12,3)\nTarget;(0,0,1)\nDir;(0,12,-2)\n"
                                    "dir_len;12.1655251\nm_Scale;1\nview_scale;1\n\n"
                                    "fieldWidth;12;\n\nfieldHeight;9\nUp;(0,0,1)\n"
                                    "CameraType;Perspective\nEND_CURRENT;\n";

class BatchFolderOnDisk {
public:
    explicit BatchFolderOnDisk(const std::string& name) {
        set_profile(nullptr); // no setting of a test before
        folder = unique_test_path("batch_" + name);
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder / "Materials");
        write("params.txt", with(good_params, "/drawings/house.dxf", "/nowhere/house.dxf"));
        write("qor_view.txt", box_view);
        write("batch_file.txt", box_stream());
        write("qor_doc.xml", "<TsDoc version=\"1\"/>\n");
        write("option_globals.txt", settings());
    }
    ~BatchFolderOnDisk() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    void write(const std::string& name, const std::string& text) const {
        std::ofstream(folder / name, std::ios::binary) << text;
    }
    std::string settings(const std::string& more = {}) const {
        return "bks_auto_name_image; 1\nbks_close_window_when_image_done; 1\n"
               "bks_ground_plane; 1\nbks_make_auto_image_name_unique; 0\n"
               "bks_sky_illuminates_if_off; 1\nbks_sky_visible; 1\nbks_sun_on; 1\n"
               "bks_sun_setting_manual; 1\nbks_sun_setting_native; 0\n"
               "bks_use_sketchup_aspect_ratio; 0\niks_max_render_passes; 4\n"
               "iks_render_size; 5\niks_resx; 64\niks_resy; 48\niks_sky_type; 1\n"
               "rqor_sun_altitude; 40\nrqor_sun_azimuth; 220\n"
               "sks_auto_image_folder; " +
               folder.string() + "\nsks_auto_image_name; out.png\n" + more;
    }
    std::string params() const { return (folder / "params.txt").string(); }
    std::filesystem::path picture() const { return folder / "out.png"; }

    std::filesystem::path folder;
};

} // namespace batch_test
