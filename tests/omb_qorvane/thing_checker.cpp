// Lights, plants and decals, each with the files that it names.
#include "stream_parser.h"

#include <algorithm>

namespace checker {
namespace {

constexpr std::string_view direction_form = "(%0.9g,%0.9g,%0.9g)";
constexpr std::string_view fixed_form = "(%f,%f,%f)";

/// The number between the two texts, or -1 when the name is not made so.
int number_in(std::string_view name, std::string_view stem, std::string_view suffix) {
    if (name.size() <= stem.size() + suffix.size() || !name.starts_with(stem) ||
        !name.ends_with(suffix)) {
        return -1;
    }
    const std::string_view digits =
        name.substr(stem.size(), name.size() - stem.size() - suffix.size());
    return is_integer(digits) && digits.size() < 9 ? std::stoi(std::string(digits)) : -1;
}

} // namespace

void stream_parser::numbered_file(const std::string& folder, const std::string& stem,
                                  const std::string& suffix, int& counter,
                                  const std::string& name) {
    const int number = number_in(name, stem, suffix);
    in_.require(number >= 0, "no file of " + folder + " named " + stem + "%d" + suffix);
    if (number >= 0) {
        in_.require(number == counter,
                    "file numbers do not go on: " + std::to_string(counter) + " is next");
        counter = std::max(counter, number);
    }
    ++counter;
}

void stream_parser::light_block() {
    in_.context("a light");
    in_.exact("#;");
    light found;
    found.type = in_.integer("LTYP;");
    in_.require(found.type >= 1 && found.type <= 6, "no kind of light");
    found.origin = in_.numbers("LORG;", "(%f, %f, %f)");
    found.number = in_.integer("LGHT;");
    const std::int64_t wanted =
        out_.lights.empty() ? 1 : std::int64_t{out_.lights.back().number} + 1;
    in_.require(found.number == wanted, "light numbers do not ascend from 1");
    needs("QorBatch_Lights", "light_" + std::to_string(found.number) + ".xml");
    out_.lights.push_back(found);
}

// A plant of the library has a comment ahead, a diameter and a season.
void stream_parser::plant_block(bool from_library) {
    in_.context("a plant");
    in_.exact("#;PLANT");
    in_.exact("PLLB;TsPlant");
    plant found;
    found.from_library = from_library;
    found.file = in_.rest("PLNM;");
    constexpr std::string_view suffix = "_def.TsPlant";
    in_.require(found.file.ends_with(suffix) &&
                    found.file.find_first_of("/\\*") == std::string::npos,
                "no stripped name of a plant definition");
    const std::string stem =
        found.file.substr(0, found.file.size() - std::min(found.file.size(), suffix.size()));
    if (from_library) {
        numbered_file("Plants", "TsPlant_", std::string(suffix), next_plant_, found.file);
    } else {
        const std::string number = std::to_string(next_plant_++);
        in_.require(stem.starts_with(number + "_") && stem.size() > number.size() + 1,
                    "no plant file named " + number + "_%s_def.TsPlant");
    }
    needs("Plants", stem + ".TsPlant");
    needs("Plants", found.file);
    found.position = in_.numbers("PLLC;", direction_form);
    if (from_library) {
        found.diameter = in_.numbers("PLDM;", "%0.9g")[0];
        found.season = in_.integer("PLSN;");
    }
    found.rotation = in_.numbers("PLRT;", "%0.9g")[0];
    found.scale = in_.numbers("PLSC;", "%0.9g")[0];
    in_.require(from_library || found.scale == 1, "the scale of such a plant is 1");
    in_.exact("PLNT;1");
    out_.plants.push_back(found);
}

void stream_parser::object_decals() {
    for (;;) {
        if (in_.take("#;DECAL not written")) {
            ++next_decal_; // its number is used up
        } else if (in_.at_line("#;") && in_.at("DECO;", 1)) {
            object_decal();
        } else {
            return;
        }
    }
}

void stream_parser::object_decal() {
    in_.context("a decal");
    in_.exact("#;");
    decal found;
    for (const char* keyword : {"DECO;", "DECX;", "DECY;", "DECZ;", "DECS;"}) {
        found.values.push_back(in_.numbers(keyword, fixed_form));
    }
    found.file = in_.rest("DECL;");
    numbered_file("Decals", "OMB_Decal_", ".TsDecal", next_decal_, found.file);
    needs("Decals", found.file);
    in_.exact("#;");
    out_.decals.push_back(found);
}

void stream_parser::image_decal() {
    in_.context("the comments of an image decal");
    in_.rest("#;DECAL, sourceFileName: ");
    for (const char* comment : {"#;Found relative image: ", "#;Relative image not found: "}) {
        if (in_.at(comment)) {
            in_.rest(comment);
            break;
        }
    }
    if (in_.at("#;CopyFile: ")) {
        const std::string copied = in_.rest("#;CopyFile: ");
        in_.require(copied.find(" -> ") != std::string::npos, "CopyFile without its target");
    }
    bool without_data = false;
    if (in_.at("#;Saved ATIL Image; ")) {
        in_.rest("#;Saved ATIL Image; ");
    } else if (in_.at("#;Could not get ATIL Image; ")) {
        in_.rest("#;Could not get ATIL Image; ");
        without_data = true;
    }
    if (in_.at("#;DECL; Not Found: ")) {
        in_.rest("#;DECL; Not Found: ");
        return;
    }
    in_.require(!without_data, "an image that could not be had, and no 'DECL; Not Found' of it");
    image_block();
}

void stream_parser::image_block() {
    in_.context("an image decal");
    in_.exact("#;");
    decal found;
    found.is_image = true;
    found.values.push_back(in_.numbers("DEC1;", fixed_form));
    found.values.push_back(in_.numbers("DEC2;", fixed_form));
    const double width = in_.numbers("DECW;", "%f")[0];
    in_.require(width >= 0, "a width below 0");
    const double height = in_.numbers("DECH;", "%f")[0];
    in_.require(height >= 0, "a height below 0");
    found.values.push_back({width, height, 0});
    found.values.push_back(in_.numbers("DECN;", fixed_form));
    found.file = in_.rest("DECL;");
    in_.require(!found.file.empty() && found.file.find_first_of("/\\") == std::string::npos,
                "no stripped name of an image");
    needs("Decals", found.file);
    in_.exact("#;");
    out_.decals.push_back(found);
}

} // namespace checker
