// XML files of the toolkit: a writer that leaves no partial file, a reader with a size limit, and
// the carrier of what a reader did not understand.
#pragma once

#include <cstdint>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Version of every file that the toolkit writes, in the root's `version` attribute.
inline constexpr int ts_xml_version = 1;

class CTsXmlWriter {
public:
    /// Begins a file. `flags` 0 is indented text, 1 one line; `version` below 0 means
    /// ts_xml_version. An empty path writes to memory only, see Text. Always true: the file is
    /// opened in Close.
    bool Init(const std::string& path, int flags = 0, int version = -1);
    /// Adds the root element with its version attribute (the first call), or a further child of
    /// the current element, and makes it current.
    pugi::xml_node Open(const char* name);
    void CloseElement(); ///< makes the parent current
    pugi::xml_node Current() const { return current; }
    /// Writes the file under a temporary name and renames it. False, with Error filled, when that
    /// fails.
    bool Close();
    std::string Text() const; ///< the document so far
    const std::string& Error() const { return error; }

private:
    std::string path, error;
    pugi::xml_document document;
    pugi::xml_node current;
    int flags = 0;
    int version = ts_xml_version;
};

class CTsXmlReader {
public:
    static constexpr std::uintmax_t size_limit = std::uintmax_t{64} << 20; ///< bytes
    static constexpr int depth_limit = 200;                                ///< levels of elements

    /// False, with Error filled ("FILE: what (line L)"), when the file cannot be read or is no XML.
    bool Init(const std::string& path);
    bool InitFromText(std::string_view text, const std::string& name);
    pugi::xml_node Root() const { return document.document_element(); }
    int Version() const; ///< of the root; 0 when it has none
    const std::string& Error() const { return error; }

private:
    std::string error;
    pugi::xml_document document;
};

/// Attributes and child elements that a reader did not know, kept as text and written back.
class CTsXmlRest {
public:
    /// Keeps what `node` has beyond the known names.
    void Collect(pugi::xml_node node, const std::vector<std::string_view>& known);
    void Append(pugi::xml_node node) const;
    bool Empty() const { return attributes.empty() && elements.empty(); }
    friend bool operator==(const CTsXmlRest&, const CTsXmlRest&) = default;

private:
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string elements;
};
