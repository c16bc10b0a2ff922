// `COMB_Qorvane`: the module as the host sees it: start, stop, commands, reactors.
#pragma once

#include "host/ed/document.h"
#include "host/ed/ed.h"
#include "host/rx/module.h"
#include "omb_qorvane/the_app.h"

#include <array>
#include <memory>

/// Keeps the render document with the host's current document.
class MyDocumentReactor : public AcApDocManagerReactor {
public:
    void documentBecameCurrent(AcApDocument* document) override;
    void documentToBeDestroyed(AcApDocument* document) override;
};

/// Follows the host's commands in the trace, and saves under new names.
class AsdkCommandReactor : public AcEditorReactor {
public:
    void commandFailed(const std::string& name) override;
    void beginSave(AcDbDatabase* database, const std::string& intended_name) override;
    void saveComplete(AcDbDatabase* database, const std::string& actual_name) override;

private:
    AcDbDatabase* saving_ = nullptr;
    std::string old_name_;
};

/// The application object. The host calls it by message number.
class COMB_Qorvane {
public:
    /// The answer to one of the messages 0 to 15.
    AcRx::AppRetCode message(AcRx::AppMsgCode code, void* data);

private:
    AcRx::AppRetCode On_kInitAppMsg(void* data);
    AcRx::AppRetCode On_kUnloadAppMsg(void* data);
    AcRx::AppRetCode On_kLoadDwgMsg(void* data);
    AcRx::AppRetCode On_ignored(void* data);

    using handler = AcRx::AppRetCode (COMB_Qorvane::*)(void*);
    static const std::array<handler, 16> handlers;
};

/// Makes theApp and the toolkit; adds commands, classes and reactors. What the module's load
/// does, for a program that links the add-on as well.
void start_omb_qorvane(const std::string& module_folder);
/// Takes all that away again.
void stop_omb_qorvane();

/// Every command's first step: the first one of a run presets the settings. The host's main window,
/// or 0; without one commands go on with none.
std::uintptr_t first_use();
