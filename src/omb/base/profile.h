// The profile: the user's last value of each setting, by section and key. A profile store may live
// in a file (file_profile.h), in memory, or in memory over another one.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

class cl_profile_store {
public:
    virtual ~cl_profile_store() = default;
    /// Text of a key, or nothing when it was never written. The view is valid until the next call.
    virtual std::optional<std::string_view> read(std::string_view section,
                                                 std::string_view key) const = 0;
    /// Stores a value that the user chose.
    virtual void write(std::string_view section, std::string_view key, std::string_view value) = 0;
    /// Notes a value that was only read, so that it is there next time: it never replaces what
    /// another program has stored meanwhile, and it may wait for the next write().
    virtual void remember(std::string_view section, std::string_view key, std::string_view value);
    virtual void remove(std::string_view section, std::string_view key) = 0;

    /// Between begin_bulk and its end_bulk nothing goes to disk; the last end_bulk writes once.
    virtual void begin_bulk() {}
    virtual void end_bulk() {}

    std::string read_text(std::string_view section, std::string_view key,
                          std::string_view fall_back) const;
    int read_int(std::string_view section, std::string_view key, int fall_back) const;
    double read_double(std::string_view section, std::string_view key, double fall_back) const;
};

/// A store that ends with the process.
std::unique_ptr<cl_profile_store> make_memory_profile(bool fold_case = false);

/// The user's profile, and the program's read-only initialisation file that stands behind it. Both
/// are empty stores in memory until a program opens the user's own, see open_user_profile.
cl_profile_store& profile();
cl_profile_store& initialisation_file();
/// Replaces a store; a null pointer brings back an empty one in memory.
void set_profile(std::unique_ptr<cl_profile_store> store);
void set_initialisation_file(std::unique_ptr<cl_profile_store> store);
/// A number that changes with every set_profile: what was kept of one profile is void in the next.
std::uint32_t profile_generation();

/// How a program uses the user's profile.
enum class profile_use {
    read_and_write, ///< what is set is kept
    read_only       ///< what is set ends with the process
};
/// Title of the box that tells of a settings file that cannot be used.
inline constexpr const char* settings_trouble_title = "Settings";

/// Opens the profile and the initialisation file of the user's settings folder, and the registry
/// beside them. Trouble is told once through the message box and the program runs on in memory.
void open_user_profile(profile_use use);

/// One write to disk for everything that is set during its life.
class cl_profile_bulk {
public:
    cl_profile_bulk()
      : store(profile()) {
        store.begin_bulk();
    }
    ~cl_profile_bulk() { store.end_bulk(); }
    cl_profile_bulk(const cl_profile_bulk&) = delete;
    cl_profile_bulk& operator=(const cl_profile_bulk&) = delete;

private:
    cl_profile_store& store;
};
