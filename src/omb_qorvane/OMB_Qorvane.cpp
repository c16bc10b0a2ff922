// Start and stop of the module, and its first use.
#include "omb_qorvane/OMB_Qorvane.h"

#include "Kestra_Qor/option_commands.h"
#include "omb/base/errors.h"
#include "omb/base/trace.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "omb/globals/trace_values.h"
#include "omb_qorvane/batch_calls.h"
#include "omb_qorvane/command_table.h"
#include "omb_qorvane/dcl_dialogs.h"
#include "omb_qorvane/sample_classes.h"
#include "omb_qorvane/sample_commands.h"
#include "omb_qorvane/ts_ac_world_draw.h"

namespace {

bool used = false; ///< a command has run since the start
std::unique_ptr<AsdkCommandReactor> command_reactor;
std::unique_ptr<MyDocumentReactor> document_reactor;
std::unique_ptr<MyHostAppServices> services;

void add_reactors() {
    command_reactor = std::make_unique<AsdkCommandReactor>();
    acedAddReactor(command_reactor.get());
    document_reactor = std::make_unique<MyDocumentReactor>();
    acDocManager()->addReactor(document_reactor.get());
}

void remove_reactors() {
    if (command_reactor != nullptr) {
        acedRemoveReactor(command_reactor.get());
        acDocManager()->removeReactor(document_reactor.get());
    }
    command_reactor.reset();
    document_reactor.reset();
}

void add_commands(const char* group, std::span<const cl_command_row> rows) {
    for (const cl_command_row& row : rows) {
        acedRegCmds().addCommand(group, row.global_name, row.local_name, command_flags,
                                 row.function);
    }
}

} // namespace

void MyDocumentReactor::documentBecameCurrent(AcApDocument* document) {
    if (theApp().refresh_document() && document != nullptr) {
        theApp().tsdoc->BuildTsAcMatTable();
    }
}

void MyDocumentReactor::documentToBeDestroyed(AcApDocument* document) {
    if (theApp().tsdoc != nullptr && theApp().tsdoc->Document() == document) {
        theApp().tsdoc = nullptr;
    }
    if (CTsAcToolkit* toolkit = TsAcToolkit(); toolkit != nullptr) {
        toolkit->DocumentClosed(document);
    }
}

void AsdkCommandReactor::commandFailed(const std::string& name) {
    OMB_TRACE(1, "Command failed: %s", name);
}

void AsdkCommandReactor::beginSave(AcDbDatabase* database, const std::string&) {
    saving_ = database;
    old_name_ = database != nullptr ? database->filename() : std::string();
}

void AsdkCommandReactor::saveComplete(AcDbDatabase* database, const std::string& actual_name) {
    if (database != saving_ || actual_name == old_name_) {
        return;
    }
    saving_ = nullptr;
    run_at_boundary("Error after saving", [&] { copy_batch_settings(old_name_, actual_name); });
}

void start_omb_qorvane(const std::string& module_folder) {
    used = false;
    StartTsAcToolkit();
    theApp_instance = std::make_unique<cl_omb_qorvane_app>(module_folder);
    register_draw_classes();
    MyClass::rxInit();
    services = std::make_unique<MyHostAppServices>();
    acdbSetHostApplicationServices(services.get());
    add_commands(command_group, hand_added_commands());
    add_commands(command_group, command_table());
    add_commands(sample_group, sample_commands());
    add_reactors();
    add_option_commands();
    register_dcl_dialogs();
    theApp().refresh_document();
}

void stop_omb_qorvane() {
    acedRegCmds().removeGroup(command_group);
    acedRegCmds().removeGroup(sample_group);
    remove_option_commands();
    remove_reactors();
    services.reset();
    MyClass::rxRemove();
    theApp_instance.reset();
    StopTsAcToolkit();
    globals.clear();
    used = false;
}

std::uintptr_t first_use() {
    const bool first = !used;
    used = true;
    const std::uintptr_t window = adsw_acadMainWnd();
    if (first) {
        start_trace_from_environment("OMB_Qorvane");
        preset_globals(0);
        dc_set_trace_values();
    }
    if (window == 0) {
        OMB_TRACE(0, "%s", no_parent_window);
        if (first) { // a host without windows would hear it with every command
            acutPrintf(std::string("\n") + no_parent_window + "\n");
        }
    }
    return window;
}

const std::array<COMB_Qorvane::handler, 16> COMB_Qorvane::handlers{
    &COMB_Qorvane::On_ignored,       // kNullMsg
    &COMB_Qorvane::On_kInitAppMsg,   // kInitAppMsg
    &COMB_Qorvane::On_kUnloadAppMsg, // kUnloadAppMsg
    &COMB_Qorvane::On_kLoadDwgMsg,   // kLoadDwgMsg
    &COMB_Qorvane::On_ignored,       // kUnloadDwgMsg
    &COMB_Qorvane::On_ignored,       // kInvkSubrMsg
    &COMB_Qorvane::On_ignored,       // kCfgMsg
    &COMB_Qorvane::On_ignored,       // kEndMsg
    &COMB_Qorvane::On_ignored,       // kQuitMsg
    &COMB_Qorvane::On_ignored,       // kSaveMsg
    &COMB_Qorvane::On_ignored,       // kDependencyMsg
    &COMB_Qorvane::On_ignored,       // kNoDependencyMsg
    &COMB_Qorvane::On_ignored,       // kOleUnloadAppMsg
    &COMB_Qorvane::On_ignored,       // kPreQuitMsg
    &COMB_Qorvane::On_ignored,       // kInitDialogMsg
    &COMB_Qorvane::On_ignored,       // kEndDialogMsg
};

AcRx::AppRetCode COMB_Qorvane::message(AcRx::AppMsgCode code, void* data) {
    const auto index = static_cast<std::size_t>(code);
    return index < handlers.size() ? (this->*handlers[index])(data) : AcRx::kRetOK;
}

AcRx::AppRetCode COMB_Qorvane::On_ignored(void*) { return AcRx::kRetOK; }

AcRx::AppRetCode COMB_Qorvane::On_kInitAppMsg(void*) {
    start_omb_qorvane(own_module_folder());
    acutPrintf("\nOMB_Qorvane App Loaded.");
    return AcRx::kRetOK;
}

AcRx::AppRetCode COMB_Qorvane::On_kUnloadAppMsg(void*) {
    stop_omb_qorvane();
    return AcRx::kRetOK;
}

AcRx::AppRetCode COMB_Qorvane::On_kLoadDwgMsg(void*) {
    theApp().refresh_document();
    return AcRx::kRetOK;
}
