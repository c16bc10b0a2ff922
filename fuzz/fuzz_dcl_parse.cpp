// Loads of dialogs from any bytes: the dialog "test_a", and all dialogs in turn. The records that
// come out hang together whether or not there were errors. No file is touched.
#include "omb/dialog/dcl_loader.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void require(bool good) {
    if (!good) {
        std::abort();
    }
}

int count_below(const cl_dialog_item& item) {
    int count = 0;
    for (const cl_dialog_item* child = item.first_child; child != nullptr;
         child = child->next_sibling) {
        require(child->parent_item == &item);
        count += 1 + count_below(*child);
    }
    return count;
}

void check_store(const cl_dcl_data& store) {
    require(count_below(store.root) == static_cast<int>(store.controls.size()));
    for (std::size_t i = 0; i < store.controls.size(); ++i) {
        require(store.controls[i]->number == static_cast<int>(i));
    }
    for (const cl_dialog_include& definition : store.named_controls) {
        require(definition.control() != nullptr && count_below(*definition.control()) + 1 ==
                                                       static_cast<int>(definition.items.size()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    cl_dcl_load_options options;
    options.with_includes = options.with_common_file = options.report = false;
    for (const bool every_dialog : {false, true}) {
        options.every_dialog = every_dialog;
        cl_dcl_data store;
        store.locals.set_local_int("ilocal", 1);
        const cl_dcl_load_result result =
            load_dcl_text(store, every_dialog ? "" : "test_a", text, "fuzz", options);
        require(current_dcl_loader() == nullptr);
        require(result.status == -1 || result.errors.empty());
        check_store(store);
    }
    return 0;
}
