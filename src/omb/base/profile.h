// The profile: the user's last value of each setting, by section and key. The default store lives
// in memory and ends with the process: nothing is remembered on disk yet.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

class cl_profile_store {
public:
    virtual ~cl_profile_store() = default;
    /// Text of a key, or nothing when it was never written.
    virtual std::optional<std::string> read(std::string_view section,
                                            std::string_view key) const = 0;
    virtual void write(std::string_view section, std::string_view key, std::string_view value) = 0;

    std::string read_text(std::string_view section, std::string_view key,
                          std::string_view fall_back) const;
    int read_int(std::string_view section, std::string_view key, int fall_back) const;
    double read_double(std::string_view section, std::string_view key, double fall_back) const;
};

class cl_memory_profile : public cl_profile_store {
public:
    std::optional<std::string> read(std::string_view section, std::string_view key) const override;
    void write(std::string_view section, std::string_view key, std::string_view value) override;

private:
    std::map<std::string, std::map<std::string, std::string, std::less<>>, std::less<>> sections;
};

/// The user's profile, and the program's read-only initialisation file that stands behind it.
cl_profile_store& profile();
cl_profile_store& initialisation_file();
/// Replaces a store; a null pointer brings back an empty one in memory.
void set_profile(std::unique_ptr<cl_profile_store> store);
void set_initialisation_file(std::unique_ptr<cl_profile_store> store);
