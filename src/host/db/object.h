// The root of database objects: identity, opening and closing, extension dictionary, extended data.
#pragma once

#include "host/db/errors.h"
#include "host/db/object_id.h"
#include "host/db/resbuf.h"
#include "host/gi/drawable.h"
#include "host/rx/rxobject.h"

#include <memory>
#include <string>

namespace dxf {
class ObjectTags; // the tags of one object as they stand in the file
class TagWriter;
struct ObjectExtras;
} // namespace dxf

class AcDbDatabase;

namespace AcDb {
enum OpenMode { kForRead = 0, kForWrite = 1, kForNotify = 2 };
enum Visibility { kInvisible = 1, kVisible = 0 };
} // namespace AcDb

/// A drawing's object. Objects belong to their database once added; before that, to their maker.
/// Objects of the drawing are reached through acdbOpenObject and given back with close().
class AcDbObject : public AcGiDrawable {
    ACRX_DECLARE_MEMBERS(AcDbObject)
public:
    AcDbObject();
    ~AcDbObject() override;
    AcDbObject(const AcDbObject&) = delete;
    AcDbObject& operator=(const AcDbObject&) = delete;

    AcDbObjectId objectId() const { return id_; }
    AcDbObjectId ownerId() const { return owner_; }
    void setOwnerId(AcDbObjectId owner) { owner_ = owner; }
    AcDbHandle getAcDbHandle() const { return id_.handle(); }
    AcDbDatabase* database() const { return id_.database(); }
    /// The DXF name under which this very object is stored: the class's, or, for an object of an
    /// unknown kind, the name in the file.
    virtual std::string dxfName() const;

    Acad::ErrorStatus upgradeOpen();
    Acad::ErrorStatus close();
    /// Notes that the object differs from its file; it is then written from its members.
    void assertWriteEnabled();
    bool isModified() const { return modified_; }
    Acad::ErrorStatus erase(bool erasing = true);
    bool isErased() const { return id_.isErased(); }

    /// There may be an extension dictionary or extended data. False is certain, and quick to ask.
    bool mayHaveAttachments() const;
    /// The extension dictionary's id, null when there is none.
    AcDbObjectId extensionDictionary() const;
    Acad::ErrorStatus createExtensionDictionary();
    /// Extended data of one application (its 1001 first), or of all with a null name.
    AcDbValues xData(const char* application = nullptr) const;
    /// Replaces the data of the application that the first value (1001) names; the name is
    /// registered in the drawing. eInvalidInput for a value that does not fit its code.
    Acad::ErrorStatus setXData(const AcDbValues& values);

    // The drawing layer's side: reading from and writing to DXF.
    /// Reads members from the tags; tags that the class does not know stay in the file's span.
    virtual void dxfIn(const dxf::ObjectTags& tags);
    /// Writes the class's own tags, behind handle, groups and owner, from the first 100 on.
    virtual void dxfOut(dxf::TagWriter& writer) const;

protected:
    void register_applications();
    friend class AcDbDatabase;
    friend struct DxfAccess; ///< the DXF reader and writer
    AcDbObjectId id_;
    AcDbObjectId owner_;
    std::uint64_t source_begin_ = 0; ///< span in the drawing's file; length 0 means none
    std::uint32_t source_length_ = 0;
    bool modified_ = false;
    std::uint8_t entity_flags_ = 0;             ///< bits of DxfAccess and AcDbEntity
    std::unique_ptr<dxf::ObjectExtras> extras_; ///< set extended data, extension dictionary
};

/// Opens an object. Several readers or one writer; eWasErased unless `open_erased`.
Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool open_erased = false);

template <class T>
Acad::ErrorStatus acdbOpenObject(T*& object, AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead,
                                 bool open_erased = false) {
    AcDbObject* any = nullptr;
    object = nullptr;
    const Acad::ErrorStatus status = acdbOpenAcDbObject(any, id, mode, open_erased);
    if (status != Acad::eOk) {
        return status;
    }
    object = T::cast(any);
    if (object == nullptr) {
        any->close();
        return Acad::eWrongObjectType;
    }
    return Acad::eOk;
}

/// An open object that closes itself.
template <class T>
class AcDbObjectPointer {
public:
    explicit AcDbObjectPointer(AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead,
                               bool open_erased = false)
      : status_(acdbOpenObject(object_, id, mode, open_erased)) {}
    ~AcDbObjectPointer() {
        if (object_ != nullptr) {
            object_->close();
        }
    }
    AcDbObjectPointer(const AcDbObjectPointer&) = delete;
    AcDbObjectPointer& operator=(const AcDbObjectPointer&) = delete;
    Acad::ErrorStatus openStatus() const { return status_; }
    explicit operator bool() const { return object_ != nullptr; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    T* object() const { return object_; }

private:
    T* object_ = nullptr;
    Acad::ErrorStatus status_;
};
