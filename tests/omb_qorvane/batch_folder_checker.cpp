// A drawing's folder as a whole: its text files, and the files that they name.
#include "stream_checker.h"

#include <set>

namespace fs = std::filesystem;

namespace checker {
namespace {

class folder_reader {
public:
    explicit folder_reader(fs::path folder)
      : folder_(std::move(folder)) {}

    std::vector<std::string> read() {
        if (!fs::is_directory(folder_, ignored_)) {
            faults_.push_back("no folder");
            return std::move(faults_);
        }
        parameter_files();
        if (present("", "option_globals.txt", "the globals of the render are named GLOBALS_FILE")) {
            not_empty("option_globals.txt");
        }
        if (present("", "qor_doc.xml", "the toolkit document is named DOC_FILE")) {
            not_empty("qor_doc.xml");
        }
        if (present("", "qor_view.txt", "the view is named VIEW_FILE")) {
            std::map<std::string, double> values;
            add("qor_view.txt", check_view(text("qor_view.txt"), values));
        }
        if (present("", "batch_file.txt", "the geometry stream is named BATCH_GEOM_FILE")) {
            geometry();
        }
        return std::move(faults_);
    }

private:
    std::string text(const std::string& name) const { return read_text((folder_ / name).string()); }
    bool is_file(const std::string& sub_folder, const std::string& name) {
        return fs::is_regular_file(folder_ / sub_folder / name, ignored_);
    }
    bool present(const std::string& sub_folder, const std::string& name, const std::string& rule) {
        if (is_file(sub_folder, name)) {
            return true;
        }
        faults_.push_back((sub_folder.empty() ? name : sub_folder + "/" + name) +
                          ": the file is missing: " + rule);
        return false;
    }
    void not_empty(const std::string& name) {
        if (fs::file_size(folder_ / name, ignored_) == 0) {
            faults_.push_back(name + ": the file is empty");
        }
    }
    void add(const std::string& file, const std::vector<std::string>& found) {
        const std::string prefix = file + ", ";
        for (const std::string& fault : found) {
            faults_.push_back(prefix + fault);
        }
    }

    /// The second one is there when the first could not be removed.
    void parameter_files() {
        bool any = false;
        for (const char* name : {"qor_render_params.txt", "qor_render_params_2.txt"}) {
            if (is_file("", name)) {
                any = true;
                std::map<std::string, std::string> values;
                add(name, check_params(text(name), values));
            }
        }
        if (!any) {
            present("", "qor_render_params.txt", "no folder is without its parameter file");
        }
    }

    void geometry() {
        const stream found = check_stream(text("batch_file.txt"));
        add("batch_file.txt", found.faults);
        for (const named_file& file : found.files) {
            present(file.folder, file.name,
                    "batch_file.txt names it in line " + std::to_string(file.line));
        }
        materials(found);
        lights(found);
    }

    /// One file a row: of a row with two names the toolkit material's is the one that is written.
    void materials(const stream& found) {
        std::set<std::string> listed;
        for (const auto& [index, name] : found.materials) {
            const auto toolkit = found.toolkit_materials.find(index);
            listed.insert(name);
            if (toolkit != found.toolkit_materials.end()) {
                listed.insert(toolkit->second);
            }
            if (toolkit == found.toolkit_materials.end() ||
                !is_file("Materials", toolkit->second)) {
                present("Materials", name, "the material list has it as " + std::to_string(index));
            }
        }
        no_others("Materials", ".TsMaterial", listed, "the material list does not name it");
    }
    void lights(const stream& found) {
        std::set<int> numbers;
        std::set<std::string> files;
        for (const light& one : found.lights) {
            numbers.insert(one.number);
            files.insert("light_" + std::to_string(one.number) + ".xml");
        }
        no_others("QorBatch_Lights", ".xml", files, "no LGHT record has its number");
        for (const mesh& lamp : found.meshes) {
            if (lamp.light >= 0 && numbers.insert(lamp.light).second) {
                faults_.push_back("batch_file.txt: a mesh is the lamp of light " +
                                  std::to_string(lamp.light) + ", which no LGHT record has");
            }
        }
    }
    void no_others(const std::string& sub_folder, const std::string& suffix,
                   const std::set<std::string>& known, const std::string& rule) {
        const std::string tail = ": a file too many: " + rule;
        for (const auto& entry : fs::directory_iterator(folder_ / sub_folder, ignored_)) {
            const std::string name = entry.path().filename().string();
            if (name.ends_with(suffix) && !known.contains(name)) {
                faults_.push_back(sub_folder + '/');
                faults_.back().append(name).append(tail);
            }
        }
    }

    fs::path folder_;
    std::vector<std::string> faults_;
    std::error_code ignored_;
};

} // namespace

std::vector<std::string> check_folder(const fs::path& folder) {
    return folder_reader(folder).read();
}

} // namespace checker
