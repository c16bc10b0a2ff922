// What a render asks for, brought into the drawing's dictionary in memory, as the start dialog's
// OK would do it.
#pragma once

#include "apps/options.h"
#include "apps/views.h"

#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace apps {

struct PictureSize {
    int width = 1200;
    int height = 800;
};

/// The picture's file for one of the views: %n and %v replaced, "-view" added before the extension
/// when several views would meet in one name.
std::filesystem::path output_path(const Options& options, const std::string& drawing,
                                  const std::string& view_name);

/// The settings of one drawing's renders. What the drawing holds, and what the user's profile
/// holds beside the factory values, wins over the defaults of a picture, never over flags.
class RenderRequest {
public:
    /// Presets the settings and reads the drawing's own over them.
    RenderRequest(const Options& options, AcDbDatabase& database);

    /// As asked for; else as the settings say; else the default. Both even.
    PictureSize size() const;
    /// Stores the settings of one picture in the drawing's dictionary in memory, and the view in
    /// its active viewport. `image` may be empty (no picture).
    void store(const ResolvedView& view, const std::filesystem::path& image);

    /// Why the drawing's file cannot take settings, or "".
    static std::string why_not_savable(const AcDbDatabase& database);
    /// Writes the drawing with the settings of store() to its file, without what concerns a
    /// single picture (its name and folder). False with `error` in words.
    bool save(std::string& error);

private:
    void set_picture_defaults(const ResolvedView& view) const;
    void set_requested(const std::filesystem::path& image) const;
    bool is_own(const std::string& name) const { return own_.contains(name); }

    const Options& options_;
    AcDbDatabase& database_;
    std::set<std::string> stored_;           ///< names in the drawing's dictionary
    std::map<std::string, std::string> own_; ///< values of the drawing and the user, by name
};

} // namespace apps
