// Profile stores, see profile.h.
#include "omb/base/profile.h"

#include "omb/base/text.h"

std::string cl_profile_store::read_text(std::string_view section, std::string_view key,
                                        std::string_view fall_back) const {
    return read(section, key).value_or(std::string(fall_back));
}

int cl_profile_store::read_int(std::string_view section, std::string_view key,
                               int fall_back) const {
    const std::optional<std::string> text = read(section, key);
    return text ? omb::parse_int(*text) : fall_back;
}

double cl_profile_store::read_double(std::string_view section, std::string_view key,
                                     double fall_back) const {
    const std::optional<std::string> text = read(section, key);
    return text ? omb::parse_double(*text) : fall_back;
}

std::optional<std::string> cl_memory_profile::read(std::string_view section,
                                                   std::string_view key) const {
    const auto keys = sections.find(section);
    if (keys == sections.end()) {
        return std::nullopt;
    }
    const auto entry = keys->second.find(key);
    return entry == keys->second.end() ? std::nullopt : std::optional(entry->second);
}

void cl_memory_profile::write(std::string_view section, std::string_view key,
                              std::string_view value) {
    auto keys = sections.find(section);
    if (keys == sections.end()) {
        keys = sections.try_emplace(std::string(section)).first;
    }
    const auto entry = keys->second.find(key);
    if (entry == keys->second.end()) {
        keys->second.emplace(key, value);
    } else {
        entry->second = value;
    }
}

namespace {

using holder = std::unique_ptr<cl_profile_store>;

holder& profile_holder() {
    static holder store = std::make_unique<cl_memory_profile>();
    return store;
}

holder& initialisation_holder() {
    static holder store = std::make_unique<cl_memory_profile>();
    return store;
}

void replace(holder& where, holder store) {
    where = store ? std::move(store) : std::make_unique<cl_memory_profile>();
}

} // namespace

cl_profile_store& profile() { return *profile_holder(); }
cl_profile_store& initialisation_file() { return *initialisation_holder(); }
void set_profile(holder store) { replace(profile_holder(), std::move(store)); }
void set_initialisation_file(holder store) { replace(initialisation_holder(), std::move(store)); }
