// `CTsAcDoc`: the render document of one drawing, and `CTsAcToolkit`, which hands it out.
#pragma once

#include "Kestra_Qor/tsdoc.h"
#include "host/ed/document.h"
#include "host/ge/ge.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

class AcDbEntity;
struct TSAC_LM_CALLBACK_INFO;
using TsAcCallback = int (*)(TSAC_LM_CALLBACK_INFO*);

class CTsAcDoc : public cl_tsdoc {
public:
    explicit CTsAcDoc(AcApDocument* document);
    AcApDocument* Document() const { return document_; }
    AcDbDatabase* Database() const { return document_->database(); }

    /// Unit code and scale by the drawing's insunits; 1 metre a unit when they say nothing.
    void TakeHostUnits();

    /// The table's rows: all materials of the drawing in dictionary order. m_Materials has the
    /// converted material of each row, nameless where the host's cannot be opened or is the holder
    /// of a toolkit material.
    void BuildTsAcMatTable();
    const std::vector<AcDbObjectId>& MaterialRows() const { return rows_; }
    /// The object that holds the toolkit material of a host material, which may be the host
    /// material itself. False when there is none that can be read.
    bool GetTsAcMaterial(AcDbObjectId material, AcDbObjectId& object) const;
    /// The toolkit material of a host material; null without one.
    const CTsMaterial* ToolkitMaterial(AcDbObjectId material) const;

    // What the toolkit knows of an entity.
    bool IsPlant(const AcDbEntity& entity) const;
    bool IsLight(const AcDbEntity& entity) const;
    /// 0 none, 1 a plant record that is a cover, 2 a cover of its own or one that it refers to.
    int IsGroundcover(const AcDbEntity& entity) const;
    /// Number of the first group that the entity is in, -1 without one.
    int GetGroupId(const AcDbEntity& entity) const;

    using CTsDoc::PushTransform;
    void PushTransform(const AcGeMatrix3d& model_to_parent);
    AcGeMatrix3d ModelToWorldTransform() const;
    AcGeMatrix3d WorldToModelTransform() const;

    /// Kept for the toolkit; nothing here calls it.
    void SetCallback(TsAcCallback callback, void* data) {
        callback_ = callback;
        callback_data_ = data;
    }
    bool m_RpcMark = false; ///< an object of the RPC plug-in asked for it in this walk
    void FreeObjectBuffer() { m_ObjectIndex = m_ObjectCount = 0; }

private:
    AcApDocument* document_;
    std::vector<AcDbObjectId> rows_;
    std::unordered_map<AcDbStub*, CTsMaterial> toolkit_materials_;
    TsAcCallback callback_ = nullptr;
    void* callback_data_ = nullptr;
};

/// The view of a document: its camera comes from the active viewport of the drawing.
class CTsAcView {
public:
    explicit CTsAcView(CTsAcDoc& document)
      : document_(document) {}
    /// Reads the camera into the document's view, in metres. False without a viewport.
    bool TakeSettings();

private:
    CTsAcDoc& document_;
};

class CTsAcToolkit {
public:
    /// The render document of the host's current document, made at the first call; null without a
    /// current document.
    CTsAcDoc* CurrentDocument();
    /// Drops what belongs to a document that goes away.
    void DocumentClosed(AcApDocument* document);

private:
    std::vector<std::unique_ptr<CTsAcDoc>> documents_;
};

/// The toolkit object of the process.
CTsAcToolkit* TsAcToolkit();
/// Makes it and takes it away, with the module.
void StartTsAcToolkit();
void StopTsAcToolkit();
