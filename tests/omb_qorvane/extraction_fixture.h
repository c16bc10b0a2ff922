// A drawing in memory, the add-on started, and its batch folder read back.
#pragma once

#include "stream_checker.h"

#include "host/db/block_reference.h"
#include "host/db/curves.h"
#include "host/db/database.h"
#include "host/db/faces.h"
#include "host/db/polylines.h"
#include "host/ed/document.h"
#include "omb_qorvane/OMB_Qorvane.h"
#include "omb_qorvane/driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <memory>
#include <string>

/// Answers prompts from a list and keeps what is written.
class ScriptedPort : public AcEdInputPort {
public:
    std::optional<std::string> readLine(const std::string& prompt) override;
    void write(const std::string& text) override { written += text; }
    std::deque<std::string> answers;
    std::string written;
};

class ExtractionTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    AcDbDatabase& db() { return *acDocManager()->curDocument()->database(); }
    AcDbObjectId model() { return db().modelSpaceId(); }
    AcDbObjectId layer(const std::string& name, int color_index = 7);
    AcDbLayerTableRecord& layer_record(AcDbObjectId id);
    AcDbObjectId block(const std::string& name);
    AcDbObjectId material(const std::string& name, std::uint32_t rgb);

    template <class T>
    T& add(std::unique_ptr<T> entity, AcDbObjectId owner = {}) {
        T& raw = *entity;
        AcDbObjectPointer<AcDbBlockTableRecord> record(owner.isNull() ? model() : owner,
                                                       AcDb::kForWrite);
        AcDbObjectId id;
        EXPECT_EQ(record->appendAcDbEntity(std::move(entity), id), Acad::eOk);
        return raw;
    }
    template <class T, class... Args>
    T& make(AcDbObjectId owner, Args&&... args) {
        return add(std::make_unique<T>(std::forward<Args>(args)...), owner);
    }
    AcDbBlockReference& insert(AcDbObjectId block, AcDbObjectId owner = {},
                               const AcGePoint3d& position = {});
    /// A unit square in the ground plane, drawn as the host draws faces.
    AcDbFace& square(AcDbObjectId owner = {});

    /// Runs the extraction without a process and reads the stream; a fault in it fails the test.
    checker::stream extract();
    /// What stands between the material list and END;.
    std::string body() const;
    std::string file(const std::string& name) const;

    std::filesystem::path home, folder;
    ScriptedPort port;
    int result = 0;
};
