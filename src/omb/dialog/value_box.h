// A field for a number, with small arrows that step it and a track that slides it.
#pragma once

#include "omb/dialog/dialog_item.h"

#include <span>

/// The track of a value box. An unsplit one has the values themselves as its places. On a split
/// one places run from 0 to 100, and those up to `split_pos` belong to the values up to
/// `split_value`.
struct cl_value_track {
    static constexpr double length = 100;
    double least = 0, most = 100;
    int split_pos = 0; ///< 0: the track is not split
    double split_value = 0;

    bool is_split() const { return split_pos > 0 && split_pos < length; }
    double value_at(double place) const;
    double place_of(double value) const; ///< of a value beyond the track the nearer end
};

/// The arrows behind the field: one pair for each of up to four increments.
struct cl_value_box_updown {
    platform::Control* control = nullptr;
    double increment = 1;
};

class cl_value_box : public cl_dialog_item {
public:
    static constexpr int most_arrows = 4;
    explicit cl_value_box(int kind = kind_value_box);

    bool is_integer() const; ///< by the first letter of the format
    /// The number shown. For an integer global the format must be one of integers, otherwise that
    /// is told and the number rounded.
    double get_item_value(std::string_view global) const;

    std::string get_item_text() const override;
    void set_item_text(const std::string& text) override;
    std::int32_t get_item_int() const override;
    double get_item_double() const override;
    void set_item_int(std::int32_t value) override;
    void set_item_double(double value) override;
    bool create_control(cl_dynamic_dialog& dialog, const platform::WindowRect& rect) override;
    void do_data_exchange(cl_dynamic_dialog& dialog, exchange_direction direction) override;
    bool on_control_event(cl_dynamic_dialog& dialog, const platform::ControlEvent& event) override;
    void move_control(const platform::WindowRect& rect) override;
    void show_control(bool visible) override;
    void enable_control(bool enabled) override;
    void forget_control() override;

    double rounded(double value) const; ///< to a multiple of the record's `rounding`
    /// Within the record's limits; a whole number in a field of those.
    double limited(double value) const;
    /// Step of the arrows of that number, from 0.
    double step_of(int arrows) const;
    cl_value_track track() const;

    platform::Control* slider = nullptr;
    std::vector<cl_value_box_updown> arrows;

private:
    /// Where the parts lie.
    struct places {
        platform::WindowRect field, slider;
        std::vector<platform::WindowRect> arrows;
    };
    places place_parts(platform::WindowRect room) const;
    int arrow_count() const;
    platform::Control* add_part(cl_dynamic_dialog& dialog, platform::ControlKind part_kind,
                                const platform::WindowRect& rect, const std::string& suffix);
    void listen(cl_dynamic_dialog& dialog, platform::Control& part, int number);
    bool on_arrows(cl_dynamic_dialog& dialog, std::size_t number,
                   const platform::ControlEvent& event);
    bool on_slider(cl_dynamic_dialog& dialog, const platform::ControlEvent& event);
    bool on_changed(cl_dynamic_dialog& dialog);
    void step(cl_dynamic_dialog& dialog, double amount);
    void normalise();
    void write_back();
    void show_number(double value);
    void show_text(std::string text, double value);
    void show_on_track(double value);
    void read_field() const;

    mutable std::string last_shown; ///< what the field held when `last_value` was taken from it
    mutable double last_value = 0;
    mutable bool is_typed = false;     ///< the user gave it
    platform::WindowSize units{6, 13}; ///< base unit of the dialog
    static constexpr int field_part = -1, slider_part = -2;
    int event_part = field_part; ///< what the event at hand comes from; else the arrows' number
    int changing = 0;            ///< depth of the user's changes that are being handled
};

/// The steps of a value box whose record names none, for its four pairs of arrows.
std::span<const double, cl_value_box::most_arrows> default_increments(std::string_view type,
                                                                      bool is_integer);
