// The drawing's own settings: one xrecord a global in the dictionary OMB_Qorvane.
#include "omb_qorvane/dictionary.h"

#include "omb/base/folders.h"
#include "omb/base/profile.h"
#include "omb/base/trace.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/option_globals.h"
#include "omb_qorvane/the_app.h"

#include <cmath>

namespace {

constexpr const char* dictionary_key = "OMB_Qorvane";
constexpr const char* name_record = "somb_acad_database_name";

/// Which CAD program runs us is the user's and goes with no drawing.
constexpr const char* not_of_drawings = "sks_last_green_button_code";

/// Group codes of a record.
enum group : int {
    text_group = 1,
    name_group = 2,
    point_group = 10,
    real_group = 40,
    integer_group = 70
};

/// What a record holds, by group.
struct record_values {
    std::string name, text;
    AcGePoint3d point;
    double real = 0;
    std::int64_t integer = 0;
};

record_values gather(const AcDbValues& chain) {
    record_values out;
    for (const AcDbValue& value : chain) {
        switch (value.code) {
        case text_group:
            out.text = value.text();
            break;
        case name_group:
            out.name = value.text();
            break;
        case point_group:
            out.point = value.point();
            break;
        case real_group:
            out.real = value.real();
            break;
        case integer_group:
            out.integer = value.integer();
            break;
        default:
            break;
        }
    }
    return out;
}

COLORREF color_of(const AcGePoint3d& p) {
    const auto byte = [](double value) {
        return static_cast<COLORREF>(std::isfinite(value) ? std::lround(std::fmod(value, 65536.0))
                                                          : 0) &
               0xffU;
    };
    return byte(p.x) | byte(p.y) << 8 | byte(p.z) << 16;
}

void set_global(const record_values& record) {
    if (record.name.empty() || record.name == not_of_drawings) {
        return;
    }
    switch (record.name.front()) {
    case 'i':
        set_global_int(record.name, static_cast<std::int16_t>(record.integer));
        break;
    case 'b':
        set_global_bool(record.name, record.integer != 0);
        break;
    case 's':
        set_global_string(record.name, record.text);
        break;
    case 'r':
        set_global_double(record.name, record.real);
        break;
    case 'p':
        set_global_fpt(record.name, {record.point.x, record.point.y, record.point.z});
        break;
    case 'c':
        set_global_COLORREF(record.name, color_of(record.point));
        break;
    default:
        break;
    }
}

AcDbValue value_of(const cl_variable_base& variable) {
    switch (variable.kind) {
    case 1: // cut to 16 bits; the reader extends the sign
        return {integer_group, std::int64_t{static_cast<std::int16_t>(variable.get_int_value())}};
    case 2:
        return {text_group, variable.get_string_value()};
    case 4: {
        const fpt p = variable.get_fpt_value();
        return {point_group, AcGePoint3d{p.x, p.y, p.z}};
    }
    case 5: {
        const COLORREF c = variable.get_COLORREF_value();
        return {point_group,
                AcGePoint3d{static_cast<double>(c & 0xff), static_cast<double>(c >> 8 & 0xff),
                            static_cast<double>(c >> 16 & 0xff)}};
    }
    default:
        return {real_group, variable.get_double_value()};
    }
}

bool same_chain(const AcDbValues& a, const AcDbValues& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](const AcDbValue& x, const AcDbValue& y) {
               return x.code == y.code && x.value == y.value;
           });
}

/// Enters a record under its name. One that holds the same already is left alone, so that a render
/// that changes nothing does not change the drawing.
void put_record(AcDbDictionary& dictionary, const std::string& name, AcDbValue value) {
    AcDbValues chain{AcDbValue(name_group, name), std::move(value)};
    AcDbObjectId present;
    if (dictionary.getAt(name, present) == Acad::eOk) {
        const AcDbObjectPointer<AcDbXrecord> record(present);
        if (record && same_chain(record->rbChain(), chain)) {
            return;
        }
    }
    auto record = std::make_unique<AcDbXrecord>();
    record->setFromRbChain(std::move(chain));
    AcDbObjectId id;
    if (dictionary.setAt(name, std::move(record), id) != Acad::eOk) {
        OMB_TRACE(1, "Cannot store in drawing: %s", name);
    }
}

AcDbObjectId create_dictionary(AcDbDictionary& named_objects) {
    const Acad::ErrorStatus status = named_objects.upgradeOpen();
    AcDbObjectId id;
    if (status == Acad::eOk || status == Acad::eWasOpenForWrite) {
        named_objects.setAt(dictionary_key, std::make_unique<AcDbDictionary>(), id);
    }
    return id;
}

AcDbObjectId find_dictionary(AcDb::OpenMode mode, AcDbDatabase* database, bool create) {
    if (database == nullptr) {
        database = acdbCurDwg();
    }
    if (database == nullptr) {
        return {};
    }
    AcDbObjectPointer<AcDbDictionary> named_objects(database->namedObjectsDictionaryId(), mode);
    AcDbObjectId id;
    if (!named_objects || (named_objects->getAt(dictionary_key, id) == Acad::eOk && id.isValid())) {
        return id;
    }
    return create ? create_dictionary(*named_objects) : AcDbObjectId();
}

constexpr const char* units_global = "sks_acad_drawing_units";

void trace_before_read() {
    OMB_TRACE(0, "%s: %s", name_record, get_global_string(name_record));
    OMB_TRACE(0, "%s: %s", units_global, get_global_string(units_global));
}

void trace_after_read() {
    OMB_TRACE(0, "after read: %s", get_global_string(name_record));
    OMB_TRACE(0, "after read: %s", get_global_string(units_global));
}

} // namespace

AcDbObjectId cl_omb_export::OMB_QorvaneDictionary(AcDb::OpenMode mode, AcDbDatabase* database,
                                                  bool create) {
    return find_dictionary(mode, database, create);
}

std::set<std::string> names_in_OMB_QorvaneDictionary(AcDbDatabase& database) {
    std::set<std::string> names;
    const AcDbObjectPointer<AcDbDictionary> dictionary(
        find_dictionary(AcDb::kForRead, &database, false));
    if (dictionary) {
        for (const AcDbDictionary::Entry& entry : dictionary->entries()) {
            names.insert(entry.key);
        }
    }
    return names;
}

void write_global_to_OMB_QorvaneDictionary(AcDbDatabase& database, const std::string& name) {
    const AcDbObjectPointer<AcDbDictionary> dictionary(
        find_dictionary(AcDb::kForWrite, &database, true), AcDb::kForWrite);
    if (dictionary) {
        put_record(*dictionary, name, value_of(*find_global(name, SAVE_ANY, false)));
    }
}

void remove_from_OMB_QorvaneDictionary(AcDbDatabase& database, const std::string& name) {
    const AcDbObjectPointer<AcDbDictionary> dictionary(
        find_dictionary(AcDb::kForWrite, &database, false), AcDb::kForWrite);
    if (dictionary) {
        dictionary->remove(name);
    }
}

void read_globals_from_OMB_QorvaneDictionary(AcDbDatabase& database) {
    const AcDbObjectPointer<AcDbDictionary> dictionary(
        find_dictionary(AcDb::kForRead, &database, true));
    if (!dictionary) {
        return;
    }
    trace_before_read();
    const cl_profile_bulk one_write;
    for (const AcDbDictionary::Entry& entry : dictionary->entries()) {
        record_values values;
        {
            const AcDbObjectPointer<AcDbXrecord> record(entry.id);
            if (!record) {
                continue;
            }
            values = gather(record->rbChain());
        }
        set_global(values);
    }
    trace_after_read();
}

void write_globals_to_OMB_QorvaneDictionary(AcDbDatabase& database,
                                            const std::string& drawing_name) {
    const AcDbObjectPointer<AcDbDictionary> dictionary(
        find_dictionary(AcDb::kForWrite, &database, true), AcDb::kForWrite);
    if (!dictionary) {
        return;
    }
    put_record(*dictionary, name_record, AcDbValue(text_group, drawing_name));
    std::vector<std::string> names;
    get_global_names_sorted(names);
    for (const std::string& name : names) {
        const cl_variable_base* variable = globals.lookup(name);
        if (variable != nullptr && is_dictionary_type(variable->save_type) && name != name_record &&
            name != not_of_drawings) {
            put_record(*dictionary, name, value_of(*variable));
        }
    }
}

void cl_omb_export::read_globals_from_OMB_QorvaneDictionary() {
    if (AcDbDatabase* database = acdbCurDwg(); database != nullptr) {
        ::read_globals_from_OMB_QorvaneDictionary(*database);
    }
}

void cl_omb_export::write_globals_to_OMB_QorvaneDictionary() {
    if (AcDbDatabase* database = acdbCurDwg(); database != nullptr) {
        ::write_globals_to_OMB_QorvaneDictionary(*database, get_drawing_name());
    }
}

namespace {
std::string options_path(cl_omb_export& exporter) {
    const std::string folder = exporter.get_batch_folder();
    return folder.empty() ? folder : join_path(folder, "option_globals.txt");
}
void preset_all(int mode) {
    preset_globals(mode);
    preset_report_globals(mode);
}
} // namespace

void cl_omb_export::initialize_options_globals_file() {
    preset_all(0);
    save_options_globals_file();
}

void cl_omb_export::read_default_globals_file(const std::string& path) {
    preset_all(0);
    if (file_exists(path)) {
        read_option_globals_from_settings_file(path);
    }
    std::error_code ignored;
    std::filesystem::remove(options_path(*this), ignored);
    save_options_globals_file();
}

void cl_omb_export::read_options_globals_file() {
    const std::string path = options_path(*this);
    if (file_exists(path)) {
        read_option_globals_from_settings_file(path);
    }
}

void cl_omb_export::save_options_globals_file() {
    if (!write_option_globals_to_settings_file(options_path(*this))) {
        OMB_TRACE(1, "Cannot write option globals: %s", options_path(*this));
    }
}

void cl_omb_export::rewrite_options_file() {
    save_options_globals_file();
    if (green_button_app == GREEN_BUTTON_ASUNI || green_button_app == GREEN_BUTTON_GBCAD) {
        append_our_options_to_globals_file();
    }
}

void cl_omb_export::append_our_options_to_globals_file() {
    cl_output_file file;
    if (file.open_for_append(options_path(*this))) {
        file.write_fmt("bks_show_render_selection_set; %d\n", render_selection_set ? 1 : 0);
    }
}
