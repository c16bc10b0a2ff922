// Helpers of the DXF tests: drawings from text, and comparing tag by tag.
#pragma once

#include "host/db/database.h"
#include "host/dxf/tag_reader.h"
#include "host/dxf/writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace test_dxf {

/// ../shared/drawings beside the source tree, or the folder that QORVANE_SHARED_DRAWINGS names.
inline std::filesystem::path shared_drawings() {
    if (const char* named = std::getenv("QORVANE_SHARED_DRAWINGS"); named != nullptr) {
        return named;
    }
    return std::filesystem::path(QORVANE_SOURCE_DIR) / ".." / "shared" / "drawings";
}

/// The real drawings; empty when the folder is not there.
inline std::vector<std::filesystem::path> drawing_files() {
    std::vector<std::filesystem::path> files;
    std::error_code code;
    for (const auto& entry : std::filesystem::directory_iterator(shared_drawings(), code)) {
        if (entry.path().extension() == ".dxf") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

inline std::string read_file(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// Loads text that must be a drawing.
inline std::unique_ptr<AcDbDatabase> load(const std::string& bytes) {
    auto db = std::make_unique<AcDbDatabase>(false);
    std::string error;
    EXPECT_EQ(db->dxfInMemory(bytes, error), Acad::eOk) << error;
    return db;
}

/// The findings as text; empty for a sound drawing.
inline std::string findings(const AcDbDatabase& db) {
    std::string text;
    for (const auto* list : {&db.loadReport().repaired, &db.loadReport().lost}) {
        for (const AcDbLoadFinding& finding : *list) {
            text += finding.code + " line " + std::to_string(finding.line) + ": " +
                    finding.message + "\n";
        }
    }
    return text;
}

inline std::string save(const AcDbDatabase& db, AcDbDxfForm form = AcDbDxfForm::kAsInput) {
    return dxf::write_to_memory(db, form);
}

/// A tag with its value in a form that does not depend on how the file spells it.
struct PlainTag {
    int code;
    std::string text;
    double number = 0;
    bool operator==(const PlainTag&) const = default;
};

inline std::vector<PlainTag> plain_tags(const std::string& bytes) {
    const dxf::FileForm form = dxf::detect_form(bytes);
    dxf::TagReader reader(std::string_view(bytes).substr(form.first_byte), form.form,
                          form.line_end);
    std::vector<PlainTag> tags;
    dxf::Tag tag;
    while (reader.next(tag)) {
        PlainTag plain{tag.code, {}, 0};
        switch (dxf::value_type(tag.code)) {
        case dxf::ValueType::kText:
        case dxf::ValueType::kHandle:
            plain.text = tag.raw();
            break;
        case dxf::ValueType::kChunk:
            plain.text = dxf::parse_chunk(tag);
            if (!tags.empty() && tags.back().code == tag.code) {
                tags.back().text += plain.text; // chunks may be cut elsewhere
                continue;
            }
            break;
        default:
            dxf::parse_real(tag, plain.number);
        }
        tags.push_back(std::move(plain));
    }
    return tags;
}

/// ENTITIES with the given tags, as a whole file. `tags` is lines of code and value.
inline std::string with_entities(const std::string& tags, const std::string& version = "AC1015") {
    return "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\n" + version +
           "\n  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n" + tags + "  0\nENDSEC\n  0\nEOF\n";
}

/// The only object of class T in model space.
template <class T>
T* first_entity(AcDbDatabase& db) {
    const auto* space = AcDbBlockTableRecord::cast(db.modelSpaceId().stub()->object);
    for (const AcDbObjectId id : space->entities()) {
        if (T* found = T::cast(id.stub()->object); found != nullptr) {
            return found;
        }
    }
    return nullptr;
}

} // namespace test_dxf
