// One source of the dialog language: a file that was read whole, or a text in memory.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

class cl_dcl_input_file {
public:
    /// The line mark of a file that nothing was included from yet.
    static constexpr int not_left = -999;
    static constexpr std::size_t size_limit = std::size_t{64} << 20;

    /// Opens `path`, or when it is empty the file `name` (".dcl" is appended to a name without a
    /// point) in the "dcl" folder of application `appl`. A failure is traced when `report`, and
    /// leaves the file closed.
    void open_dcl_file(const std::string& appl, const std::string& name, const std::string& path,
                       bool report);
    /// Takes a text in the place of a file; `name` stands in messages.
    void open_text(std::string text, const std::string& name);

    bool is_open() const { return content != nullptr; }
    /// Its characters, without carriage returns and byte order mark. They stay where they are when
    /// this object moves.
    std::string_view text() const { return content != nullptr ? *content : std::string_view(); }

    std::string appl;  ///< the application whose files it may include
    std::string name;  ///< as messages show it
    std::string label; ///< "application:name"
    std::string path;  ///< of a file
    std::string error; ///< why it would not open, as traced

    // Where to go on when what it includes has been read.
    int line = not_left;
    std::size_t position = 0;
    std::size_t line_start = 0;

private:
    void take(std::string text);
    std::unique_ptr<std::string> content;
};
