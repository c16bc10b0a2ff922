// The report block of the catalogue: page, logo, margin, font and light settings of printed
// reports. They have no effect on rendering. A remembered font size of zero reads as the default.
#include "omb/globals/catalogue.h"

namespace {

// clang-format off
constexpr catalogue_row reports_rows[] = {
    {"irpt_page_size", SAVE_PROFILE, "0"},
    {"brpt_page_landscape", SAVE_PROFILE, "0"},
    {"rrpt_page_width", OPTION_GLOBAL, "8.5"},
    {"rrpt_page_height", OPTION_GLOBAL, "11.0"},
    {"rrpt_margin_left", OPTION_GLOBAL, "0.5"},
    {"rrpt_margin_right", OPTION_GLOBAL, "0.5"},
    {"rrpt_margin_top", OPTION_GLOBAL, "0.5"},
    {"rrpt_margin_bottom", OPTION_GLOBAL, "0.5"},
    {"brpt_show_logo", OPTION_GLOBAL, "0"},
    {"srpt_logo_file", SAVE_PROFILE, ""},
    {"rrpt_logo_width", OPTION_GLOBAL, "1.5"},
    {"irpt_title_font_size", SAVE_PROFILE, "18", true},
    {"irpt_subtitle_font_size", SAVE_PROFILE, "14", true},
    {"irpt_heading_font_size", SAVE_PROFILE, "12", true},
    {"irpt_text_font_size", SAVE_PROFILE, "10", true},
    {"irpt_table_font_size", SAVE_PROFILE, "9", true},
    {"irpt_caption_font_size", SAVE_PROFILE, "8", true},
    {"irpt_label_font_size", SAVE_PROFILE, "8", true},
    {"irpt_header_font_size", SAVE_PROFILE, "8", true},
    {"irpt_footer_font_size", SAVE_PROFILE, "8", true},
};

constexpr catalogue_group report_groups[] = {
    {"Reports", reports_rows},
};
// clang-format on

} // namespace

std::span<const catalogue_group> report_catalogue() { return report_groups; }
