// A control that shows a picture, see image_box.h.
#include "omb/dialog/image_box.h"

#include "omb/base/trace.h"
#include "omb/dialog/dialog_image.h"
#include "omb/dialog/dynamic_dialog.h"

#include <algorithm>
#include <cmath>

using platform::ControlEventKind;
using platform::WindowPicture;
using platform::WindowRect;
using platform::WindowSize;

namespace {

constexpr platform::WindowColor black = 0x000000, grey = 0x808080;
constexpr int chequer_side = 8; ///< pixels of the picture
constexpr std::uint8_t chequer_light = 255, chequer_dark = 204;

/// Stands in for the picture of a pop-up menu when the application has none: a small triangle.
platform::SharedPicture drop_down_picture() {
    static const platform::SharedPicture picture = [] {
        constexpr std::size_t side = 16, first_row = 6, rows = 5;
        WindowPicture drawn{static_cast<int>(side), static_cast<int>(side),
                            std::vector<std::uint8_t>(side * side * 4)};
        for (std::size_t row = 0; row < rows; ++row) {
            for (std::size_t x = 3 + row; x < side - 3 - row; ++x) {
                std::uint8_t* pixel = &drawn.rgba[((first_row + row) * side + x) * 4];
                pixel[0] = pixel[1] = pixel[2] = 96;
                pixel[3] = 255;
            }
        }
        return std::make_shared<const WindowPicture>(std::move(drawn));
    }();
    return picture;
}

void mirror(WindowPicture& picture) {
    const auto width = static_cast<std::size_t>(picture.width);
    for (std::size_t y = 0; y < static_cast<std::size_t>(picture.height); ++y) {
        std::uint8_t* line = &picture.rgba[y * width * 4];
        for (std::size_t x = 0; x < width / 2; ++x) {
            std::swap_ranges(line + x * 4, line + x * 4 + 4, line + (width - 1 - x) * 4);
        }
    }
}

/// Lays the picture over grey and white squares, which show where it is clear.
void lay_on_chequer(WindowPicture& picture) {
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            std::uint8_t* pixel =
                &picture
                     .rgba[(static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                            static_cast<std::size_t>(x)) *
                           4];
            const int under =
                (x / chequer_side + y / chequer_side) % 2 == 0 ? chequer_light : chequer_dark;
            for (std::size_t channel = 0; channel < 3; ++channel) {
                pixel[channel] = static_cast<std::uint8_t>(
                    (pixel[channel] * pixel[3] + under * (255 - pixel[3]) + 127) / 255);
            }
            pixel[3] = 255;
        }
    }
}

/// The part of an area of that size that a picture fills with its shape kept, in the middle.
WindowRect fit(WindowSize picture, const WindowRect& room) {
    const double scale = std::min(static_cast<double>(room.width) / picture.width,
                                  static_cast<double>(room.height) / picture.height);
    const int width = std::clamp(static_cast<int>(std::lround(picture.width * scale)), 1,
                                 std::max(room.width, 1));
    const int height = std::clamp(static_cast<int>(std::lround(picture.height * scale)), 1,
                                  std::max(room.height, 1));
    return {room.x + (room.width - width) / 2, room.y + (room.height - height) / 2, width, height};
}

} // namespace

cl_image_box::cl_image_box(int kind)
  : cl_dialog_item(kind) {}

std::string cl_image_box::wanted_image() const {
    if (is_bound_to_text()) {
        if (std::string name = bound_text(); !name.empty()) {
            return name;
        }
    }
    return image_name;
}

/// Looks for the picture of that name and prepares it for the screen.
void cl_image_box::load(cl_dynamic_dialog& dialog, const std::string& name) {
    was_asked = true;
    shown_name = name;
    shown.reset();
    source.reset();
    if (name.empty()) {
        if (kind == kind_cmenu) {
            shown_name = "dropdown.png";
            const std::string path = find_dialog_picture(shown_name, dialog.appl_name);
            shown = path.empty() ? nullptr : load_dialog_picture(path).picture;
            shown = shown ? shown : drop_down_picture();
        } else if (get_bound_global().empty() && label.empty()) {
            OMB_TRACE(1, "No image name: %s %s", dialog.name, sid);
        }
        return;
    }
    const std::string path = find_dialog_picture(name, dialog.appl_name);
    if (path.empty()) {
        OMB_TRACE(1, "Image not found: %s", name);
        return;
    }
    const cl_dialog_picture loaded = load_dialog_picture(path);
    if (!loaded.picture) {
        OMB_TRACE(1, "Could not load image: %s", path);
        OMB_TRACE(0, "%s: %s", path, loaded.error);
        return;
    }
    shown = source = loaded.picture;
    if (reverse_image != 0 || show_alpha != 0) {
        WindowPicture changed = *shown;
        if (reverse_image != 0) {
            mirror(changed);
        }
        if (show_alpha != 0) {
            lay_on_chequer(changed);
        }
        shown = std::make_shared<const WindowPicture>(std::move(changed));
    }
}

/// Hands the picture, or the name in its place, to the control.
void cl_image_box::show_loaded() {
    if (control == nullptr) {
        return;
    }
    if (is_picture_button()) {
        if (!paints_itself()) {
            control->set_picture(shown);
        }
        control->set_text(!label.empty() || shown ? label : shown_name);
    }
    control->repaint();
}

void cl_image_box::set_image(cl_dynamic_dialog& dialog, const std::string& name) {
    load(dialog, name);
    show_loaded();
}

WindowRect cl_image_box::picture_rect(WindowSize room) const {
    const WindowRect own = share_room(room).picture;
    const int edge = is_picture_button() ? 2 : has_frame() ? 1 : 0;
    WindowRect area{own.x + edge, own.y + edge, std::max(own.width - 2 * edge, 1),
                    std::max(own.height - 2 * edge, 1)};
    if (image_pixels_x > 0 && image_pixels_y > 0) {
        const int width = std::min(image_pixels_x, area.width);
        const int height = std::min(image_pixels_y, area.height);
        area = {area.x + (area.width - width) / 2, area.y + (area.height - height) / 2, width,
                height};
    }
    return distort != 0 || !shown ? area : fit({shown->width, shown->height}, area);
}

/// Buttons with more than a picture to show are painted here as well.
bool cl_image_box::paints_itself() const {
    return !is_picture_button() || distort != 0 || black_frame != 0 || image_pixels_x > 0 ||
           !label.empty();
}

/// Shares the control among picture and label: side by side where it is wide, else one above the
/// other.
cl_image_box::areas cl_image_box::share_room(WindowSize room) const {
    const WindowRect all{0, 0, room.width, room.height};
    if (label.empty() || !is_picture_button()) {
        return {all, {}};
    }
    if (!shown) {
        return {{}, all};
    }
    if (room.width >= 2 * room.height) {
        const int side = room.height;
        return {{0, 0, side, side}, {side, 0, room.width - side, room.height}};
    }
    const int line = std::min(line_height, room.height / 2);
    return {{0, 0, room.width, room.height - line}, {0, room.height - line, room.width, line}};
}

bool cl_image_box::create_control(cl_dynamic_dialog& dialog, const WindowRect& rect) {
    const bool is_button = is_picture_button(), is_surface = paints_itself();
    line_height = dialog.base_unit().height + 2;
    platform::ControlSpec spec = make_spec(
        dialog, is_surface ? platform::ControlKind::surface : platform::ControlKind::picture_button,
        rect);
    spec.framed = no_frame == 0 && no_relief == 0;
    if (!is_button) {
        spec.tab_stop = tab_stop != 0 && !arrow_command.empty();
    }
    if (add_control(dialog, spec) == nullptr) {
        OMB_TRACE(2, "%s",
                  kind == kind_cmenu ? "Cannot load cmenu_box control."
                                     : "Cannot load image_box control.");
        return false;
    }
    if (is_surface) {
        control->on_paint = [this](platform::Painter& painter) { paint(painter); };
    }
    set_image(dialog, wanted_image());
    return true;
}

void cl_image_box::paint(platform::Painter& painter) const {
    const WindowSize size = painter.size();
    const WindowRect all{0, 0, size.width, size.height};
    const areas shared = share_room(size);
    painter.fill(all, painter.background());
    if (shown) {
        painter.picture(picture_rect(size), *shown);
    }
    const bool is_beside = shared.label.x > 0;
    const std::string& text = label.empty() || !is_picture_button() ? shown_name : label;
    if (!shown || shared.label.width > 0) {
        const WindowRect place = shared.label.width > 0 ? shared.label : all;
        painter.text({place.x + 2, place.y, std::max(place.width - 4, 1), place.height}, text,
                     painter.text_color(),
                     is_beside ? platform::TextAlign::left : platform::TextAlign::center);
    }
    if (has_frame()) {
        painter.frame(all, black_frame != 0 ? black : grey);
    }
}

/// Whether the file of the picture has changed; an unchanged one costs next to nothing.
bool cl_image_box::is_written_anew(const cl_dynamic_dialog& dialog) const {
    if (!source) {
        return false;
    }
    const std::string path = find_dialog_picture(shown_name, dialog.appl_name);
    return path.empty() || load_dialog_picture(path).picture != source;
}

void cl_image_box::do_data_exchange(cl_dynamic_dialog& dialog, exchange_direction direction) {
    if (direction != exchange_direction::to_controls) {
        return;
    }
    const std::string name = wanted_image();
    const bool is_same = was_asked && (name == shown_name || (name.empty() && kind == kind_cmenu));
    if (!is_same || is_written_anew(dialog)) {
        load(dialog, name);
    }
    show_loaded();
}

bool cl_image_box::on_control_event(cl_dynamic_dialog& dialog,
                                    const platform::ControlEvent& event) {
    if (event.kind == ControlEventKind::arrow_key) {
        last_arrow = event.index;
    } else if (event.kind == ControlEventKind::hovered || event.kind == ControlEventKind::clicked ||
               event.kind == ControlEventKind::double_clicked ||
               event.kind == ControlEventKind::right_clicked) {
        last_at = event.at;
    }
    return cl_dialog_item::on_control_event(dialog, event);
}
