// The window system without a display.
#include "platform/window/headless.h"

#include "platform/window/event_script.h"
#include "platform/window/headless_window.h"

#include <charconv>
#include <fmt/format.h>

namespace platform {

namespace {

constexpr int character_width = 6, character_height = 13;
constexpr WindowSize host_size{1024, 768};

int number_of(std::string_view text, int base = 10) {
    int number = -1;
    std::from_chars(text.data(), text.data() + text.size(), number, base);
    return number;
}

/// Characters of UTF-8 text: bytes that do not continue one.
int character_count(std::string_view text) {
    int count = 0;
    for (const char byte : text) {
        count += (static_cast<unsigned char>(byte) & 0xc0) != 0x80 ? 1 : 0;
    }
    return count;
}

} // namespace

HeadlessWindowSystem::HeadlessWindowSystem() {
    is_recording = true;
    have_main_window(true);
}

HeadlessWindowSystem::~HeadlessWindowSystem() = default;

void HeadlessWindowSystem::record(std::string line) { lines.push_back(std::move(line)); }

void HeadlessWindowSystem::note(std::string_view text) { record(fmt::format("* {}", text)); }

void HeadlessWindowSystem::have_main_window(bool there) {
    WindowSpec spec;
    spec.name = "main";
    spec.size = host_size;
    host_window = there ? std::make_unique<HeadlessWindow>(*this, spec, true) : nullptr;
}

Window* HeadlessWindowSystem::main_window() { return host_window.get(); }

std::unique_ptr<Window> HeadlessWindowSystem::make_window(const WindowSpec& spec) {
    return std::make_unique<HeadlessWindow>(*this, spec);
}

int HeadlessWindowSystem::text_width(const WindowFont&, std::string_view text) {
    return character_width * character_count(text);
}

WindowSize HeadlessWindowSystem::base_unit(const WindowFont&) {
    return {character_width, character_height};
}

WindowRect HeadlessWindowSystem::work_area(WindowPoint) { return screen; }

std::string HeadlessWindowSystem::take_answer() {
    if (answers.empty()) {
        return {};
    }
    std::string answer = std::move(answers.front());
    answers.pop_front();
    return answer;
}

int HeadlessWindowSystem::message_box(const MessageQuestion& question, Window*) {
    int answer = safe_answer(question.type);
    if (!answers.empty()) {
        const std::string given = take_answer();
        if (given == "more" && question.on_more) {
            question.on_more();
        } else if (const int number = number_of(given); number > 0) {
            answer = number;
        }
    }
    record(fmt::format("message_box {} {} type {} -> {}", quoted_text(question.title),
                       quoted_text(question.text), question.type & 0xf, answer));
    return answer;
}

std::optional<std::string> HeadlessWindowSystem::choose_file(const FileQuestion& question,
                                                             Window*) {
    const std::string answer = take_answer();
    record(fmt::format("choose_file {} {} -> {}", quoted_text(question.title),
                       quoted_text(question.start), quoted_text(answer)));
    return answer.empty() ? std::nullopt : std::optional(answer);
}

std::optional<std::string> HeadlessWindowSystem::choose_folder(const std::string& title,
                                                               const std::string& start, Window*) {
    const std::string answer = take_answer();
    record(fmt::format("choose_folder {} {} -> {}", quoted_text(title), quoted_text(start),
                       quoted_text(answer)));
    return answer.empty() ? std::nullopt : std::optional(answer);
}

std::optional<WindowColor> HeadlessWindowSystem::choose_color(const std::string& title,
                                                              WindowColor color, Window*) {
    const std::string answer = take_answer();
    record(fmt::format("choose_color {} {:06x} -> {}", quoted_text(title), color, answer));
    if (answer.size() != 7 || answer.front() != '#') {
        return std::nullopt;
    }
    const auto rgb = static_cast<unsigned>(number_of(std::string_view(answer).substr(1), 16));
    return (rgb & 0xff) << 16 | (rgb & 0xff00) | (rgb >> 16 & 0xff);
}

int HeadlessWindowSystem::pop_up_menu(const std::vector<MenuRow>& rows, WindowPoint, Window*) {
    const std::string answer = take_answer();
    int index = answer.empty() ? -1 : number_of(answer);
    const bool can_be_chosen = index >= 0 && index < static_cast<int>(rows.size()) &&
                               rows[static_cast<std::size_t>(index)].enabled;
    if (!can_be_chosen) {
        index = -1;
    }
    std::string texts;
    for (const MenuRow& row : rows) {
        texts += ' ' + quoted_text(row.text);
    }
    record(fmt::format("menu{} -> {}", texts, index));
    return index;
}

bool HeadlessWindowSystem::open_address(const std::string& address) {
    record(fmt::format("open {}", quoted_text(address)));
    return true;
}

int HeadlessWindowSystem::start_timer(int, std::function<void()> work) {
    timers[next_timer] = std::move(work);
    return next_timer++;
}

void HeadlessWindowSystem::stop_timer(int timer) { timers.erase(timer); }

void HeadlessWindowSystem::fire_timers() {
    std::vector<int> due;
    for (const auto& [timer, work] : timers) {
        due.push_back(timer);
    }
    for (const int timer : due) {
        if (const auto found = timers.find(timer); found != timers.end()) {
            const auto work = found->second;
            ++event_depth;
            work();
            --event_depth;
        }
    }
    run_later();
}

void HeadlessWindowSystem::later(std::function<void()> work) { waiting.push_back(std::move(work)); }

void HeadlessWindowSystem::run_later() {
    while (event_depth == 0 && !waiting.empty()) {
        const auto work = std::move(waiting.front());
        waiting.pop_front();
        work();
    }
}

void HeadlessWindowSystem::process_events() { run_later(); }

void HeadlessWindowSystem::run_until_closed() {
    const auto is_any_shown = [this] {
        for (const HeadlessWindow* window : open_windows) {
            if (window->is_visible()) {
                return true;
            }
        }
        return false;
    };
    run_later();
    while (is_any_shown() && play_next()) {
        run_later();
    }
    run_later();
}

void HeadlessWindowSystem::set_script(std::vector<std::string> script_lines) {
    script.assign(script_lines.begin(), script_lines.end());
}

bool HeadlessWindowSystem::play_next() {
    if (script.empty()) {
        return false;
    }
    const std::string line = std::move(script.front());
    script.pop_front();
    play(line);
    return true;
}

std::vector<Window*> HeadlessWindowSystem::windows() const {
    return {open_windows.begin(), open_windows.end()};
}

bool HeadlessWindowSystem::play(std::string_view line) {
    ScriptEvent event;
    if (!parse_script_line(line, event)) {
        return true;
    }
    record(fmt::format("> {}", line));
    const bool done = play_script_event(event, open_windows, answers);
    if (!done) {
        record(fmt::format("! cannot be done: {}", line));
    }
    run_later();
    return done;
}

} // namespace platform
