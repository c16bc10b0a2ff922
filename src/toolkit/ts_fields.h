// The fields of a toolkit object as XML attributes: one list of fields serves reading and writing.
#pragma once

#include "toolkit/ts_math.h"
#include "toolkit/ts_xml.h"

#include <string>
#include <string_view>
#include <vector>

/// Text forms: numbers with a decimal point whatever the locale, enough digits to come back the
/// same; points and colours as three numbers with blanks between.
std::string TsNumberText(double value);
double TsParseNumber(std::string_view text, double fall_back);

/// Writes each field that it is shown as an attribute of one element.
class CTsFieldWriter {
public:
    explicit CTsFieldWriter(pugi::xml_node target)
      : node(target) {}
    void operator()(const char* name, bool value);
    void operator()(const char* name, int value);
    void operator()(const char* name, double value);
    void operator()(const char* name, const std::string& value);
    void operator()(const char* name, const CTsPoint& value) {
        Triple(name, value.x, value.y, value.z);
    }
    void operator()(const char* name, const CTsVector& value) {
        Triple(name, value.x, value.y, value.z);
    }
    void operator()(const char* name, const CTsColor& value) {
        Triple(name, value.r, value.g, value.b);
    }

private:
    void Triple(const char* name, double a, double b, double c);
    pugi::xml_node node;
};

/// Reads each field that it is shown from an attribute; what is missing or no number stays as it
/// was. Names the fields for CTsXmlRest.
class CTsFieldReader {
public:
    explicit CTsFieldReader(pugi::xml_node source)
      : node(source) {}
    void operator()(const char* name, bool& value);
    void operator()(const char* name, int& value);
    void operator()(const char* name, double& value);
    void operator()(const char* name, std::string& value);
    void operator()(const char* name, CTsPoint& value) { Triple(name, value.x, value.y, value.z); }
    void operator()(const char* name, CTsVector& value) { Triple(name, value.x, value.y, value.z); }
    void operator()(const char* name, CTsColor& value) { Triple(name, value.r, value.g, value.b); }
    const std::vector<std::string_view>& Names() const { return names; }

private:
    void Triple(const char* name, double& a, double& b, double& c);
    pugi::xml_attribute Take(const char* name);
    pugi::xml_node node;
    std::vector<std::string_view> names;
};
