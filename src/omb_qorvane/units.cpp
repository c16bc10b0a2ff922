// Drawing units, dialog units and the document's scale.
#include "omb_qorvane/units.h"

#include "omb/base/trace.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/the_app.h"

#include <array>
#include <cstring>

namespace {

struct units_row {
    const char* word;
    double metres;
};
constexpr std::array<units_row, 3> units_rows{{{"inches", 0.0254}, {"cm", 0.01}, {"mm", 0.001}}};

/// What the dialogs know of units: the unit of lengths and of texture sizes.
struct dialog_units {
    int lengths, textures;
};
constexpr dialog_units inch_dialogs{1, 1}, metric_dialogs{11, 2};

void trace_entries(AcDbObjectId dictionary_id) {
    const AcDbObjectPointer<AcDbDictionary> dictionary(dictionary_id);
    if (!dictionary) {
        return;
    }
    for (const AcDbDictionary::Entry& entry : dictionary->entries()) {
        OMB_TRACE(0, "OMB_Qorvane: %s", entry.key);
    }
}

} // namespace

double metres_per_unit(const char* units_word) {
    for (const units_row& row : units_rows) {
        if (std::strcmp(row.word, units_word) == 0) {
            return row.metres;
        }
    }
    return 1.0;
}

const char* default_units_word(int insunits) {
    const bool inches = (insunits >= 1 && insunits <= 3) || (insunits >= 8 && insunits <= 10);
    return inches ? "inches" : "mm";
}

void initialize_drawing_and_dcl_units() {
    cl_omb_export& exporter = theApp().omb_export;
    trace_entries(exporter.OMB_QorvaneDictionary(AcDb::kForRead, nullptr, false));
    set_global_string("sks_acad_drawing_units", "");
    exporter.read_globals_from_OMB_QorvaneDictionary();
    std::string word = get_global_string("sks_acad_drawing_units");
    if (word.empty()) {
        const AcDbDatabase* database = acdbCurDwg();
        word = default_units_word(database != nullptr ? database->insunits() : 0);
        set_global_string("sks_acad_drawing_units", word);
    }
    const dialog_units& dialogs = word == "inches" ? inch_dialogs : metric_dialogs;
    theApp().dialog_units = dialogs.lengths;
    set_global_int("iks_texture_units_mode", dialogs.textures);
    theApp().refresh_document();
    if (CTsAcDoc* document = theApp().tsdoc; document != nullptr) {
        document->SetScale(metres_per_unit(word.c_str()));
        OMB_TRACE(0, "scale: %f: %f -> %f", document->m_Scale, 1.0,
                  document->ToTs(CTsPoint{1, 0, 0}).x);
    }
    exporter.write_globals_to_OMB_QorvaneDictionary();
}
