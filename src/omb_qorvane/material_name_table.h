// The names behind the stream's material indices: row i is index i + 10.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class cl_material_name_table {
public:
    static constexpr int first_index = 10;
    static constexpr int spare_rows = 10;

    /// Empties the table and makes `rows` rows and the spare ones, all without a name.
    void reset(std::size_t rows);
    /// Names a row; a later call replaces the name.
    void set(std::size_t row, std::string name);
    /// The stream's index of the first row with that name, or 0. An empty name is no material.
    int index_of(std::string_view name) const;
    const std::vector<std::string>& names() const { return names_; }

private:
    struct hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const {
            return std::hash<std::string_view>{}(text);
        }
    };
    std::vector<std::string> names_;
    mutable std::unordered_map<std::string, int, hash, std::equal_to<>> index_;
    mutable bool index_valid_ = false;
};
