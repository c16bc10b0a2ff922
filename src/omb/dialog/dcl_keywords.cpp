#include "omb/dialog/dcl_keywords.h"

#include "omb/dialog/dialog_item.h"

#include <array>

namespace {

using record = cl_dialog_parameters;

constexpr cl_dcl_keyword control(std::string_view word, int kind, std::string_view name_part) {
    return {word, DCL_CONTROL, {}, 0, kind, name_part};
}
constexpr cl_dcl_keyword member(std::string_view word, std::int32_t record::*where) {
    return {word, DCL_INT_VARIABLE, where, 0, 0, {}};
}
constexpr cl_dcl_keyword member(std::string_view word, double record::*where) {
    return {word, DCL_DOUBLE_VARIABLE, where, 0, 0, {}};
}
constexpr cl_dcl_keyword member(std::string_view word, std::string record::*where) {
    return {word, DCL_STRING_VARIABLE, where, 0, 0, {}};
}
constexpr cl_dcl_keyword member(std::string_view word, cl_dialog_command_list record::*where) {
    return {word, DCL_COMMAND_VARIABLE, where, 0, 0, {}};
}

/// Rows with the same member are aliases. skip_if_not_global3, 4 and 5 share one, whereas those of
/// skip_if_global have one each: dialogs rely on it.
constexpr auto keywords = std::to_array<cl_dcl_keyword>({
    // controls
    control("check_box", kind_check_box, "cbox"),
    control("color_box", kind_color_box, "color"),
    control("column", kind_column, "col"),
    control("combo_box", kind_combo_box, "combo"),
    {"dialog", DCL_DIALOG, {}, 0, kind_dialog, "dlg"},
    control("edit_box", kind_edit_box, "edit"),
    control("group_column", kind_group_column, "col"),
    control("group_row", kind_group_row, "row"),
    control("image_box", kind_image_box, "image"),
    control("image_button", kind_image_button, "image"),
    control("INCLUDE", kind_include, ""),
    control("list_box", kind_list_box, "list"),
    control("push_button", kind_push_button, "button"),
    control("radio_button", kind_radio_button, "rad"),
    control("retirement_button", kind_retirement_button, "but"),
    control("row", kind_row, "row"),
    control("spacer", kind_spacer, "spacer"),
    control("text", kind_text, "text"),
    control("value_box", kind_value_box, "value_box"),
    control("window_box", kind_window_box, "win"),
    control("tab_ctrl", kind_tab_ctrl, "tab_ctrl"),
    control("color_button", kind_color_button, "color"),
    control("list_tree", kind_list_tree, "list_tree"),
    control("thumbnail_box", kind_thumbnail_box, "thumb"),
    control("list_tree_nochk", kind_list_tree_nochk, "list_tree_nochk"),
    control("button_row", kind_button_row, "button_row"),
    control("icon_button", kind_icon_button, "image"),
    control("slider", kind_slider, "slider"),
    control("selection_list_box", kind_selection_list_box, "selection_list_box"),
    control("date_box", kind_date_box, "date"),
    control("time_box", kind_time_box, "time"),
    control("text_button", kind_text_button, "but"),
    control("progress", kind_progress, "progress"),
    control("button_tab_control", kind_button_tab_control, "button_tab_ctrl"),
    control("richedit_box", kind_richedit_box, "richedit"),
    control("cmenu", kind_cmenu, "cmenu"),
    control("html_box", kind_html_box, "html"),
    // named integers
    {"true", DCL_CONSTANT, {}, 1, 0, {}},
    {"false", DCL_CONSTANT, {}, 0, 0, {}},
    // integers
    member("always_on_top", &record::always_on_top),
    member("autogrid", &record::autogrid),
    member("auto_select", &record::auto_select),
    member("begin_value", &record::begin_value),
    member("begin_radio", &record::begin_value),
    member("black_frame", &record::black_frame),
    member("colsel", &record::colsel),
    member("compact_path", &record::compact_path),
    member("decimal_places", &record::decimal_places),
    member("do_hide", &record::do_hide),
    member("distort", &record::distort),
    member("do_search", &record::do_search),
    member("edit", &record::edit),
    member("edit_max", &record::edit_max),
    member("fixed_location", &record::fixed_location),
    member("flyout", &record::flyout),
    member("font_size", &record::font_size),
    member("getvals", &record::getvals),
    member("has_subs", &record::has_subs),
    member("help_move_left", &record::help_move_left),
    member("help_next", &record::help_next),
    member("help_image_default_width", &record::help_image_default_width),
    member("help_image_width", &record::help_image_width),
    member("help_toolbar_position", &record::help_toolbar_position),
    member("skip_if_not_debug", &record::skip_if_not_debug),
    member("skip_if_not_omb", &record::skip_if_not_debug),
    member("skip_if_debug", &record::skip_if_debug),
    member("ignoremods", &record::ignoremods),
    member("image_pixels_x", &record::image_pixels_x),
    member("image_pixels_y", &record::image_pixels_y),
    member("is_cancel", &record::is_cancel),
    member("is_default", &record::is_default),
    member("is_enabled", &record::is_enabled),
    member("main_dialog", &record::main_dialog),
    member("status_dialog", &record::status_dialog),
    member("imargx", &record::imargx),
    member("margx", &record::margx),
    member("imargy", &record::imargy),
    member("margy", &record::margy),
    member("minimizable", &record::minimizable),
    member("modeless", &record::modeless),
    member("multi_line", &record::multi_line),
    member("multiple_select", &record::multiple_select),
    member("no_commas", &record::no_commas),
    member("nocommas", &record::no_commas),
    member("nocheck_val", &record::no_check_val),
    member("no_check_val", &record::no_check_val),
    member("nocolor_swap", &record::no_color_swap),
    member("no_color_swap", &record::no_color_swap),
    member("nodocumentation", &record::no_documentation),
    member("no_documentation", &record::no_documentation),
    member("noexec", &record::no_exec),
    member("no_exec", &record::no_exec),
    member("nogroup", &record::no_group),
    member("no_group", &record::no_group),
    member("nohelp", &record::no_help),
    member("no_help", &record::no_help),
    member("nonumber", &record::no_number),
    member("no_number", &record::no_number),
    member("noframe", &record::no_frame),
    member("no_frame", &record::no_frame),
    member("norelief", &record::no_relief),
    member("no_relief", &record::no_relief),
    member("nosizex", &record::no_sizex),
    member("no_sizex", &record::no_sizex),
    member("nosizey", &record::no_sizey),
    member("no_sizey", &record::no_sizey),
    member("nosort", &record::no_sort),
    member("no_sort", &record::no_sort),
    member("nowrap", &record::no_wrap),
    member("no_wrap", &record::no_wrap),
    member("nozero", &record::no_zero),
    member("no_zero", &record::no_zero),
    member("numval", &record::numval),
    member("orgx", &record::orgx),
    member("orgy", &record::orgy),
    member("owner_draw", &record::owner_draw),
    member("palette", &record::palette),
    member("parent_focus", &record::parent_focus),
    member("sub_dialog_scroll", &record::sub_dialog_scroll),
    member("password", &record::password),
    member("use_database_globals", &record::use_database_globals),
    member("use_option_globals", &record::use_option_globals),
    member("properties_dialog", &record::properties_dialog),
    member("read_only", &record::read_only),
    member("retire", &record::retire),
    member("reverse_image", &record::reverse_image),
    member("set_focus", &record::set_focus),
    member("show_alpha", &record::show_alpha),
    member("slider_bar_split_pos", &record::slider_bar_split_pos),
    member("slider_on_left", &record::slider_on_left),
    member("sliders", &record::sliders),
    member("tab_stop", &record::tab_stop),
    member("tackable", &record::tackable),
    member("tackexec", &record::tackexec),
    member("text_rot", &record::text_rot),
    member("thumbnail_width", &record::thumbnail_width),
    member("thumbnail_height", &record::thumbnail_height),
    member("tics", &record::tics),
    member("use_value_box", &record::use_value_box),
    member("sizeable_dialog", &record::sizeable_dialog),
    // floating-point numbers
    member("aspect", &record::aspect),
    member("bmp_width", &record::bmp_width),
    member("combo_height", &record::combo_height),
    member("control_pane_width", &record::control_pane_width),
    member("characters", &record::characters),
    member("height", &record::height),
    member("increment", &record::increment),
    member("increment2", &record::increment2),
    member("increment3", &record::increment3),
    member("increment4", &record::increment4),
    member("max_value", &record::max_value),
    member("min_value", &record::min_value),
    member("rounding", &record::rounding),
    member("sizeable_x", &record::sizeable_x),
    member("sizeable_y", &record::sizeable_y),
    member("moveable_x", &record::moveable_x),
    member("moveable_y", &record::moveable_y),
    member("slider_bar_width", &record::slider_bar_width),
    member("slider_bar_split_value", &record::slider_bar_split_value),
    member("slider_bar_max_value", &record::slider_bar_max_value),
    member("stretch", &record::stretch),
    member("width", &record::width),
    // texts
    member("align", &record::align),
    member("alignment", &record::align),
    member("cmenu_name", &record::cmenu_name),
    member("image_name", &record::image_name),
    member("class", &record::class_name),
    member("disable_if_global", &record::disable_if_global),
    member("disable_if_global2", &record::disable_if_global2),
    member("disable_if_global3", &record::disable_if_global3),
    member("disable_if_not_global", &record::disable_if_not_global),
    member("disable_if_not_global2", &record::disable_if_not_global2),
    member("disable_if_not_global3", &record::disable_if_not_global3),
    member("disable_if_radio0", &record::disable_if_radio0),
    member("disable_if_radio1", &record::disable_if_radio1),
    member("dlg_type", &record::dlg_type),
    member("global_variable", &record::global_variable),
    member("global", &record::global_variable),
    member("face_name", &record::face_name),
    member("finish_label", &record::finish_label),
    member("group_alignment", &record::group_alignment),
    member("help_additional", &record::help_additional),
    member("help_index", &record::help_index),
    member("help_key", &record::help_key),
    member("help_label", &record::help_label),
    member("help_image", &record::help_image),
    member("help_image_alignment", &record::help_image_alignment),
    member("help_id", &record::help_id),
    member("help_text", &record::help_text),
    member("help_tip", &record::help_tip),
    member("sid", &record::sid),
    member("id", &record::sid),
    member("include_if_global", &record::include_if_global),
    member("include_if_not_global", &record::include_if_not_global),
    member("skip_if_not_global", &record::skip_if_not_global),
    member("skip_if_not_global2", &record::skip_if_not_global2),
    member("skip_if_not_global3", &record::skip_if_not_global3),
    member("skip_if_not_global4", &record::skip_if_not_global3),
    member("skip_if_not_global5", &record::skip_if_not_global3),
    member("skip_if_global", &record::skip_if_global),
    member("skip_if_global2", &record::skip_if_global2),
    member("skip_if_global3", &record::skip_if_global3),
    member("skip_if_global4", &record::skip_if_global4),
    member("skip_if_global5", &record::skip_if_global5),
    member("increment_type", &record::increment_type),
    member("label", &record::label),
    member("list_box_values", &record::list_box_values),
    member("pane_dialog_global", &record::pane_dialog_global),
    member("sub_dialog_control", &record::sub_dialog_control),
    member("prefix", &record::prefix),
    member("database_global", &record::database_global),
    member("option_global", &record::option_global),
    member("option_non_database_global", &record::option_non_database_global),
    member("profile", &record::profile),
    member("rgb_link", &record::rgb_link),
    member("spec_fmt", &record::spec_fmt),
    member("tabs", &record::tabs),
    member("text_just", &record::text_just),
    member("text_background", &record::text_background),
    member("text_color", &record::text_color),
    member("text_scl", &record::text_scl),
    member("tool_tip", &record::tool_tip),
    member("value", &record::value),
    member("value_table_filter", &record::value_table_filter),
    member("format", &record::format),
    member("window", &record::window),
    // commands
    member("arrow_command", &record::arrow_command),
    member("cleanup_command", &record::cleanup_command),
    member("double_click_command", &record::double_click_command),
    member("edit_command", &record::edit_command),
    member("command", &record::command),
    member("cr_command", &record::cr_command),
    member("exit_command", &record::exit_command),
    member("finish_command", &record::finish_command),
    member("init_command", &record::init_command),
    member("list_box_hdr_command", &record::list_box_hdr_command),
    member("mouse_move_command", &record::mouse_move_command),
    member("post_init_command", &record::post_init_command),
    member("reset_command", &record::reset_command),
    member("right_click_command", &record::right_click_command),
    member("slider_end_command", &record::slider_end_command),
    member("tab_command", &record::tab_command),
    {"value_table", DCL_VALUE_TABLE, {}, 0, 0, {}},
});
static_assert(keywords.size() == dcl_keyword_count);

struct named_constant {
    std::string_view name;
    std::int32_t value;
};

constexpr auto constants = std::to_array<named_constant>({
    // length units
    {"FOOT", 0},
    {"INCH", 1},
    {"METER", 10},
    {"MM", 11},
    {"CM", 12},
    {"UNIT_DATABASE", 100},
    // area units
    {"SQFT", 0},
    {"SQIN", 1},
    {"SQMETER", 10},
    {"SQMM", 11},
    {"SQCM", 12},
    // data types
    {"DATA_TYPE_UNKNOWN", 0},
    {"DATA_TYPE_int", 1},
    {"DATA_TYPE_String", 2},
    {"DATA_TYPE_double", 3},
    {"DATA_TYPE_fpt", 4},
    {"DATA_TYPE_COLORREF", 5},
    // number output
    {"OUTPUT_DECIMAL", 0},
    {"OUTPUT_FRACTIONAL", 1},
    // marks
    {"MARKS_OFF", 0},
    {"MARKS_ON", 1},
    {"MARKS_BOTH", 2},
    {"MARKS_BOTH_WITH_DASH", 3},
    {"MARKS_WITH_DASH", 4},
    // overrides
    {"OVERRIDE_NONE", 0},
    {"OVERRIDE_ALL", 1},
    {"OVERRIDE_BYBLOCK", 2},
    // layers
    {"LAYERS_ALL", 0},
    {"LAYERS_ALL_OVERRIDE", 1},
    {"LAYERS_EDIT", 2},
    {"LAYERS_DISPLAY", 3},
    {"LAYERS_ONE", 4},
    {"LAYER_OFF", 0},
    {"LAYER_DISPLAY_AND_EDIT", 1},
    {"LAYER_DISPLAY_ONLY", 2},
    // levels
    {"LEVEL_0", 0},
    {"LEVEL_1", 1},
    {"LEVEL_2", 2},
    // input grid
    {"NO_INPUT_GRID", 0},
    {"INPUT_GRID_DOTTED_LINE", 1},
    {"INPUT_GRID_LINE", 2},
    {"INPUT_GRID_CORNERS", 3},
    {"INPUT_GRID_USE_ROUNDING", 0},
    {"INPUT_GRID_USE_SPACING_FACTOR", 1},
    // printing
    {"PRINT_ORIENTATION_NOT_SET", 0},
    {"PRINT_ORIENTATION_PORTRAIT", 1},
    {"PRINT_ORIENTATION_LANDSCAPE", 2},
});

constexpr std::string_view word_of(const cl_dcl_keyword& row) { return row.keyword; }
constexpr std::string_view word_of(const named_constant& row) { return row.name; }

/// Finds rows of a table by their word: open addressing, at most a quarter full. Every word of
/// every file is looked up here.
template <std::size_t Slots>
class word_index {
public:
    template <typename Rows>
    explicit constexpr word_index(const Rows& rows) {
        static_assert(Slots >= 4 * std::tuple_size_v<Rows> && (Slots & (Slots - 1)) == 0);
        for (std::size_t row = 0; row < rows.size(); ++row) {
            std::size_t slot = hash(word_of(rows[row]));
            while (slots[slot] != 0) {
                slot = (slot + 1) % Slots;
            }
            slots[slot] = static_cast<std::uint8_t>(row + 1);
        }
    }
    template <typename Rows>
    int find(const Rows& rows, std::string_view word) const {
        for (std::size_t slot = hash(word); slots[slot] != 0; slot = (slot + 1) % Slots) {
            if (word_of(rows[slots[slot] - 1U]) == word) {
                return slots[slot] - 1;
            }
        }
        return -1;
    }

private:
    /// Words differ in their ends; a few characters of both tell most of them apart.
    static constexpr std::size_t hash(std::string_view word) {
        std::uint32_t value = static_cast<std::uint32_t>(word.size());
        const std::size_t half = word.size() / 2;
        for (const std::size_t index :
             {std::size_t{0}, half, half + 1, word.size() - 3, word.size() - 2, word.size() - 1}) {
            const auto code = index < word.size() ? static_cast<unsigned char>(word[index]) : 0U;
            value = (value ^ code) * 16777619U;
        }
        return (value ^ (value >> 15)) % Slots;
    }

    std::array<std::uint8_t, Slots> slots{};
};
static_assert(keywords.size() < 255 && constants.size() < 255);

constexpr word_index<1024> keyword_index(keywords);
constexpr word_index<256> constant_index(constants);

/// For each row the first with its member; itself where it sets none.
std::array<std::uint8_t, dcl_keyword_count> find_first_aliases() {
    std::array<std::uint8_t, dcl_keyword_count> rows{};
    for (std::size_t row = 0; row < keywords.size(); ++row) {
        std::size_t first = keywords[row].member.index() != 0 ? 0 : row;
        while (keywords[first].member != keywords[row].member) {
            ++first;
        }
        rows[row] = static_cast<std::uint8_t>(first);
    }
    return rows;
}

} // namespace

std::span<const cl_dcl_keyword> dcl_keywords() { return keywords; }

int find_dcl_keyword(std::string_view word) { return keyword_index.find(keywords, word); }

int first_alias(int row) {
    static const std::array<std::uint8_t, dcl_keyword_count> rows = find_first_aliases();
    return rows.at(static_cast<std::size_t>(row));
}

std::optional<std::int32_t> find_dcl_constant(std::string_view name) {
    const int row = constant_index.find(constants, name);
    return row < 0 ? std::nullopt : std::optional(constants[static_cast<std::size_t>(row)].value);
}
