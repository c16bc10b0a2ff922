// Handles and object ids.
#pragma once

#include <compare>
#include <cstdint>
#include <functional>

class AcDbObject;
class AcDbDatabase;

/// The persistent name of an object in its drawing, compared as an unsigned 64-bit number.
class AcDbHandle {
public:
    AcDbHandle() = default;
    explicit AcDbHandle(std::uint64_t value)
      : value_(value) {}
    std::uint64_t value() const { return value_; }
    std::uint32_t low() const { return static_cast<std::uint32_t>(value_); }
    bool isNull() const { return value_ == 0; }
    auto operator<=>(const AcDbHandle&) const = default;

private:
    std::uint64_t value_ = 0;
};

/// One row of a database's object table. It outlives the object that it names.
struct AcDbStub {
    AcDbObject* object = nullptr; ///< null while nothing with that handle has been read
    AcDbDatabase* database = nullptr;
    std::uint64_t handle = 0;
    std::int16_t readers = 0;
    bool open_for_write = false;
    bool erased = false;
};

class AcDbObjectId {
public:
    static const AcDbObjectId kNull;
    AcDbObjectId() = default;
    explicit AcDbObjectId(AcDbStub* stub)
      : stub_(stub) {}
    bool isNull() const { return stub_ == nullptr; }
    /// An object of that handle exists and is not erased.
    bool isValid() const { return stub_ != nullptr && stub_->object != nullptr; }
    bool isErased() const { return stub_ == nullptr || stub_->erased; }
    AcDbHandle handle() const { return AcDbHandle(stub_ != nullptr ? stub_->handle : 0); }
    AcDbDatabase* database() const { return stub_ != nullptr ? stub_->database : nullptr; }
    AcDbStub* stub() const { return stub_; }
    bool operator==(const AcDbObjectId&) const = default;
    bool operator<(const AcDbObjectId& other) const {
        return handle().value() < other.handle().value();
    }

private:
    AcDbStub* stub_ = nullptr;
};

inline const AcDbObjectId AcDbObjectId::kNull{};

template <>
struct std::hash<AcDbObjectId> {
    std::size_t operator()(const AcDbObjectId& id) const {
        return std::hash<AcDbStub*>()(id.stub());
    }
};
