// Reading and writing of fields, see ts_fields.h.
#include "toolkit/ts_fields.h"

#include <charconv>
#include <cmath>

std::string TsNumberText(double value) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof(text), value).ptr};
}

namespace {

/// Takes a finite number from the front of `text`, blanks ahead of it included.
bool TakeNumber(std::string_view& text, double& value) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    double parsed = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (result.ec != std::errc() || !std::isfinite(parsed)) {
        return false;
    }
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    value = parsed;
    return true;
}

} // namespace

double TsParseNumber(std::string_view text, double fall_back) {
    double value = 0;
    return TakeNumber(text, value) ? value : fall_back;
}

// ---- writing ----

void CTsFieldWriter::operator()(const char* name, bool value) {
    node.append_attribute(name) = value ? 1 : 0;
}
void CTsFieldWriter::operator()(const char* name, int value) {
    node.append_attribute(name) = value;
}
void CTsFieldWriter::operator()(const char* name, double value) {
    node.append_attribute(name) = TsNumberText(value).c_str();
}
void CTsFieldWriter::operator()(const char* name, const std::string& value) {
    node.append_attribute(name) = value.c_str();
}
void CTsFieldWriter::Triple(const char* name, double a, double b, double c) {
    const std::string text = TsNumberText(a) + " " + TsNumberText(b) + " " + TsNumberText(c);
    node.append_attribute(name) = text.c_str();
}

// ---- reading ----

pugi::xml_attribute CTsFieldReader::Take(const char* name) {
    names.emplace_back(name);
    return node.attribute(name);
}

void CTsFieldReader::operator()(const char* name, bool& value) {
    value = Take(name).as_bool(value);
}
void CTsFieldReader::operator()(const char* name, int& value) { value = Take(name).as_int(value); }
void CTsFieldReader::operator()(const char* name, double& value) {
    value = TsParseNumber(Take(name).value(), value);
}
void CTsFieldReader::operator()(const char* name, std::string& value) {
    value = Take(name).as_string(value.c_str());
}
void CTsFieldReader::Triple(const char* name, double& a, double& b, double& c) {
    std::string_view text = Take(name).value();
    double read[3] = {};
    for (double& number : read) {
        if (!TakeNumber(text, number)) {
            return;
        }
    }
    a = read[0], b = read[1], c = read[2];
}

// ---- ranges ----

void TsClamp(CTsColor& color) {
    for (double* channel : {&color.r, &color.g, &color.b}) {
        TsClamp(*channel, 0, 1);
    }
}

void TsClamp(CTsPoint& point) {
    for (double* axis : {&point.x, &point.y, &point.z}) {
        TsClamp(*axis, -1e9, 1e9);
    }
}

void TsMakeUnit(CTsVector& v, const CTsVector& fall_back) {
    const double length = std::hypot(v.x, v.y, v.z);
    if (!(length > 1e-12) || !std::isfinite(length)) {
        v = fall_back;
    } else if (std::abs(length - 1) > 1e-7) {
        v = {v.x / length, v.y / length, v.z / length};
    }
}
