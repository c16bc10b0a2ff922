// XML files of the toolkit, see ts_xml.h.
#include "toolkit/ts_xml.h"

#include "platform/files.h"

#include <algorithm>
#include <sstream>

namespace {

/// Collects pugixml's output.
struct StringWriter : pugi::xml_writer {
    std::string text;
    void write(const void* data, size_t size) override {
        text.append(static_cast<const char*>(data), size);
    }
};

/// Turns pugixml's output into an AtomicFile.
struct FileWriter : pugi::xml_writer {
    explicit FileWriter(platform::AtomicFile& target)
      : file(target) {}
    platform::AtomicFile& file;
    void write(const void* data, size_t size) override {
        file.write({static_cast<const char*>(data), size});
    }
};

} // namespace

// ---- writing ----

bool CTsXmlWriter::Init(const std::string& file_path, int format_flags, int file_version) {
    path = file_path;
    error.clear();
    flags = format_flags;
    version = file_version < 0 ? ts_xml_version : file_version;
    document.reset();
    pugi::xml_node declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    current = document;
    return true;
}

pugi::xml_node CTsXmlWriter::Open(const char* name) {
    const bool root = !document.document_element();
    current = (root ? document : current).append_child(name);
    if (root) {
        current.append_attribute("version") = version;
    }
    return current;
}

void CTsXmlWriter::CloseElement() {
    if (current != document) {
        current = current.parent();
    }
}

std::string CTsXmlWriter::Text() const {
    StringWriter writer;
    document.save(writer, "  ", flags == 1 ? pugi::format_raw : pugi::format_indent);
    return writer.text;
}

bool CTsXmlWriter::Close() {
    if (path.empty()) {
        return true;
    }
    platform::AtomicFile file;
    std::string why;
    bool done = file.open(path, why);
    if (done) {
        FileWriter writer(file);
        document.save(writer, "  ", flags == 1 ? pugi::format_raw : pugi::format_indent);
        done = file.commit(why);
    }
    error = done ? "" : path + ": " + why;
    return done;
}

// ---- reading ----

namespace {

int LineOf(std::string_view text, std::ptrdiff_t offset) {
    const auto end = static_cast<std::size_t>(std::max<std::ptrdiff_t>(offset, 0));
    const std::string_view ahead = text.substr(0, std::min(end, text.size()));
    return 1 + static_cast<int>(std::count(ahead.begin(), ahead.end(), '\n'));
}

/// Deepest level of elements, counted without recursion.
int DepthOf(pugi::xml_document& document) {
    struct Walker : pugi::xml_tree_walker {
        int deepest = 0;
        bool for_each(pugi::xml_node&) override {
            deepest = std::max(deepest, depth());
            return true;
        }
    } walker;
    document.traverse(walker);
    return walker.deepest;
}

} // namespace

bool CTsXmlReader::Init(const std::string& path) {
    document.reset();
    platform::MappedFile file;
    std::string why;
    if (!file.open(path, why)) {
        error = path + ": " + why;
        return false;
    }
    return InitFromText(file.view(), path);
}

bool CTsXmlReader::InitFromText(std::string_view text, const std::string& name) {
    document.reset();
    error.clear();
    if (text.size() > size_limit) {
        error = name + ": is too large for a settings file";
        return false;
    }
    const pugi::xml_parse_result result =
        document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!result) {
        error = name + ": " + result.description() + " (line " +
                std::to_string(LineOf(text, result.offset)) + ")";
    } else if (!document.document_element()) {
        error = name + ": no XML element in it";
    } else if (DepthOf(document) > depth_limit) {
        error = name + ": elements are nested too deeply";
    }
    if (!error.empty()) {
        document.reset();
    }
    return error.empty();
}

int CTsXmlReader::Version() const { return Root().attribute("version").as_int(0); }

// ---- what was not understood ----

void CTsXmlRest::Collect(pugi::xml_node node, const std::vector<std::string_view>& known) {
    const auto is_known = [&](const char* name) {
        return std::find(known.begin(), known.end(), name) != known.end();
    };
    attributes.clear();
    StringWriter writer;
    for (const pugi::xml_attribute attribute : node.attributes()) {
        if (!is_known(attribute.name())) {
            attributes.emplace_back(attribute.name(), attribute.value());
        }
    }
    for (const pugi::xml_node child : node.children()) {
        if (child.type() != pugi::node_element || !is_known(child.name())) {
            child.print(writer, "", pugi::format_raw);
        }
    }
    elements = std::move(writer.text);
}

void CTsXmlRest::Append(pugi::xml_node node) const {
    for (const auto& [name, value] : attributes) {
        if (!node.attribute(name.c_str())) {
            node.append_attribute(name.c_str()) = value.c_str();
        }
    }
    if (!elements.empty()) {
        node.append_buffer(elements.data(), elements.size(),
                           pugi::parse_default | pugi::parse_fragment, pugi::encoding_utf8);
    }
}
