// The reader of geometry streams: one method a production.
#pragma once

#include "stream_checker.h"

#include <optional>
#include <utility>

namespace checker {

class stream_parser {
public:
    explicit stream_parser(std::string_view text)
      : in_(text, out_.faults) {}
    stream parse();

private:
    // stream_checker.cpp: the frame.
    void header();
    void time_line();
    void material_list();
    void body();
    void body_item();
    void go_on_behind_fault(std::size_t item_start);
    void brackets();
    void close_bracket();

    // mesh_checker.cpp
    void plain_mesh();
    void shell();
    void map_flag(mesh& m);
    void properties(mesh& m);
    void ground_cover(mesh& m);
    void light_layer(const mesh& m, const std::optional<std::string>& tag);
    void mapping_key(mesh& m);
    void color_records(mesh& m);
    void material_index(mesh& m, int index);
    void rotation(mesh& m);
    void vertices(mesh& m);
    void vertex_normal(const mesh& m, vertex& v);
    void vertex_number(const mesh& m, int number);
    void vertices_as_a_whole(const mesh& m);
    void faces(mesh& m);
    void end_of_mesh(mesh m);

    // thing_checker.cpp: lights, plants, decals.
    void light_block();
    void plant_block(bool from_library);
    void object_decals();
    void object_decal();
    void image_decal();
    void image_block();
    void numbered_file(const std::string& folder, const std::string& stem,
                       const std::string& suffix, int& counter, const std::string& name);
    void needs(const std::string& folder, const std::string& name) {
        out_.files.push_back({in_.position(), folder, name});
    }

    stream out_;
    text_reader in_;
    std::vector<std::string> stack_;
    bool bracket_is_empty_ = false;
    int next_plant_ = 0, next_decal_ = 0;
    std::optional<int> dynamic_light_;
};

} // namespace checker
