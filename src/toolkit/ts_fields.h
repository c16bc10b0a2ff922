// The fields of a toolkit object as XML attributes: one list of fields serves reading and writing.
#pragma once

#include "toolkit/ts_math.h"
#include "toolkit/ts_xml.h"

#include <string>
#include <string_view>
#include <type_traits>
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

/// Writes an object by its list of fields, and behind them what its reader did not know.
template <typename Self, typename Fields>
void TsWriteFields(const Self& self, pugi::xml_node node, Fields&& fields) {
    fields(self, CTsFieldWriter(node));
    self.m_Rest.Append(node);
}

/// Reads an object by its list of fields; keeps what is in neither the list nor `also_known`.
template <typename Self, typename Fields>
void TsReadFields(Self& self, pugi::xml_node node, Fields&& fields,
                  const std::vector<std::string_view>& also_known = {}) {
    CTsFieldReader reader(node);
    fields(self, reader);
    std::vector<std::string_view> known = reader.Names();
    known.insert(known.end(), also_known.begin(), also_known.end());
    self.m_Rest.Collect(node, known);
}

/// Shows a field that is no bool, int, double, text or triple (a number of another type, an
/// enumeration) as the given plain type.
template <typename Plain, typename Value, typename Visit>
void TsVisitAs(const char* name, Value& value, Visit&& visit) {
    if constexpr (std::is_const_v<Value>) {
        visit(name, static_cast<Plain>(value));
    } else {
        Plain plain = static_cast<Plain>(value);
        visit(name, plain);
        value = static_cast<Value>(plain);
    }
}

// What readers bring into range.
inline void TsClamp(double& value, double least, double most) {
    value = !(value >= least) ? least : value > most ? most : value; // no number is the least
}
inline void TsClamp(int& value, int least, int most) {
    value = value < least ? least : value > most ? most : value;
}
void TsClamp(CTsColor& color); ///< each channel to 0 to 1
void TsClamp(CTsPoint& point); ///< to 1e9 metres from the origin on each axis
void TsMakeUnit(CTsVector& v, const CTsVector& fall_back); ///< leaves what is unit as it is
