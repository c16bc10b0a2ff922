// The sample commands.
#include "omb_qorvane/sample_commands.h"

#include "host/db/database.h"
#include "host/db/text.h"
#include "host/ed/ed.h"
#include "omb/base/errors.h"
#include "omb_qorvane/sample_jigs.h"

#include <array>
#include <fmt/format.h>

namespace {

template <class Entity>
void append(AcDbObjectId block, std::unique_ptr<Entity> entity) {
    const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForWrite);
    AcDbObjectId id;
    if (record) {
        record->appendAcDbEntity(std::move(entity), id);
    }
}

/// Gives a reference an attribute for each definition in its block, with what the user answers;
/// Enter takes the definition's own text. False when the user cancelled.
bool ask_attributes(AcDbObjectId block, std::vector<std::unique_ptr<AcDbAttribute>>& attributes) {
    const AcDbObjectPointer<AcDbBlockTableRecord> record(block);
    if (!record) {
        return false;
    }
    for (const AcDbObjectId id : record->entities()) {
        const AcDbObjectPointer<AcDbAttributeDefinition> definition(id);
        if (!definition) {
            continue;
        }
        std::string text;
        const int answer = acedGetString(
            fmt::format("\n{} <{}>: ", definition->prompt(), definition->textString()), text);
        if (answer == RTCAN) {
            return false;
        }
        auto attribute = std::make_unique<AcDbAttribute>();
        attribute->setTag(definition->tag());
        attribute->setTextString(answer == RTNONE ? definition->textString() : text);
        attribute->setHeight(definition->height());
        attribute->setPosition(definition->position());
        attribute->setLayer(definition->layerId());
        attributes.push_back(std::move(attribute));
    }
    return true;
}

void attach(AcDbDatabase& database, AcDbObjectId reference_id,
            std::vector<std::unique_ptr<AcDbAttribute>> attributes) {
    const AcDbObjectPointer<AcDbBlockReference> reference(reference_id, AcDb::kForWrite);
    if (!reference) {
        return;
    }
    for (std::unique_ptr<AcDbAttribute>& attribute : attributes) {
        attribute->setPosition(attribute->position().transformedBy(reference->blockTransform()));
        reference->appendAttribute(database.addAcDbObject(std::move(attribute), reference_id));
    }
}

void ASDKBLOCK() {
    AcDbDatabase* database = acdbCurDwg();
    if (database == nullptr) {
        acutPrintf("\nThere is no drawing.\n");
        return;
    }
    const AcDbObjectId block = sample_block(*database);
    asdkBlockJig jig(block);
    std::vector<std::unique_ptr<AcDbAttribute>> attributes;
    if (jig.drag() == AcEdJig::kNormal && ask_attributes(block, attributes)) {
        attach(*database, jig.append(), std::move(attributes));
    }
}

void ASDKCIRCLE() { asdkMultiJig().place(); }

void ASDKSIGN() {
    SignJig jig({}, {}, {});
    if (jig.pick_first() == AcEdJig::kNormal) {
        jig.drag();
    }
}

template <void (*body)()>
void command() {
    run_at_boundary("Error while running command", body);
}

constexpr std::array<cl_command_row, 3> table{{
    {"ASDKBLOCK", "ASDKBLOCK", &command<ASDKBLOCK>},
    {"ASDKCIRCLE", "ASDKCIRCLE", &command<ASDKCIRCLE>},
    {"ASDKSIGN", "ASDKSIGN", &command<ASDKSIGN>},
}};

} // namespace

std::span<const cl_command_row> sample_commands() { return table; }

AcDbObjectId sample_block(AcDbDatabase& database) {
    AcDbObjectId id;
    if (database.blockTable().getAt(sample_block_name, id) == Acad::eOk) {
        return id;
    }
    auto record = std::make_unique<AcDbBlockTableRecord>();
    record->setName(sample_block_name);
    if (database.blockTable().add(std::move(record), id) != Acad::eOk) {
        return AcDbObjectId::kNull;
    }
    append(id, std::make_unique<AcDbCircle>(AcGePoint3d{}, AcGeVector3d::kZAxis, 1));
    auto definition = std::make_unique<AcDbAttributeDefinition>();
    definition->setTag("NAME");
    definition->setPrompt("Name");
    definition->setTextString("Sample");
    definition->setHeight(0.25);
    definition->setPosition({0, -1.5, 0});
    append(id, std::move(definition));
    return id;
}
