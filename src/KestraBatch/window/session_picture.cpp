// Renders and opened files as the window sees them.
#include "KestraBatch/window/session_picture.h"

#include "KestraBatch/saved_picture.h"
#include "omb/globals/globals.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace KestraBatch {

namespace {

struct PhaseRow {
    SessionState state;
    const char* phase; ///< as programs that follow the run know it
};

constexpr std::array<PhaseRow, 4> phases{{{SessionState::reading, "reading"},
                                          {SessionState::building, "building"},
                                          {SessionState::rendering, "rendering"},
                                          {SessionState::paused, "rendering"}}};

std::string_view phase_of(SessionState state) {
    for (const PhaseRow& row : phases) {
        if (row.state == state) {
            return row.phase;
        }
    }
    return {};
}

/// "name; value" with the title that people know.
SettingLine setting_line(const std::string& line) {
    SettingLine setting;
    const std::size_t end = std::min(line.find(';'), line.size());
    setting.name = line.substr(0, end);
    setting.value = line.substr(std::min(line.find_first_not_of("; ", end), line.size()));
    setting.title = get_global_title(setting.name);
    return setting;
}

} // namespace

SessionPicture::SessionPicture(const std::filesystem::path& params_file,
                               const std::string& program_version, int threads,
                               cl_batch_output& out)
  : session_(params_file, program_version, threads)
  , progress_(out) {
    session_.show_drafts();
    progress_.start(program_version);
}

void SessionPicture::start() {
    phase_.clear();
    told_warnings_ = 0;
    session_.start();
}

SessionStatus SessionPicture::status() {
    SessionStatus status = session_.status();
    const std::string_view phase = phase_of(status.state);
    if (!phase.empty() && phase != phase_) {
        phase_ = phase;
        progress_.phase(phase_);
    }
    if (status.state == SessionState::rendering) {
        progress_.progress(phase_, status.fraction, status.pass, status.passes);
    }
    for (; told_warnings_ < status.warnings.size(); ++told_warnings_) {
        progress_.warning(status.warnings[told_warnings_]);
    }
    const std::lock_guard lock(saved_mutex_);
    for (; told_saved_ < saved_.size(); ++told_saved_) {
        progress_.image(saved_[told_saved_]);
    }
    return status;
}

bool SessionPicture::take_picture(std::uint64_t& known, renderer::ChannelFilm& picture) const {
    return session_.take_picture(known, picture);
}

PictureFacts SessionPicture::facts() {
    const RenderJob& job = session_.job();
    const Parameters& params = session_.parameters();
    PictureFacts facts;
    facts.title = params.model_name;
    facts.width = job.settings.width;
    facts.height = job.settings.height;
    facts.tone = job.tone;
    facts.outputs = job.outputs;
    const std::filesystem::path model = params.model_path;
    facts.folder = !job.outputs.empty()      ? job.outputs.front().parent_path()
                   : model.has_parent_path() ? model.parent_path()
                                             : params.folder;
    for (const std::string& line : session_.changed_settings()) {
        facts.settings.push_back(setting_line(line));
    }
    return facts;
}

ChannelChoice SessionPicture::channel_choice(std::size_t,
                                             const renderer::LightChannel& channel) const {
    return read_channel_from_globals(channel.number);
}

bool SessionPicture::save(const std::filesystem::path& path,
                          const renderer::ChannelWeights& weights,
                          const renderer::ToneSettings& tone, std::string& error) {
    const bool good = session_.save(path, weights, tone, error);
    const std::lock_guard lock(saved_mutex_);
    save_problem_ = good ? "" : error;
    if (!good) {
        return false;
    }
    const std::string name = path.string();
    if (std::find(saved_.begin(), saved_.end(), name) == saved_.end()) {
        saved_.push_back(name);
    }
    return true;
}

bool SessionPicture::keep_settings(const renderer::ToneSettings& tone,
                                   const std::vector<ChannelChoice>& channels, std::string& error) {
    write_tone_to_globals(tone);
    write_channels_to_globals(channels);
    return hand_settings_back(session_.parameters(), error);
}

int SessionPicture::end(int window_code) {
    const SessionStatus last = status();
    ExitCode code = static_cast<ExitCode>(window_code);
    std::string problem = window_code == 0 ? "" : "stopped as asked";
    if (last.state == SessionState::failed && window_code == 0) {
        code = last.code == ExitCode::done ? ExitCode::failed : last.code;
        problem = last.problem;
    }
    const std::lock_guard lock(saved_mutex_);
    if (window_code != 0 && !save_problem_.empty()) { // nobody was there to choose another name
        code = ExitCode::output_unwritable;
        problem = save_problem_;
    }
    progress_.end(code, problem, saved_);
    return static_cast<int>(code);
}

FilePicture::FilePicture(const std::filesystem::path& path)
  : path_(path) {
    std::string error;
    if (!open_saved_picture(path, image_, error)) {
        throw std::runtime_error(error);
    }
}

SessionStatus FilePicture::status() {
    SessionStatus status;
    status.state = SessionState::finished;
    status.picture = 1;
    status.fraction = 1;
    return status;
}

bool FilePicture::take_picture(std::uint64_t& known, renderer::ChannelFilm& picture) const {
    if (known >= 1) {
        return false;
    }
    known = 1;
    picture = image_.picture;
    return true;
}

PictureFacts FilePicture::facts() {
    PictureFacts facts;
    facts.title = path_.filename().string();
    facts.width = image_.picture.film.width;
    facts.height = image_.picture.film.height;
    facts.tone = image_.tone;
    facts.outputs = {path_};
    facts.folder = path_.parent_path();
    for (const auto& [name, value] : image_.metadata) {
        facts.settings.push_back({name, name, value});
    }
    return facts;
}

ChannelChoice FilePicture::channel_choice(std::size_t index, const renderer::LightChannel&) const {
    return choice_of_weight(index < image_.weights.size() ? image_.weights[index] : 1.0f);
}

bool FilePicture::save(const std::filesystem::path& path, const renderer::ChannelWeights& weights,
                       const renderer::ToneSettings& tone, std::string& error) {
    renderer::QorImage changed = image_;
    changed.weights = weights;
    changed.tone = tone;
    renderer::ImageFileOptions options;
    options.metadata = image_.metadata;
    return save_picture(path, changed, options, error);
}

bool FilePicture::keep_settings(const renderer::ToneSettings&, const std::vector<ChannelChoice>&,
                                std::string& error) {
    error = "a picture from a file has no drawing to keep its settings for";
    return false;
}

} // namespace KestraBatch
