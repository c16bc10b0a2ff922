// Named controls in the place of the includes that name them, see dialog_layout.h.
#include "omb/dialog/dcl_keywords.h"
#include "omb/dialog/dialog_layout_axis.h"
#include "omb/dialog/dynamic_dialog.h"

#include <algorithm>
#include <fmt/format.h>

namespace {

/// A file of a few lines could ask for any number of controls; this is far above what a window can
/// show, and bounds time, memory and the recursion of the passes.
constexpr int deepest_level = 256;
constexpr int most_steps = 20'000; ///< copied controls and applied definitions, of all includes
constexpr std::size_t most_errors = 100;

/// Lays the members that `nearer` has over those of `target`.
void overlay(cl_dialog_parameters& target, const cl_dialog_parameters& nearer) {
    const std::span<const cl_dcl_keyword> rows = dcl_keywords();
    for (std::size_t row = 0; row < rows.size(); ++row) {
        std::visit(
            [&](auto member) {
                if constexpr (!std::is_same_v<decltype(member), std::monostate>) {
                    if (nearer.given[row]) {
                        target.*member = nearer.*member;
                    }
                }
            },
            rows[row].member);
    }
    target.given |= nearer.given;
}

bool has_sid(const cl_dialog_parameters& item) {
    static const int row = first_alias(find_dcl_keyword("sid"));
    return row >= 0 && item.given[static_cast<std::size_t>(row)];
}

/// What the name of an unnamed control of that kind is made from.
std::string_view name_part_of(int kind) {
    const std::span<const cl_dcl_keyword> rows = dcl_keywords();
    const auto found = std::ranges::find_if(rows, [kind](const cl_dcl_keyword& row) {
        return row.token == DCL_CONTROL && row.kind == kind;
    });
    return found == rows.end() ? std::string_view{} : found->name_part;
}

int depth_of(const cl_dialog_item& item) {
    int depth = 0;
    for (const cl_dialog_item* parent = item.parent_item; parent != nullptr;
         parent = parent->parent_item) {
        ++depth;
    }
    return depth;
}

class include_resolver {
public:
    explicit include_resolver(cl_dcl_data& data)
      : data(data) {}

    std::vector<std::string> run() {
        resolve_children(data.root);
        return std::move(errors);
    }

private:
    using definition_chain = std::vector<const cl_dialog_include*>;

    void resolve(cl_dialog_item& item);
    void resolve_children(cl_dialog_item& parent);
    bool find_chain(const cl_dialog_item& item, definition_chain& chain);
    cl_dialog_item& replace(cl_dialog_item& item, const definition_chain& chain);
    void copy_children(const cl_dialog_item& from, cl_dialog_item& to);
    bool take_step(std::string_view name);
    void tell(std::string_view words, std::string_view name);

    cl_dcl_data& data;
    std::vector<std::string> errors;
    definition_chain open; ///< whose content is being copied, outermost first
    int steps = 0;
};

void include_resolver::tell(std::string_view words, std::string_view name) {
    if (errors.size() < most_errors) {
        errors.push_back(fmt::format("{}: {}", words, name));
    }
}

/// False when there were too many; told once.
bool include_resolver::take_step(std::string_view name) {
    if (steps == most_steps) {
        tell("Too many controls are included", name);
    }
    return ++steps <= most_steps;
}

/// The definitions that the item stands for: the one that it names, that one's base, and so on.
bool include_resolver::find_chain(const cl_dialog_item& item, definition_chain& chain) {
    std::string_view wanted = item.include.empty() ? item.name : item.include;
    for (;;) {
        if (!take_step(wanted)) {
            return false;
        }
        const cl_dialog_include* definition = data.find_definition(wanted);
        if (definition == nullptr || definition->control() == nullptr) {
            tell("Control to include not found", wanted);
            return false;
        }
        if (std::ranges::find(open, definition) != open.end() ||
            std::ranges::find(chain, definition) != chain.end()) {
            tell("Control includes itself", wanted);
            return false;
        }
        chain.push_back(definition);
        const cl_dialog_item& control = *definition->control();
        if (control.kind != kind_include) {
            return true;
        }
        wanted = control.include;
    }
}

/// Puts a record of the right class in the item's place; number, name and links stay.
cl_dialog_item& include_resolver::replace(cl_dialog_item& item, const definition_chain& chain) {
    const cl_dialog_item& base = *chain.back()->control();
    std::unique_ptr<cl_dialog_item> made = make_dialog_item(class_kind(base));
    made->kind = base.kind;
    static_cast<cl_dialog_parameters&>(*made) = base;
    made->value_table = base.value_table;
    const auto lay_over = [&made](const cl_dialog_item& nearer) {
        overlay(*made, nearer);
        if (!nearer.value_table.empty()) {
            made->value_table = nearer.value_table;
        }
    };
    std::for_each(chain.rbegin() + 1, chain.rend(),
                  [&](const cl_dialog_include* one) { lay_over(*one->control()); });
    lay_over(item);
    if (!has_sid(*made)) {
        made->sid = item.sid;
    }
    made->name = item.name;
    made->number = item.number;
    made->window_id = item.window_id;
    made->include = item.include;

    cl_dialog_item** link = &item.parent_item->first_child;
    while (*link != &item) {
        link = &(*link)->next_sibling;
    }
    *link = made.get();
    made->parent_item = item.parent_item;
    made->next_sibling = item.next_sibling;
    made->first_child = item.first_child;
    for (cl_dialog_item* child = made->first_child; child != nullptr; child = child->next_sibling) {
        child->parent_item = made.get();
    }
    std::unique_ptr<cl_dialog_item>& owner = data.controls[static_cast<std::size_t>(item.number)];
    owner = std::move(made);
    return *owner;
}

void include_resolver::copy_children(const cl_dialog_item& from, cl_dialog_item& to) {
    if (from.first_child != nullptr && depth_of(to) >= deepest_level) {
        tell("Included controls nest too deep", open.back()->name);
        return;
    }
    for (const cl_dialog_item* child = from.first_child; child != nullptr;
         child = child->next_sibling) {
        if (!take_step(open.back()->name)) {
            return;
        }
        const int kind = class_kind(*child);
        cl_dialog_item& copy = data.add_item(kind, child->name, name_part_of(kind), to);
        const std::string made_sid = copy.sid;
        static_cast<cl_dialog_parameters&>(copy) = *child;
        if (!has_sid(copy)) {
            copy.sid = made_sid;
        }
        copy.include = child->include;
        copy.value_table = child->value_table;
        const int number = copy.number;
        copy_children(*child, copy);
        resolve(*data.controls[static_cast<std::size_t>(number)]);
    }
}

/// Resolves an include with all that its definitions bring along; its own children have been.
void include_resolver::resolve(cl_dialog_item& item) {
    if (item.kind != kind_include) {
        return;
    }
    definition_chain chain;
    if (!find_chain(item, chain)) {
        return;
    }
    cl_dialog_item& made = replace(item, chain);
    const std::size_t outer = open.size();
    for (const cl_dialog_include* definition : chain) {
        open.push_back(definition);
        copy_children(*definition->control(), made);
    }
    open.resize(outer);
}

/// Own children stand ahead of the copied ones, and are numbered first.
void include_resolver::resolve_children(cl_dialog_item& parent) {
    for (cl_dialog_item *child = parent.first_child, *next = nullptr; child != nullptr;
         child = next) {
        next = child->next_sibling;
        resolve_children(*child);
        resolve(*child);
    }
}

bool is_any_button(const cl_dialog_item& item) {
    return item.is_button() || item.kind == kind_image_button || item.kind == kind_icon_button ||
           item.kind == kind_color_button;
}

void set_button_ids(cl_dcl_data& data) {
    for (const std::unique_ptr<cl_dialog_item>& item : data.controls) {
        if (is_any_button(*item) && (item->sid == "IDOK" || item->sid == "IDCANCEL")) {
            item->window_id = item->sid == "IDOK" ? dialog_ok : dialog_cancel;
        }
    }
}

} // namespace

std::vector<std::string> resolve_includes(cl_dcl_data& data) {
    data.open_stack.clear(); // its pointers would not outlive their records
    std::vector<std::string> errors = include_resolver(data).run();
    set_button_ids(data);
    return errors;
}
