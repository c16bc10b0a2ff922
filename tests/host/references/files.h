// Drawings as text, written into a folder of their own.
#pragma once

#include "host/db/block_reference.h"
#include "host/db/draw_report.h"
#include "host/db/references.h"
#include "host/db/support_files.h"
#include "host/gi/recorder.h"
#include "tests/test_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace refs {

/// The parts of a small drawing of release 12 whose tags may also be newer ones.
struct Text {
    std::string header, tables, blocks, entities;
    std::string whole() const {
        return "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n" + header +
               "0\nENDSEC\n0\nSECTION\n2\nTABLES\n" + tables +
               "0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n" + blocks +
               "0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n";
    }
};

/// A triangle with a corner at `x`, 1 by 1.
inline std::string face(double x, const std::string& layer = "0", int handle = 0,
                        const std::string& more = "") {
    return "0\n3DFACE\n" + (handle != 0 ? fmt::format("5\n{:X}\n", handle) : std::string()) +
           fmt::format("8\n{}\n{}10\n{}\n20\n0\n30\n0\n11\n{}\n21\n0\n31\n0\n12\n{}\n22\n1\n32\n0\n"
                       "13\n{}\n23\n1\n33\n0\n",
                       layer, more, x, x + 1, x, x);
}
inline std::string line(double x, double length, int handle, const std::string& more = "8\n0\n") {
    return fmt::format("0\nLINE\n5\n{:X}\n{}10\n{}\n20\n0\n30\n0\n11\n{}\n21\n0\n31\n0\n", handle,
                       more, x, x + length);
}
inline std::string insert(const std::string& block, double x, const std::string& more = "") {
    return fmt::format("0\nINSERT\n8\n0\n{}2\n{}\n10\n{}\n20\n0\n30\n0\n", more, block, x);
}
inline std::string block(const std::string& name, const std::string& entities, int flags = 0,
                         const std::string& path = "", double base_x = 0) {
    return fmt::format("0\nBLOCK\n8\n0\n2\n{}\n70\n{}\n10\n{}\n20\n0\n30\n0\n3\n{}\n1\n{}\n", name,
                       flags, base_x, name, path) +
           entities + "0\nENDBLK\n8\n0\n";
}
inline std::string xref(const std::string& name, const std::string& path, int flags = 4) {
    return block(name, "", flags, path);
}
inline std::string layers(std::initializer_list<std::string> rows) {
    std::string text = "0\nTABLE\n2\nLAYER\n70\n9\n";
    for (const std::string& row : rows) {
        text += "0\nLAYER\n2\n" + row + "6\nCONTINUOUS\n";
    }
    return text + "0\nENDTAB\n";
}
inline std::string units(int code) { return fmt::format("9\n$INSUNITS\n70\n{}\n", code); }

struct Folder : testing::Test {
    std::filesystem::path folder = unique_test_path("references");
    void SetUp() override { std::filesystem::create_directories(folder); }
    void TearDown() override {
        acdbSetSupportFolders({});
        std::filesystem::remove_all(folder);
    }
    std::filesystem::path write(const std::string& name, const std::string& bytes) const {
        std::filesystem::create_directories((folder / name).parent_path());
        std::ofstream(folder / name, std::ios::binary) << bytes;
        return folder / name;
    }
    std::filesystem::path write(const std::string& name, const Text& text) const {
        return write(name, text.whole());
    }
    /// Opens a drawing, with its references when asked.
    std::unique_ptr<AcDbDatabase> open(const std::string& name, bool resolve = true) const {
        auto db = std::make_unique<AcDbDatabase>(false);
        std::string error;
        EXPECT_EQ(db->dxfIn(folder / name, error), Acad::eOk) << error;
        if (resolve) {
            EXPECT_EQ(acdbResolveXrefs(*db), Acad::eOk);
        }
        return db;
    }
};

inline std::vector<AcDbObjectId> model_entities(const AcDbDatabase& db) {
    const AcDbObjectPointer<AcDbBlockTableRecord> space(db.modelSpaceId());
    return space->entities();
}

/// The shells that model space draws.
inline std::vector<gi::RecordedCall> shells(AcDbDatabase& db) {
    gi::Recorder recorder(&db);
    for (const AcDbObjectId id : model_entities(db)) {
        const AcDbObjectPointer<AcDbEntity> entity(id);
        recorder.record(entity.object());
    }
    return recorder.callsOf(gi::Primitive::kShell);
}

inline std::vector<double> corners(AcDbDatabase& db) {
    std::vector<double> x;
    for (const gi::RecordedCall& call : shells(db)) {
        x.push_back(call.points.front().x);
    }
    return x;
}

inline std::string layer_name(AcDbObjectId id) {
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(id);
    return layer ? layer->getName() : "?";
}

/// The row of a code, null without one.
inline const AcDbDrawReportRow* row_of(const AcDbDrawReport& report, const std::string& code) {
    for (const auto* rows : {&report.not_drawn, &report.approximate}) {
        for (const AcDbDrawReportRow& row : *rows) {
            if (row.code == code) {
                return &row;
            }
        }
    }
    return nullptr;
}

} // namespace refs
