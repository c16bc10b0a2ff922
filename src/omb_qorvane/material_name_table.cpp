// Material names and their indices in the stream.
#include "omb_qorvane/material_name_table.h"

void cl_material_name_table::reset(std::size_t rows) {
    names_.assign(rows + spare_rows, {});
    index_valid_ = false;
}

void cl_material_name_table::set(std::size_t row, std::string name) {
    names_.at(row) = std::move(name);
    index_valid_ = false;
}

int cl_material_name_table::index_of(std::string_view name) const {
    if (name.empty()) {
        return 0;
    }
    if (!index_valid_) {
        index_.clear();
        for (std::size_t row = 0; row < names_.size(); ++row) {
            index_.try_emplace(names_[row], static_cast<int>(row) + first_index);
        }
        index_valid_ = true;
    }
    const auto at = index_.find(name);
    return at != index_.end() ? at->second : 0;
}
