// `theApp`: the one application object of the module, made and taken away with it.
#pragma once

#include "omb_qorvane/named_dialogs.h"
#include "omb_qorvane/omb_export.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

/// Receives how far an extraction is, in entities. False asks it to stop.
using extraction_progress = std::function<bool(std::int64_t done, std::int64_t total)>;

/// A box that says what is being waited for.
class cl_progress_dialog {
public:
    virtual ~cl_progress_dialog() = default;
    virtual void show(const std::string& title, const std::string& text) = 0;
};

/// What is known of the view that a render starts from.
struct cl_ts_view {
    float fov_width = 0, fov_height = 0; ///< of the camera's field, in drawing units
    AcGePoint3d eye;
    AcGeVector3d direction, up;
    float pixel_width = 0, pixel_height = 0; ///< 0 when the host has no window
};

class cl_omb_qorvane_app {
public:
    explicit cl_omb_qorvane_app(const std::string& module_folder);

    /// Takes toolkit and document afresh. False without a current document.
    bool refresh_document();
    /// Shows the progress dialog, made when there is none and somebody can make one.
    void show_progress(const std::string& title, const std::string& text);

    CTsAcToolkit* tstoolkit = nullptr;
    CTsAcDoc* tsdoc = nullptr;      ///< of the current drawing
    std::string application_folder; ///< of the module
    std::string somb_support_folder;
    std::string batch_exe_folder;
    bool control_panel_used = false;
    int dialog_units = 1; ///< unit of lengths in dialogs: 1 inches, 11 metric
    cl_ts_view tsview;    ///< filled by get_view_from_drawing
    std::unique_ptr<cl_progress_dialog> progress_dialog; ///< null when none is up
    std::function<std::unique_ptr<cl_progress_dialog>()> make_progress_dialog; ///< may be empty
    std::map<std::string, named_dialog> named_dialogs; ///< see named_dialogs.h
    extraction_progress progress;                      ///< may be empty
    cl_omb_export omb_export;
};

/// Null before start_omb_qorvane and after stop_omb_qorvane.
extern std::unique_ptr<cl_omb_qorvane_app> theApp_instance;
inline cl_omb_qorvane_app& theApp() { return *theApp_instance; }

/// The folder of the module that holds this code.
std::string own_module_folder();
