// A window with a control of every kind.
#include "tests/platform/window/qt_every_kind.h"

#include <cmath>

namespace qt_test {

using namespace platform;

SharedPicture test_picture(int width, int height, int hue) {
    auto picture = std::make_shared<WindowPicture>();
    picture->width = width;
    picture->height = height;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double u = 2.0 * x / width - 1, v = 2.0 * y / height - 1;
            const double shade = 1 - 0.6 * std::hypot(u + 0.3, v + 0.3);
            const bool inside = u * u + v * v < 0.9;
            for (int i = 0; i < 3; ++i) {
                const double color = 120 + 110 * std::cos((hue + 120 * i) * 3.14159 / 180);
                picture->rgba.push_back(
                    static_cast<std::uint8_t>(std::fmax(0, std::fmin(255, color * shade))));
            }
            picture->rgba.push_back(inside ? 255 : 0);
        }
    }
    return picture;
}

std::vector<ListRow> rows_of(const std::vector<std::vector<std::string>>& cells) {
    std::vector<ListRow> rows;
    for (const std::vector<std::string>& texts : cells) {
        ListRow& row = rows.emplace_back();
        row.text = texts.front();
        row.columns.assign(texts.begin() + 1, texts.end());
    }
    return rows;
}

EveryKind::EveryKind(WindowSystem& system) {
    WindowSpec spec;
    spec.name = "every_kind";
    spec.title = "Sun and sky";
    unit_ = system.base_unit({});
    spec.size = {360 * unit_.width / 4, 290 * unit_.height / 8};
    spec.resizable = true;
    window = system.make_window(spec);
    add_buttons();
    add_fields();
    add_lists();
    add_pictures();
    add_page(system);
}

Control* EveryKind::add(ControlKind kind, const std::string& name, const std::string& text,
                        const WindowRect& rect) {
    ControlSpec spec = std::move(next_);
    next_ = {};
    spec.kind = kind;
    spec.name = name;
    spec.text = text;
    spec.rect = {rect.x * unit_.width / 4, rect.y * unit_.height / 8, rect.width * unit_.width / 4,
                 rect.height * unit_.height / 8};
    return controls[name] = window->add_control(spec);
}

void EveryKind::add_buttons() {
    add(ControlKind::group_frame, "frame", "&Light", {6, 4, 110, 62});
    add(ControlKind::check_box, "check", "&Cast shadows", {12, 14, 98, 10})->set_checked(true);
    next_.begins_group = true;
    add(ControlKind::radio_button, "radio_sun", "&Sun and sky", {12, 26, 98, 10})
        ->set_checked(true);
    add(ControlKind::radio_button, "radio_sky", "Overcast s&ky", {12, 37, 98, 10});
    next_.enabled = false;
    add(ControlKind::radio_button, "radio_none", "&None", {12, 48, 98, 10});
    next_.is_default = true;
    add(ControlKind::push_button, "ok", "OK", {192, 268, 50, 14});
    next_.is_cancel = true;
    add(ControlKind::push_button, "cancel", "Cancel", {246, 268, 50, 14});
    next_.enabled = false;
    add(ControlKind::push_button, "apply", "&Apply", {300, 268, 50, 14});
}

void EveryKind::add_fields() {
    add(ControlKind::label, "edit_label", "&Project:", {122, 6, 40, 13});
    add(ControlKind::edit, "edit", "Villa Ökonom", {162, 6, 76, 13});
    add(ControlKind::label, "combo_label", "&Material:", {122, 22, 40, 13});
    next_.editable = true;
    Control* combo = add(ControlKind::combo_box, "combo", "", {162, 22, 76, 13});
    combo->set_rows(rows_of({{"Brick"}, {"Concrete"}, {"Glass"}}));
    combo->select({1});
    Control* list = add(ControlKind::combo_box, "choice", "", {162, 38, 76, 13});
    list->set_rows(rows_of({{"Draft"}, {"Good"}, {"Best"}}));
    list->select({0});
    add(ControlKind::label, "value_label", "&Intensity:", {122, 54, 40, 13});
    next_.align = TextAlign::right;
    add(ControlKind::edit, "value", "1,250.5", {162, 54, 40, 13});
    add(ControlKind::spinner, "spinner", "", {203, 54, 8, 13});
    add(ControlKind::slider, "slider", "", {212, 54, 40, 13})->set_value(40);
    next_.ticks = 10;
    add(ControlKind::slider, "ticks", "", {122, 70, 116, 15})->set_value(70);
    Control* date = add(ControlKind::date, "date", "", {122, 88, 60, 14});
    date->set_date_time({2026, 6, 21, 0, 0, 0});
    add(ControlKind::time, "time", "", {186, 88, 52, 14})->set_date_time({2026, 6, 21, 14, 30, 0});
    next_.password = true;
    add(ControlKind::edit, "password", "secret", {12, 70, 60, 13});
    next_.enabled = false;
    add(ControlKind::edit, "disabled", "Disabled", {76, 70, 40, 13});
    add(ControlKind::progress, "progress", "", {12, 88, 104, 10})->set_value(62);
    next_.multi_line = true;
    add(ControlKind::edit, "notes", "Two lines\nof notes", {258, 6, 94, 46});
    add(ControlKind::label, "wrapped",
        "A longer text that tells what the setting does; it wraps within the room that it has.",
        {258, 56, 94, 34});
}

void EveryKind::add_lists() {
    next_.show_header = true;
    Control* list = add(ControlKind::list_box, "list", "", {6, 106, 110, 64});
    list->set_rows(rows_of({{"Layer", "Material", "Faces"},
                            {"A-WALL", "Brick red", "1200"},
                            {"A-ROOF", "Slate", "340"},
                            {"A-GLAZ", "Clear glass", "96"}}));
    list->select({2});
    Control* checks = add(ControlKind::check_list, "checks", "", {122, 106, 60, 64});
    std::vector<ListRow> kinds = rows_of({{"Plants"}, {"People"}, {"Cars"}});
    kinds[0].checked = true;
    checks->set_rows(kinds);
    next_.check_marks = true;
    Control* tree = add(ControlKind::tree, "tree", "", {188, 106, 76, 64});
    tree->set_tree({{"Building", 0, true}, {"Walls", 1, true}, {"Roof", 1}, {"Site", 0, false}});
    tree->select({1});
    next_.thumbnail = {48, 48};
    Control* thumbnails = add(ControlKind::thumbnails, "thumbnails", "", {270, 106, 84, 64});
    std::vector<ListRow> rows = rows_of({{"Sky 1"}, {"Sky 2"}, {"Sky 3"}, {"Sky 4"}, {"Sky 5"}});
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].picture = test_picture(120, 90, 70 * static_cast<int>(i));
    }
    thumbnails->set_rows(rows);
    thumbnails->select({1});
}

void EveryKind::add_pictures() {
    add(ControlKind::picture_button, "picture", "", {270, 176, 40, 30})
        ->set_picture(test_picture(300, 200, 200));
    Control* down = add(ControlKind::picture_button, "down", "", {314, 176, 40, 30});
    down->set_picture(test_picture(64, 64, 30));
    down->set_pressed(true);
    Control* surface = add(ControlKind::surface, "surface", "", {270, 210, 84, 16});
    surface->on_paint = [](Painter& painter) {
        const WindowSize size = painter.size();
        painter.fill({0, 0, size.width, size.height}, 0x3060c0);
        painter.frame({0, 0, size.width, size.height}, painter.text_color());
        painter.text({4, 0, size.width - 8, size.height}, "Incandescent", 0xffffff,
                     TextAlign::center);
    };
    add(ControlKind::rich_text, "rich", "<b>Rich</b> text with <i>words</i> in it",
        {270, 230, 84, 16});
    add(ControlKind::html, "html",
        "<h4>Help</h4><p>See the <a href=\"https://qorvane.org\">"
        "pages</a>.</p>",
        {6, 176, 70, 84});
}

void EveryKind::add_page(WindowSystem& system) {
    Control* tabs = add(ControlKind::tabs, "tabs", "", {80, 176, 184, 84});
    tabs->set_rows(rows_of({{"&Sun"}, {"S&ky"}, {"&Background"}, {"Location"}, {"North"}}));
    const WindowRect room = tabs->page_rect();
    WindowSpec spec;
    spec.name = "page";
    spec.size = {room.width, room.height};
    spec.owner = window.get();
    spec.embedded = true;
    page = system.make_window(spec);
    page->set_place({room.x, room.y});
    page->show();
    ControlSpec label;
    label.text = "&Turbidity:";
    label.rect = {8, 8, 80, 22};
    page->add_control(label);
    ControlSpec edit;
    edit.kind = ControlKind::edit;
    edit.name = "turbidity";
    edit.text = "2.5";
    edit.rect = {92, 8, 80, 22};
    controls["turbidity"] = page->add_control(edit);
}

} // namespace qt_test
