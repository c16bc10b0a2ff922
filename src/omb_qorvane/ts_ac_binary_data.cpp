// Blocks of bytes as xrecords, in chunks that every release can read.
#include "omb_qorvane/ts_ac_binary_data.h"

#include "host/db/dictionary.h"
#include "omb/base/trace.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int chunk_code = 310;
constexpr std::size_t chunk_size = 127; // of a binary group in a drawing's file

AcDbObjectId record_of(const AcDbObject& object, const char* name) {
    AcDbObjectId id;
    const AcDbObjectId owner =
        object.mayHaveAttachments() ? object.extensionDictionary() : AcDbObjectId::kNull;
    if (owner.isNull()) {
        return id;
    }
    const AcDbObjectPointer<AcDbDictionary> dictionary(owner);
    if (dictionary) {
        dictionary->getAt(name, id);
    }
    return id;
}

} // namespace

bool CTsAcBinaryData::Has(const AcDbObject& object, const char* name) {
    return !record_of(object, name).isNull();
}

std::optional<std::vector<unsigned char>> CTsAcBinaryData::Read(const AcDbObject& object,
                                                                const char* name) {
    const AcDbObjectId id = record_of(object, name);
    if (id.isNull()) {
        return std::nullopt;
    }
    const AcDbObjectPointer<AcDbXrecord> record(id);
    if (!record) {
        return std::nullopt;
    }
    std::vector<unsigned char> bytes;
    for (const AcDbValue& value : record->rbChain()) {
        const auto* chunk = std::get_if<std::vector<std::uint8_t>>(&value.value);
        if (value.code != chunk_code || chunk == nullptr) {
            continue;
        }
        if (bytes.size() + chunk->size() > ts_binary_limit) {
            OMB_TRACE(1, "Attached data is too large: %s", name);
            return std::nullopt;
        }
        bytes.insert(bytes.end(), chunk->begin(), chunk->end());
    }
    return bytes;
}

std::string CTsAcBinaryData::ReadText(const AcDbObject& object, const char* name) {
    const auto bytes = Read(object, name);
    return bytes ? std::string(bytes->begin(), bytes->end()) : std::string();
}

std::size_t Ts3AcReadBinaryDataFromEntity(const AcDbObject& object, const char* name,
                                          unsigned char* buffer, std::size_t size) {
    const auto bytes = CTsAcBinaryData::Read(object, name);
    if (!bytes) {
        return 0;
    }
    if (buffer != nullptr) {
        std::copy_n(bytes->begin(), std::min(size, bytes->size()), buffer);
    }
    return bytes->size();
}

bool Ts3AcWriteBinaryDataToEntity(AcDbObject& object, const char* name,
                                  const std::vector<unsigned char>& bytes) {
    if (bytes.size() > ts_binary_limit || object.createExtensionDictionary() != Acad::eOk) {
        return false;
    }
    const AcDbObjectPointer<AcDbDictionary> dictionary(object.extensionDictionary(),
                                                       AcDb::kForWrite);
    if (!dictionary) {
        return false;
    }
    if (bytes.empty()) {
        dictionary->remove(name);
        return true;
    }
    AcDbValues chain;
    for (std::size_t at = 0; at < bytes.size(); at += chunk_size) {
        const std::size_t end = std::min(at + chunk_size, bytes.size());
        AcDbValue chunk;
        chunk.code = chunk_code;
        chunk.value = std::vector<std::uint8_t>(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                                                bytes.begin() + static_cast<std::ptrdiff_t>(end));
        chain.push_back(std::move(chunk));
    }
    auto record = std::make_unique<AcDbXrecord>();
    record->setFromRbChain(std::move(chain));
    AcDbObjectId id;
    return dictionary->setAt(name, std::move(record), id) == Acad::eOk;
}

bool Ts3AcWriteBinaryDataToEntity(AcDbObject& object, const char* name, std::string_view text) {
    return Ts3AcWriteBinaryDataToEntity(object, name,
                                        std::vector<unsigned char>(text.begin(), text.end()));
}

cl_old_values::cl_old_values(const AcDbObject& object) {
    if (!object.mayHaveAttachments()) {
        return;
    }
    constexpr int integer_code = 1070, first_own_code = 2000;
    int code = 0;
    for (AcDbValue& value : object.xData(ts_data::old_application)) {
        if (value.code == 1001) {
            continue;
        }
        if (code == 0 && value.code == integer_code && value.integer() >= first_own_code) {
            code = static_cast<int>(value.integer());
            continue;
        }
        const int own = code != 0 ? code : value.code;
        values.emplace_back(own, std::move(value));
        code = 0;
    }
}

const AcDbValue* cl_old_values::find(int code) const {
    const auto at = std::find_if(values.begin(), values.end(),
                                 [code](const auto& row) { return row.first == code; });
    return at != values.end() ? &at->second : nullptr;
}

double cl_old_values::number(int code, double fall_back) const {
    const AcDbValue* value = find(code);
    if (value == nullptr) {
        return fall_back;
    }
    if (std::holds_alternative<double>(value->value)) {
        return std::isfinite(value->real()) ? value->real() : fall_back;
    }
    return std::holds_alternative<std::int64_t>(value->value)
               ? static_cast<double>(value->integer())
               : fall_back;
}

int cl_old_values::integer(int code, int fall_back) const {
    const double value = number(code, fall_back);
    return static_cast<int>(std::clamp(value, -2147483648.0, 2147483647.0));
}

std::string cl_old_values::text(int code) const {
    const AcDbValue* value = find(code);
    return value != nullptr ? value->text() : std::string();
}
