// Texts of records.
#include "omb_qorvane/record_text.h"

#include "omb/base/trace.h"

#include <array>
#include <ctime>
#include <fmt/format.h>

std::string record_name(std::string_view name) {
    std::string out(name);
    if (out.find_first_of("\r\n") == std::string::npos) {
        return out;
    }
    for (char& c : out) {
        if (c == '\r' || c == '\n') {
            c = ' ';
        }
    }
    OMB_TRACE(1, "A name with a line break is written with blanks: %s", out);
    return out;
}

std::string color_index_key(int index) { return fmt::format("COL:{}", index); }

std::string true_color_key(std::uint32_t rgb) {
    return fmt::format("RGB:({},{},{})", rgb >> 16 & 0xff, rgb >> 8 & 0xff, rgb & 0xff);
}

std::string layer_key(std::string_view layer) { return fmt::format("LAY:{}", layer); }

std::string stream_time_text(std::int64_t seconds_since_epoch) {
    static constexpr std::array<const char*, 7> days{"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                     "Thursday", "Friday", "Saturday"};
    static constexpr std::array<const char*, 12> months{
        "January", "February", "March",     "April",   "May",      "June",
        "July",    "August",   "September", "October", "November", "December"};
    const auto time = static_cast<std::time_t>(seconds_since_epoch);
    std::tm tm{};
    if (localtime_r(&time, &tm) == nullptr) {
        return {};
    }
    const int hour = tm.tm_hour % 12 == 0 ? 12 : tm.tm_hour % 12;
    return fmt::format("{}, {} {:02}, {}, {:02}:{:02}:{:02} {}",
                       days[static_cast<std::size_t>(tm.tm_wday)],
                       months[static_cast<std::size_t>(tm.tm_mon)], tm.tm_mday, tm.tm_year + 1900,
                       hour, tm.tm_min, tm.tm_sec, tm.tm_hour < 12 ? "AM" : "PM");
}
