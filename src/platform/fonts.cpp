// Fonts by fontconfig, the register of fonts on free desktops.
#include "platform/fonts.h"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <memory>
#include <mutex>

namespace platform {
namespace {

struct Release {
    void operator()(FcPattern* p) const { FcPatternDestroy(p); }
    void operator()(FcFontSet* s) const { FcFontSetDestroy(s); }
    void operator()(FcObjectSet* s) const { FcObjectSetDestroy(s); }
};
using Pattern = std::unique_ptr<FcPattern, Release>;

constexpr const char* kPlain = "DejaVu Sans";

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
    return text;
}

const FcChar8* bytes(const std::string& text) {
    return reinterpret_cast<const FcChar8*>(text.c_str());
}

std::string text_of(const FcPattern* pattern, const char* property, int index) {
    FcChar8* text = nullptr;
    return FcPatternGetString(pattern, property, index, &text) == FcResultMatch
               ? reinterpret_cast<const char*>(text)
               : std::string();
}

FontFile file_of(const FcPattern* pattern, bool exact) {
    FontFile found;
    found.path = text_of(pattern, FC_FILE, 0);
    FcPatternGetInteger(pattern, FC_INDEX, 0, &found.face);
    found.face &= 0xffff; // the upper half numbers instances of variable fonts
    found.exact = exact && !found.path.empty();
    return found;
}

/// A scalable font whose file has that name.
FontFile by_file(const std::string& name) {
    const std::string wanted = lower(std::filesystem::path(name).filename().string());
    const Pattern all(FcPatternBuild(nullptr, FC_SCALABLE, FcTypeBool, FcTrue, nullptr));
    const std::unique_ptr<FcObjectSet, Release> wish(FcObjectSetBuild(FC_FILE, FC_INDEX, nullptr));
    const std::unique_ptr<FcFontSet, Release> fonts(FcFontList(nullptr, all.get(), wish.get()));
    for (int i = 0; fonts != nullptr && i < fonts->nfont; ++i) {
        const std::filesystem::path path = text_of(fonts->fonts[i], FC_FILE, 0);
        if (lower(path.filename().string()) == wanted || lower(path.stem().string()) == wanted) {
            return file_of(fonts->fonts[i], true);
        }
    }
    return {};
}

FontFile by_family(const std::string& family, bool bold, bool italic) {
    const Pattern wish(FcPatternBuild(
        nullptr, FC_FAMILY, FcTypeString, bytes(family), FC_WEIGHT, FcTypeInteger,
        bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR, FC_SLANT, FcTypeInteger,
        italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN, FC_SCALABLE, FcTypeBool, FcTrue, nullptr));
    if (wish == nullptr) {
        return {};
    }
    FcConfigSubstitute(nullptr, wish.get(), FcMatchPattern);
    FcDefaultSubstitute(wish.get());
    FcResult result = FcResultNoMatch;
    const Pattern match(FcFontMatch(nullptr, wish.get(), &result));
    if (match == nullptr) {
        return {};
    }
    bool same = false;
    for (int i = 0; !same; ++i) {
        const std::string name = text_of(match.get(), FC_FAMILY, i);
        if (name.empty()) {
            break;
        }
        same = lower(name) == lower(family);
    }
    return file_of(match.get(), same);
}

} // namespace

FontFile find_font(const std::string& family_or_file, bool bold, bool italic) {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    if (FcInit() == FcFalse) {
        return {};
    }
    if (family_or_file.empty()) {
        return by_family(kPlain, bold, italic);
    }
    FontFile found = by_family(family_or_file, bold, italic);
    if (!found.exact) {
        const FontFile file = by_file(family_or_file);
        found = file.exact ? file : by_family(kPlain, bold, italic);
        found.exact = file.exact;
    }
    return found;
}

} // namespace platform
