// Decals and their files, see ts_decal.h.
#include "toolkit/ts_decal.h"

#include "toolkit/ts_fields.h"

#include <cmath>

namespace {

constexpr auto decal_fields = [](auto& self, auto&& visit) {
    visit("Name", self.m_Name);
    visit("Image", self.m_Image);
    visit("Location", self.m_Location);
    visit("XAxis", self.m_XAxis);
    visit("YAxis", self.m_YAxis);
    visit("ZAxis", self.m_ZAxis);
    visit("XScale", self.m_XScale);
    visit("YScale", self.m_YScale);
    visit("ZScale", self.m_ZScale);
    visit("Opacity", self.m_Opacity);
    visit("Glow", self.m_Glow);
    visit("BothSides", self.m_BothSides);
};

/// Volume that three axes span.
double Span(const CTsVector& a, const CTsVector& b, const CTsVector& c) {
    return a.x * (b.y * c.z - b.z * c.y) - a.y * (b.x * c.z - b.z * c.x) +
           a.z * (b.x * c.y - b.y * c.x);
}

} // namespace

void CTsDecal::Write(CTsXmlWriter& writer) const {
    TsWriteFields(*this, writer.Open("TsDecal"), decal_fields);
    writer.CloseElement();
}

void CTsDecal::Read(pugi::xml_node node) {
    TsReadFields(*this, node, decal_fields, {"version"});
    TsClamp(m_Location);
    const CTsDecal usual;
    TsMakeUnit(m_XAxis, usual.m_XAxis);
    TsMakeUnit(m_YAxis, usual.m_YAxis);
    TsMakeUnit(m_ZAxis, usual.m_ZAxis);
    if (std::abs(Span(m_XAxis, m_YAxis, m_ZAxis)) < 1e-6) { // flat: there is no way back into it
        m_XAxis = usual.m_XAxis, m_YAxis = usual.m_YAxis, m_ZAxis = usual.m_ZAxis;
    }
    for (double* scale : {&m_XScale, &m_YScale, &m_ZScale}) {
        TsClamp(*scale, 1e-6, 1e6);
    }
    TsClamp(m_Opacity, 0, 1);
    TsClamp(m_Glow, 0, 1e9);
}

bool CTsDecal::ReadFile(const std::string& path, std::string& error) {
    CTsXmlReader reader;
    if (!reader.Init(path)) {
        error = reader.Error();
        return false;
    }
    if (std::string_view(reader.Root().name()) != "TsDecal") {
        error = path + ": is no decal file";
        return false;
    }
    error.clear();
    Read(reader.Root());
    return true;
}
