// Plant records on entities.
#include "omb_qorvane/ts_ac_plant.h"

#include "host/db/database.h"
#include "host/db/dictionary.h"
#include "omb/base/trace.h"
#include "omb_qorvane/ts_ac_binary_data.h"
#include "omb_qorvane/ts_ac_convert.h"

#include <charconv>

namespace {

constexpr const char* record_root = "TsAcPlant";
constexpr int old_plant = 3199;

/// The files' texts, each as an element of one record.
void append_part(CTsXmlWriter& part, pugi::xml_node root) {
    pugi::xml_document document;
    document.load_string(part.Text().c_str());
    root.append_copy(document.document_element());
}

template <class Write>
void append_written(pugi::xml_node root, Write&& write) {
    CTsXmlWriter part;
    part.Init("", 1, -1);
    write(part);
    append_part(part, root);
}

template <class Read>
bool read_child(pugi::xml_node root, const char* name, Read&& read) {
    const pugi::xml_node child = root.child(name);
    if (!child) {
        return false;
    }
    struct text_writer : pugi::xml_writer {
        std::string text;
        void write(const void* data, std::size_t size) override {
            text.append(static_cast<const char*>(data), size);
        }
    } out;
    child.print(out, "", pugi::format_raw);
    CTsXmlReader reader;
    return reader.InitFromText(out.text, name) && read(reader);
}

bool read_cover_text(CTsPlant& plant, const AcDbObject& entity) {
    const std::string text = CTsAcBinaryData::ReadText(entity, ts_data::cover);
    CTsXmlReader reader;
    if (text.empty()) {
        return false;
    }
    if (!reader.InitFromText(text, ts_data::cover) || !plant.ReadPlantDef(reader)) {
        OMB_TRACE(1, "A ground cover cannot be read: %s", reader.Error());
        return false;
    }
    return true;
}

} // namespace

bool CTsAcPlant::load_from_entity(const AcDbEntity& entity) {
    const std::string text = CTsAcBinaryData::ReadText(entity, ts_data::plant);
    CTsXmlReader reader;
    if (text.empty()) {
        return false;
    }
    if (!reader.InitFromText(text, ts_data::plant) ||
        std::string_view(reader.Root().name()) != record_root) {
        OMB_TRACE(1, "A plant record cannot be read: %s", reader.Error());
        return false;
    }
    read_child(reader.Root(), "TsPlant", [this](const CTsXmlReader& r) { return Read(r); });
    const auto read_definition = [this](const CTsXmlReader& r) { return ReadPlantDef(r); };
    m_IsCover = false;
    if (!read_child(reader.Root(), "TsPlantDef", read_definition)) {
        if (!read_child(reader.Root(), "TsGroundCoverDef", read_definition)) {
            OMB_TRACE(1, "%s", std::string("A plant record has no definition."));
            return false;
        }
        m_IsCover = true;
    }
    if (entity.isKindOf(AcDbBlockReference::desc())) {
        const auto& reference = static_cast<const AcDbBlockReference&>(entity);
        m_Location = to_ts(reference.position());
        m_Rotation = reference.rotation();
        m_Scale = reference.scaleFactors().sz;
    }
    return true;
}

bool CTsAcPlant::save_to_entity(AcDbEntity& entity) const {
    CTsXmlWriter writer;
    writer.Init("", 1, -1);
    pugi::xml_node root = writer.Open(record_root);
    append_written(root, [this](CTsXmlWriter& part) { Write(part); });
    append_written(root, [this](CTsXmlWriter& part) {
        m_IsCover ? WriteCoverDef(part) : WritePlantDef(part);
    });
    return Ts3AcWriteBinaryDataToEntity(entity, ts_data::plant, writer.Text());
}

bool CTsAcPlant::load_cover(const AcDbEntity& entity) {
    if (!read_cover_text(*this, entity)) {
        const AcDbObjectPointer<AcDbEntity> shared(TsAcCoverOf(entity));
        if (!shared || !read_cover_text(*this, *shared)) {
            return false;
        }
    }
    m_IsCover = true;
    return true;
}

bool CTsAcPlant::save_cover(AcDbEntity& entity) const {
    CTsXmlWriter writer;
    writer.Init("", 1, -1);
    WriteCoverDef(writer);
    return Ts3AcWriteBinaryDataToEntity(entity, ts_data::cover, writer.Text());
}

AcDbObjectId TsAcCoverOf(const AcDbEntity& entity) {
    const AcDbObjectId owner =
        entity.mayHaveAttachments() ? entity.extensionDictionary() : AcDbObjectId::kNull;
    if (owner.isNull() || entity.database() == nullptr) {
        return {};
    }
    const AcDbObjectPointer<AcDbDictionary> dictionary(owner);
    for (const char* name : {ts_data::cover_id, ts_data::cover_instance}) {
        AcDbObjectId id;
        if (!dictionary || dictionary->getAt(name, id) != Acad::eOk) {
            continue;
        }
        const AcDbObjectPointer<AcDbXrecord> record(id);
        for (const AcDbValue& value : record ? record->rbChain() : AcDbValues()) {
            std::uint64_t handle = 0;
            const std::string text = value.text();
            const auto [end, error] =
                std::from_chars(text.data(), text.data() + text.size(), handle, 16);
            if (error == std::errc() && end == text.data() + text.size() && handle != 0) {
                return entity.database()->getAcDbObjectId(AcDbHandle(handle));
            }
        }
    }
    return {};
}

bool TsAcIsOldPlant(const AcDbEntity& entity) {
    const cl_old_values values(entity);
    return values.find(old_plant) != nullptr && values.integer(old_plant) >= 0;
}
