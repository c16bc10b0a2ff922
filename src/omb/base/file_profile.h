// A profile in an initialisation file that several programs share. It is read at the first use,
// changed under a lock by write-new-then-rename, and every change is laid over what stands in the
// file at that moment: two programs that set different keys lose none.
#pragma once

#include "omb/base/ini_text.h"
#include "omb/base/profile.h"
#include "platform/shared_file.h"

#include <functional>
#include <map>
#include <string>

/// Told at most once a store, in words that begin with the file's path.
using profile_trouble = std::function<void(const std::string& text)>;

class cl_file_profile : public cl_profile_store {
public:
    /// Largest file that is read, in bytes; a larger one is left alone.
    static constexpr std::uint64_t size_limit = std::uint64_t{64} << 20;

    /// Nothing is opened yet. A path that is a link stands for the file that it leads to. An empty
    /// path makes a store in memory. With `fold_case`, names are the same in either case.
    explicit cl_file_profile(const std::string& path, profile_trouble trouble = {},
                             bool fold_case = false);
    ~cl_file_profile() override; ///< writes what waits, without telling of trouble

    std::optional<std::string_view> read(std::string_view section,
                                         std::string_view key) const override;
    void write(std::string_view section, std::string_view key, std::string_view value) override;
    void remember(std::string_view section, std::string_view key, std::string_view value) override;
    void remove(std::string_view section, std::string_view key) override;
    void begin_bulk() override;
    void end_bulk() override;

    /// Writes what waits. False when it could not be written: then it goes on waiting, and reads
    /// see it all the same.
    bool flush();
    std::int64_t writes() const { return write_count; } ///< how often the file was replaced

private:
    enum class change_kind { set, set_if_absent, remove };
    struct change {
        change_kind kind;
        std::string section, key, value;
    };

    void load() const {
        if (!loaded) {
            refresh(true);
        }
    }
    bool refresh(bool stamp_counts) const;
    void apply(const change& made) const;
    void make_change(change_kind kind, std::string_view section, std::string_view key,
                     std::string_view value);
    bool flush_locked(std::string& why);
    bool set_aside(std::string& why);
    bool report(const std::string& why) const;

    std::string path;
    profile_trouble trouble;
    std::map<std::string, change> waiting; ///< by section and key
    int bulk_depth = 0;
    std::int64_t write_count = 0;

    // What the file held when it was read last, with the waiting changes laid over it.
    mutable cl_ini_text content;
    mutable std::string known_text; ///< of the file itself
    mutable platform::FileStamp stamp;
    mutable bool loaded = false;
    mutable bool no_text = false;    ///< the file holds bytes that are no text
    mutable bool unreadable = false; ///< the file must be left alone
    mutable bool told = false;
};

/// A store in memory over another: reads fall through to it, changes do not reach it.
class cl_overlay_profile : public cl_profile_store {
public:
    explicit cl_overlay_profile(std::unique_ptr<cl_profile_store> below, bool fold_case = false)
      : below(std::move(below))
      , own("", nullptr, fold_case)
      , removed("", nullptr, fold_case) {}
    std::optional<std::string_view> read(std::string_view section,
                                         std::string_view key) const override;
    void write(std::string_view section, std::string_view key, std::string_view value) override;
    void remember(std::string_view section, std::string_view key, std::string_view value) override;
    void remove(std::string_view section, std::string_view key) override;

private:
    std::unique_ptr<cl_profile_store> below;
    cl_file_profile own, removed;
};

/// The program's initialisation file: never written, and a value of more than 8191 UTF-16 units
/// is cut there.
class cl_initialisation_file : public cl_profile_store {
public:
    explicit cl_initialisation_file(const std::string& path, profile_trouble trouble = {})
      : file(path, std::move(trouble)) {}
    std::optional<std::string_view> read(std::string_view section,
                                         std::string_view key) const override;
    void write(std::string_view, std::string_view, std::string_view) override {}
    void remove(std::string_view, std::string_view) override {}

private:
    cl_file_profile file;
    mutable std::string cut;
};
