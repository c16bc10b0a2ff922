// The header of an OpenEXR file, and the texts of a `.QorImage` in it.
#include "renderer/qor_image_header.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace renderer {

namespace {

/// Takes bytes from the front; after the end it gives zeros and says so.
class ByteCursor {
public:
    explicit ByteCursor(std::string_view bytes)
      : rest_(bytes) {}

    bool good() const { return good_; }
    bool at_end() const { return rest_.empty(); }

    std::int32_t number() { // little-endian in the file
        std::uint32_t value = 0;
        const std::string_view bytes = take(4);
        for (std::size_t i = bytes.size(); i-- > 0;)
            value = value << 8 | static_cast<unsigned char>(bytes[i]);
        return static_cast<std::int32_t>(value);
    }
    std::string_view take(std::size_t count) {
        if (count > rest_.size()) {
            good_ = false;
            rest_ = {};
            return {};
        }
        const std::string_view taken = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return taken;
    }
    /// A name that ends with a zero.
    std::string_view name() {
        const std::size_t end = rest_.find('\0');
        if (end > 255) {
            good_ = false;
            return {};
        }
        const std::string_view text = take(end);
        take(1);
        return text;
    }

private:
    std::string_view rest_;
    bool good_ = true;
};

bool read_channels(std::string_view bytes, std::vector<std::string>& channels) {
    constexpr std::int32_t float_type = 2;
    ByteCursor cursor(bytes);
    for (std::string_view name = cursor.name(); cursor.good() && !name.empty();
         name = cursor.name()) {
        const bool is_float = cursor.number() == float_type;
        cursor.take(4); // how linear it is, and padding
        const bool is_full = cursor.number() == 1 && cursor.number() == 1;
        if (!is_float || !is_full)
            return false;
        channels.emplace_back(name);
    }
    return cursor.good() && cursor.at_end();
}

bool read_window(std::string_view bytes, ExrHeader& header) {
    ByteCursor cursor(bytes);
    const std::int64_t x0 = cursor.number(), y0 = cursor.number();
    const std::int64_t x1 = cursor.number(), y1 = cursor.number();
    if (!cursor.good() || x0 != 0 || y0 != 0 || x1 < 0 || y1 < 0 ||
        (x1 + 1) * (y1 + 1) > most_loaded_pixels)
        return false;
    header.width = static_cast<int>(x1) + 1;
    header.height = static_cast<int>(y1) + 1;
    return true;
}

bool take_attribute(std::string_view name, std::string_view type, std::string_view value,
                    ExrHeader& header, std::string& error) {
    constexpr char zip = 3;
    if (name == "dataWindow" && !read_window(value, header)) {
        error = "its size is not that of a picture";
    } else if (name == "channels" && !read_channels(value, header.channels)) {
        error = "its layers are not those of a QorImage";
    } else if (name == "compression" && value != std::string_view(&zip, 1)) {
        error = "its compression is not that of a QorImage";
    } else if (type == "string") {
        header.texts[std::string(name)] = value;
    }
    return error.empty();
}

void append_number(std::string& text, double value) {
    std::array<char, 32> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    text.append(text.empty() ? "" : " ").append(buffer.data(), end.ptr);
}

/// Numbers with blanks between them, all of them finite; as many as there must be.
bool read_numbers(std::string_view text, std::vector<double>& numbers, std::size_t count) {
    numbers.clear();
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end && numbers.size() < count) {
        double value = 0;
        const auto [next, code] = std::from_chars(at, end, value);
        if (code != std::errc() || !std::isfinite(value))
            return false;
        numbers.push_back(value);
        at = next;
        if (at != end && *at++ != ' ')
            return false;
    }
    return at == end && numbers.size() == count;
}

/// Texts one behind the other, each with its length before it: "3:Sun5:Paint".
void append_packed(std::string& packed, const std::string& text) {
    packed.append(std::to_string(text.size())).append(":").append(text);
}

bool unpack(std::string_view packed, std::vector<std::string>& texts) {
    texts.clear();
    while (!packed.empty()) {
        std::size_t size = 0;
        const char* const end = packed.data() + packed.size();
        const auto [next, code] = std::from_chars(packed.data(), end, size);
        if (code != std::errc() || next == end || *next != ':' ||
            size > static_cast<std::size_t>(end - next - 1))
            return false;
        texts.emplace_back(next + 1, size);
        packed = {next + 1 + size, static_cast<std::size_t>(end - next - 1) - size};
    }
    return true;
}

constexpr const char* version_name = "QorImage";
constexpr const char* version_text = "1";

constexpr std::array<double ToneSettings::*, 6> tone_members{
    &ToneSettings::exposure, &ToneSettings::brightness, &ToneSettings::contrast,
    &ToneSettings::burn,     &ToneSettings::saturation, &ToneSettings::gamma};

bool take_tone(const std::string& text, QorImage& image) {
    std::vector<double> numbers;
    if (!read_numbers(text, numbers, tone_members.size()))
        return false;
    for (std::size_t i = 0; i < tone_members.size(); ++i)
        image.tone.*tone_members[i] = numbers[i];
    return true;
}

bool take_weights(const std::string& text, QorImage& image) {
    std::vector<double> numbers;
    if (!read_numbers(text, numbers, most_channels))
        return false;
    for (std::size_t i = 0; i < image.weights.size(); ++i)
        image.weights[i] = static_cast<float>(std::clamp(numbers[i], 0.0, 1e6));
    return true;
}

bool take_passes(const std::string& text, QorImage& image) {
    std::vector<double> numbers;
    if (!read_numbers(text, numbers, 2) || numbers[0] < 0 || numbers[1] < 0 || numbers[0] > 1e9 ||
        numbers[1] > 1e9)
        return false;
    image.picture.film.passes = static_cast<int>(numbers[0]);
    image.picture.film.samples = static_cast<int>(numbers[1]);
    return true;
}

/// Number and name in turn.
bool take_channels(const std::string& text, QorImage& image) {
    std::vector<std::string> texts;
    if (!unpack(text, texts) || texts.size() % 2 != 0 || texts.size() / 2 > most_channels)
        return false;
    for (std::size_t i = 0; i < texts.size(); i += 2) {
        std::vector<double> number;
        if (!read_numbers(texts[i], number, 1) || number[0] < 0 || number[0] > 1e6)
            return false;
        LightChannel& channel = image.picture.channels.emplace_back();
        channel.name = texts[i + 1];
        channel.number = static_cast<int>(number[0]);
    }
    return true;
}

/// Name and text in turn.
bool take_metadata(const std::string& text, QorImage& image) {
    std::vector<std::string> texts;
    if (!unpack(text, texts) || texts.size() % 2 != 0)
        return false;
    for (std::size_t i = 0; i < texts.size(); i += 2)
        image.metadata.emplace_back(texts[i], texts[i + 1]);
    return true;
}

struct TextRow {
    const char* name;
    bool (*take)(const std::string& text, QorImage& image);
};

constexpr std::array<TextRow, 5> text_rows{{{"QorTone", take_tone},
                                            {"QorWeights", take_weights},
                                            {"QorPasses", take_passes},
                                            {"QorChannels", take_channels},
                                            {"QorMetadata", take_metadata}}};

} // namespace

bool read_exr_header(std::string_view bytes, ExrHeader& header, std::string& error) {
    constexpr std::int32_t magic = 20000630, version = 2, long_names = 0x400;
    ByteCursor cursor(bytes);
    if (cursor.number() != magic || !cursor.good()) {
        error = "this is no QorImage";
        return false;
    }
    if ((cursor.number() & ~long_names) != version) {
        error = "this is an OpenEXR file, but no QorImage";
        return false;
    }
    for (std::string_view name = cursor.name(); cursor.good() && !name.empty();
         name = cursor.name()) {
        const std::string_view type = cursor.name();
        const std::int32_t size = cursor.number();
        if (size < 0)
            break;
        const std::string_view value = cursor.take(static_cast<std::size_t>(size));
        if (cursor.good() && !take_attribute(name, type, value, header, error))
            return false;
    }
    if (!cursor.good() || header.width == 0 || header.channels.empty()) {
        error = "its header is damaged or cut";
        return false;
    }
    return true;
}

std::vector<std::pair<std::string, std::string>> qor_image_texts(const QorImage& image) {
    std::string tone, weights, passes, channels, metadata;
    for (const auto member : tone_members)
        append_number(tone, image.tone.*member);
    for (const float weight : image.weights)
        append_number(weights, static_cast<double>(weight));
    append_number(passes, image.picture.film.passes);
    append_number(passes, image.picture.film.samples);
    for (const LightChannel& channel : image.picture.channels) {
        append_packed(channels, std::to_string(channel.number));
        append_packed(channels, channel.name);
    }
    for (const auto& [name, text] : image.metadata) {
        append_packed(metadata, name);
        append_packed(metadata, text);
    }
    return {{version_name, version_text}, {"QorTone", tone},         {"QorWeights", weights},
            {"QorPasses", passes},        {"QorChannels", channels}, {"QorMetadata", metadata}};
}

bool take_qor_image_texts(const std::map<std::string, std::string>& texts, QorImage& image,
                          std::string& error) {
    const auto version = texts.find(version_name);
    if (version == texts.end()) {
        error = "this is an OpenEXR file, but no QorImage";
        return false;
    }
    if (version->second != version_text) {
        error =
            "it is a QorImage of a form that is not known, '" + version->second.substr(0, 20) + "'";
        return false;
    }
    for (const TextRow& row : text_rows) {
        const auto found = texts.find(row.name);
        // an encoder may leave an empty text out
        if (!row.take(found == texts.end() ? std::string() : found->second, image)) {
            error = "its text '" + std::string(row.name) + "' is damaged or missing";
            return false;
        }
    }
    return true;
}

} // namespace renderer
