// Shared libraries loaded at run time.
#pragma once

#include <filesystem>
#include <string>

namespace platform {

class Module {
public:
    Module() = default;
    ~Module();
    Module(Module&& other) noexcept;
    Module& operator=(Module&& other) noexcept;
    bool open(const std::filesystem::path& path, std::string& error);
    void close();
    /// The address of an exported function, or null.
    void* symbol(const std::string& name) const;
    bool is_open() const { return handle_ != nullptr; }

private:
    void* handle_ = nullptr;
};

} // namespace platform
