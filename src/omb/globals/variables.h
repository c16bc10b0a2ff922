// The typed variables of the settings store. The first letter of a name is the schema: b and i are
// 32-bit integers, s text, p points, c colours, r and every other letter doubles.
#pragma once

#include "omb/base/math.h"
#include "omb/base/profile.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

/// Where a global lives beside the store.
enum save_types : int {
    SAVE_ANY = 0,                   ///< as an argument only: no opinion, no check
    SAVE_NONE = 1,                  ///< a temporary
    SAVE_PROFILE = 2,               ///< profile, drawing
    SAVE_DATABASE = 3,              ///< profile, drawing, options file
    OPTION_GLOBAL = 4,              ///< the same; render option
    OPTION_NON_DATABASE_GLOBAL = 5, ///< the same; render option outside the drawing's settings
    SAVE_LOCAL = 7,                 ///< a variable of a dialog
    SAVE_SESSION = 8                ///< a mode flag of this run
};

inline bool is_saved_type(int type) { return type >= 2 && type < 6; }
inline bool is_dictionary_type(int type) { return type > 1 && type != 6 && type != 7 && type != 8; }
inline bool is_options_file_type(int type) { return type >= 3 && type <= 5; }

/// 0x00BBGGRR: red lowest.
using COLORREF = std::uint32_t;

/// A colour from "#rrggbb", "rgb(r,g,b)" or a decimal number (taken as the raw word).
COLORREF parse_colorref(std::string_view text);
/// "#%02x%02x%02x" of red, green, blue.
std::string colorref_to_text(COLORREF color);

/// Asking a variable for a type that its class does not convert gives 0, "", 0.0, the zero point;
/// setting one does nothing.
class cl_variable_base {
public:
    cl_variable_base(std::string name, int kind, int save_type);
    virtual ~cl_variable_base();
    cl_variable_base(const cl_variable_base&) = delete;
    cl_variable_base& operator=(const cl_variable_base&) = delete;

    virtual std::int32_t get_int_value() const;
    virtual std::string get_string_value() const;
    virtual double get_double_value() const;
    virtual fpt get_fpt_value() const;
    virtual COLORREF get_COLORREF_value() const;
    virtual void set_int_value(std::int32_t value);
    virtual void set_string_value(const std::string& value);
    virtual void set_double_value(double value);
    virtual void set_fpt_value(const fpt& value);
    virtual void set_COLORREF_value(COLORREF value);
    virtual void set_int_default(std::int32_t value);
    virtual void set_string_default(const std::string& value);
    virtual void set_double_default(double value);
    virtual void set_fpt_default(const fpt& value);
    virtual void set_COLORREF_default(COLORREF value);
    // The next two act only when the save type is one that the profile keeps.
    virtual void save_to_profile() const; ///< writes, whatever the profile holds
    virtual void load_from_profile() = 0; ///< a missing key gives zero or the empty text
    virtual void restore_default() = 0;

    /// Value and default in the profile's text form (a point as "(x, y, z)").
    virtual std::string value_text() const = 0;
    virtual std::string default_text() const = 0;

    /// What a reading does for the profile: a value that was changed here since it last agreed with
    /// the profile is written; one that never was is put there if the profile holds none.
    void write_through() const {
        if (agreement != profile_generation() && is_saved_type(save_type)) {
            bring_into_agreement();
        }
    }
    /// The value comes from the profile, or stands for one that the profile does not hold.
    void mark_remembered() { agreement = remembered; }

    /// Changes the type to 2, 3, 4 or 5 with a trace; other types and the same type do nothing.
    void set_save_type(int new_type);

    std::string title; ///< label; empty until asked for or set
    const std::string name;
    std::string comment;
    int kind;      ///< 1 integer, 2 text, 3 double, 4 point, 5 colour
    int save_type; ///< save_types
    bool changed = false;

protected:
    using profile_put = void (cl_profile_store::*)(std::string_view, std::string_view,
                                                   std::string_view);
    virtual void put_in_profile(profile_put put) const;
    void mark_touched() { agreement = touched; }

private:
    static constexpr std::uint32_t touched = 0, remembered = 0xffffffff;
    void bring_into_agreement() const;

    /// The generation of the profile that holds this value, or one of the two marks above.
    mutable std::uint32_t agreement = touched;
};

class cl_variable_int : public cl_variable_base {
public:
    cl_variable_int(std::string name, int save_type, std::int32_t value = 0);
    std::int32_t get_int_value() const override;
    std::string get_string_value() const override;
    double get_double_value() const override;
    void set_int_value(std::int32_t value) override;
    void set_string_value(const std::string& value) override;
    void set_double_value(double value) override;
    void set_int_default(std::int32_t value) override;
    void load_from_profile() override;
    void restore_default() override;
    std::string value_text() const override;
    std::string default_text() const override;

private:
    std::int32_t current, preset;
};

class cl_variable_string : public cl_variable_base {
public:
    cl_variable_string(std::string name, int save_type, std::string value = {});
    std::int32_t get_int_value() const override;
    std::string get_string_value() const override;
    double get_double_value() const override;
    void set_int_value(std::int32_t value) override;
    void set_string_value(const std::string& value) override;
    void set_double_value(double value) override;
    void set_string_default(const std::string& value) override;
    void load_from_profile() override;
    void restore_default() override;
    std::string value_text() const override;
    std::string default_text() const override;

private:
    std::string current, preset;
};

class cl_variable_double : public cl_variable_base {
public:
    cl_variable_double(std::string name, int save_type, double value = 0);
    std::int32_t get_int_value() const override; ///< floor(value + 0.49999)
    std::string get_string_value() const override;
    double get_double_value() const override;
    void set_int_value(std::int32_t value) override;
    void set_string_value(const std::string& value) override;
    void set_double_value(double value) override;
    void set_double_default(double value) override;
    void load_from_profile() override;
    void restore_default() override;
    std::string value_text() const override;
    std::string default_text() const override;

private:
    double current, preset = 0;
};

class cl_variable_fpt : public cl_variable_base {
public:
    cl_variable_fpt(std::string name, int save_type, const fpt& value = {});
    std::string get_string_value() const override;
    fpt get_fpt_value() const override;
    void set_string_value(const std::string& value) override;
    void set_fpt_value(const fpt& value) override;
    void set_fpt_default(const fpt& value) override;
    void load_from_profile() override;
    void restore_default() override;
    std::string value_text() const override;
    std::string default_text() const override;

private:
    void put_in_profile(profile_put put) const override; ///< name with _x, _y, _z
    fpt current, preset;
};

class cl_variable_COLORREF : public cl_variable_base {
public:
    cl_variable_COLORREF(std::string name, int save_type, COLORREF value = 0);
    std::int32_t get_int_value() const override; ///< the raw word
    COLORREF get_COLORREF_value() const override;
    void set_int_value(std::int32_t value) override; ///< the raw word, bits above 24 kept
    void set_string_value(const std::string& value) override;
    void set_COLORREF_value(COLORREF value) override;
    void set_COLORREF_default(COLORREF value) override;
    void load_from_profile() override;
    void restore_default() override;
    std::string value_text() const override;
    std::string default_text() const override;

private:
    std::uint32_t current, preset = 0;
};

/// A variable of the class that the first letter of its name asks for, with a zero value.
std::unique_ptr<cl_variable_base> make_variable(std::string_view name, int save_type);
