// A drawing in memory and comparing of points, for the tests of drawing.
#pragma once

#include "host/db/block_reference.h"
#include "host/db/database.h"
#include "host/gi/recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <utility>

MATCHER_P(IsNear, p, "") {
    return std::abs(arg.x - p.x) < 1e-9 && std::abs(arg.y - p.y) < 1e-9 &&
           std::abs(arg.z - p.z) < 1e-9;
}
inline void PrintTo(const AcGePoint3d& p, std::ostream* out) {
    *out << "(" << p.x << ", " << p.y << ", " << p.z << ")";
}
inline void PrintTo(const AcGeVector3d& v, std::ostream* out) {
    *out << "<" << v.x << ", " << v.y << ", " << v.z << ">";
}

/// A new drawing with helpers to fill it.
struct Drawing {
    AcDbDatabase db;

    AcDbObjectId block(const std::string& name, const AcGePoint3d& origin = {}) {
        auto record = std::make_unique<AcDbBlockTableRecord>();
        record->setName(name);
        record->setOrigin(origin);
        AcDbObjectId id;
        EXPECT_EQ(db.blockTable().add(std::move(record), id), Acad::eOk);
        return id;
    }
    template <class T>
    T* add(AcDbObjectId block, std::unique_ptr<T> entity) {
        T* raw = entity.get();
        AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForWrite);
        AcDbObjectId id;
        EXPECT_EQ(record->appendAcDbEntity(std::move(entity), id), Acad::eOk);
        return raw;
    }
    template <class T, class... Args>
    T* make(AcDbObjectId block, Args&&... args) {
        return add(block, std::make_unique<T>(std::forward<Args>(args)...));
    }
    AcDbBlockReference* insert(AcDbObjectId into, AcDbObjectId block,
                               const AcGePoint3d& position = {}) {
        auto* reference = make<AcDbBlockReference>(into);
        reference->setBlockTableRecord(block);
        reference->setPosition(position);
        return reference;
    }
    AcDbObjectId model() const { return db.modelSpaceId(); }
};
