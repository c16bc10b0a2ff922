// A page of hypertext, see html_box.h.
#include "omb/dialog/html_box.h"

#include "omb/base/files.h"
#include "omb/base/folders.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb/dialog/dynamic_dialog.h"

namespace {

constexpr std::uint64_t largest_page = 4U << 20;

bool is_address(std::string_view page) {
    return page.starts_with("http://") || page.starts_with("https://");
}

std::string escaped(std::string text) {
    text = omb::replace_all(text, "&", "&amp;");
    text = omb::replace_all(text, "<", "&lt;");
    text = omb::replace_all(text, ">", "&gt;");
    return omb::replace_all(text, "\"", "&quot;");
}

/// The hypertext that stands for a page.
std::string hypertext(const std::string& page) {
    if (page.empty()) {
        return {};
    }
    if (is_address(page)) {
        return "<p><a href=\"" + escaped(page) + "\">" + escaped(page) + "</a></p>";
    }
    if (omb::trim(page).starts_with('<')) {
        return page;
    }
    std::string_view path = page;
    if (path.starts_with("file://")) {
        path.remove_prefix(7);
    }
    std::string content;
    const std::string file = native_separators(path);
    if (file.find('\n') == std::string::npos && file_exists(file)) {
        if (read_whole_file(file, content, largest_page)) {
            return content;
        }
        OMB_TRACE(1, "Cannot read the page: %s", file);
    }
    return "<p>" + escaped(page) + "</p>";
}

} // namespace

cl_html_box::cl_html_box(int kind)
  : cl_dialog_item(kind) {}

void cl_html_box::set_page(cl_dynamic_dialog&, const std::string& page) {
    shown_page = page;
    if (control != nullptr) {
        control->set_text(hypertext(page));
    }
}

bool cl_html_box::create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) {
    platform::ControlSpec spec =
        make_spec(dialog, platform::ControlKind::html, make_label(dialog, rect));
    spec.text.clear();
    if (add_control(dialog, spec) == nullptr) {
        OMB_TRACE(2, "Cannot load html control.");
        return false;
    }
    set_page(dialog, !shown_page.empty() ? shown_page : !value.empty() ? value : image_name);
    return true;
}

void cl_html_box::do_data_exchange(cl_dynamic_dialog& dialog, exchange_direction direction) {
    if (get_bound_global().empty() || direction != exchange_direction::to_controls) {
        return;
    }
    const std::string page = bound_text();
    if (page != shown_page && !page.empty()) {
        set_page(dialog, page);
    }
}

bool cl_html_box::on_control_event(cl_dynamic_dialog& dialog, const platform::ControlEvent& event) {
    if (event.kind == platform::ControlEventKind::clicked && is_address(shown_page)) {
        if (!window_system().open_address(shown_page)) {
            OMB_TRACE(1, "Cannot open the address: %s", shown_page);
        }
        return true;
    }
    return cl_dialog_item::on_control_event(dialog, event);
}
