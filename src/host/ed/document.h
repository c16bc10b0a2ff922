// Open drawings and which of them is current.
#pragma once

#include "host/db/database.h"

#include <memory>
#include <string>
#include <vector>

class AcApDocument {
public:
    explicit AcApDocument(std::unique_ptr<AcDbDatabase> database)
      : database_(std::move(database)) {}
    AcDbDatabase* database() const { return database_.get(); }
    /// Full file name with extension; empty when never saved.
    const std::string& fileName() const { return database_->filename(); }

private:
    std::unique_ptr<AcDbDatabase> database_;
};

/// Follows documents.
class AcApDocManagerReactor {
public:
    virtual ~AcApDocManagerReactor() = default;
    virtual void documentCreated(AcApDocument*) {}
    virtual void documentBecameCurrent(AcApDocument*) {}
    virtual void documentToBeDestroyed(AcApDocument*) {}
};

class AcApDocManager {
public:
    AcApDocument* curDocument() const { return current_; }
    /// Takes the drawing over and makes it current.
    AcApDocument* addDocument(std::unique_ptr<AcDbDatabase> database);
    void setCurDocument(AcApDocument* document);
    void closeDocument(AcApDocument* document);
    void closeAll();
    const std::vector<std::unique_ptr<AcApDocument>>& documents() const { return documents_; }
    void addReactor(AcApDocManagerReactor* reactor) { reactors_.push_back(reactor); }
    void removeReactor(AcApDocManagerReactor* reactor);

private:
    std::vector<std::unique_ptr<AcApDocument>> documents_;
    std::vector<AcApDocManagerReactor*> reactors_;
    AcApDocument* current_ = nullptr;
};
AcApDocManager* acDocManager();
