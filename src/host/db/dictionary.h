// Dictionaries, xrecords and materials: the objects section.
#pragma once

#include "host/db/object.h"

#include <map>
#include <string>
#include <vector>

/// Names to objects. Keys keep their spelling; look-up is without case, as the host has it.
class AcDbDictionary : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbDictionary)
public:
    Acad::ErrorStatus getAt(const std::string& key, AcDbObjectId& id) const;
    bool has(const std::string& key) const;
    /// Enters the object under the key; the database takes it over. What stood there is erased.
    Acad::ErrorStatus setAt(const std::string& key, std::unique_ptr<AcDbObject> object,
                            AcDbObjectId& id);
    Acad::ErrorStatus remove(const std::string& key);
    std::size_t numEntries() const { return entries_.size(); }
    struct Entry {
        std::string key;
        AcDbObjectId id;
        std::int16_t code = 350; ///< 350 or 360: how the file refers to it
    };
    const std::vector<Entry>& entries() const { return entries_; } ///< in file order

    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    friend struct DxfAccess;
    std::vector<Entry> entries_;
    std::map<std::string, std::size_t> index_; ///< upper-case key to entry
};

class AcDbXrecord : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbXrecord)
public:
    const AcDbValues& rbChain() const { return values_; }
    /// eInvalidInput for a value that does not fit its code. Bytes (310 to 319) may be of any
    /// length; files cut them into values of at most 127.
    Acad::ErrorStatus setFromRbChain(AcDbValues values);

    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    AcDbValues values_;
};

/// A material of the drawing, as far as its colour and finish go.
class AcDbMaterial : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbMaterial)
public:
    const std::string& name() const { return name_; }
    const std::string& description() const { return description_; }
    void setName(std::string name) { name_ = std::move(name); }
    /// Diffuse colour 0x00RRGGBB times its factor; the entity's own colour when `inherits`.
    std::uint32_t diffuseColor() const { return diffuse_; }
    bool diffuseInherits() const { return diffuse_inherits_; }
    void setDiffuseColor(std::uint32_t rgb) {
        diffuse_ = rgb;
        diffuse_inherits_ = false;
    }
    double diffuseFactor() const { return diffuse_factor_; } ///< 0 to 1
    std::uint32_t specularColor() const { return specular_; }
    double specularGloss() const { return gloss_; } ///< 0 to 1
    void setSpecularGloss(double gloss) { gloss_ = gloss; }
    double opacity() const { return opacity_; } ///< 0 to 1
    void setOpacity(double opacity) { opacity_ = opacity; }
    double refraction() const { return refraction_; } ///< index, 1 for none
    void setRefraction(double index) { refraction_ = index; }
    double reflectivity() const { return reflectivity_; }
    void setReflectivity(double share) { reflectivity_ = share; }
    double selfIllumination() const { return self_illumination_; }
    const std::string& diffuseMapFile() const { return diffuse_map_; }

    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    std::string name_, description_, diffuse_map_;
    std::uint32_t diffuse_ = 0xffffff, specular_ = 0xffffff;
    bool diffuse_inherits_ = true;
    double diffuse_factor_ = 1, gloss_ = 0.5, opacity_ = 1, refraction_ = 1;
    double reflectivity_ = 0, self_illumination_ = 0;
};
