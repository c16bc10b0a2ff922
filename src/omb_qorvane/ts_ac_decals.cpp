// Decals on entities.
#include "omb_qorvane/ts_ac_decals.h"

#include "omb/base/trace.h"
#include "omb_qorvane/ts_ac_binary_data.h"

namespace {
constexpr const char* root_name = "TsDecalList";
constexpr std::size_t most_decals = 1000; // on one entity
} // namespace

bool CTsAcDecalList::Load(const AcDbObject& entity) {
    const std::string text = CTsAcBinaryData::ReadText(entity, ts_data::decals);
    if (text.empty()) {
        return false;
    }
    CTsXmlReader reader;
    if (!reader.InitFromText(text, ts_data::decals) ||
        std::string_view(reader.Root().name()) != root_name) {
        OMB_TRACE(1, "The decals of an entity cannot be read: %s", reader.Error());
        return false;
    }
    clear();
    for (const pugi::xml_node node : reader.Root().children("TsDecal")) {
        if (size() == most_decals) {
            OMB_TRACE(1, "An entity has more than %d decals; the rest is left out.",
                      static_cast<int>(most_decals));
            break;
        }
        emplace_back().Read(node);
    }
    return true;
}

bool CTsAcDecalList::Save(AcDbObject& entity) const {
    if (empty()) {
        return !CTsAcBinaryData::Has(entity, ts_data::decals) ||
               Ts3AcWriteBinaryDataToEntity(entity, ts_data::decals, std::string_view());
    }
    CTsXmlWriter writer;
    writer.Init("", 1, -1);
    writer.Open(root_name);
    for (const CTsDecal& decal : *this) {
        decal.Write(writer);
    }
    return Ts3AcWriteBinaryDataToEntity(entity, ts_data::decals, writer.Text());
}
