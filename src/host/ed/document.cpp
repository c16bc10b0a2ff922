// Open drawings.
#include "host/ed/document.h"

#include "host/ed/state.h"

#include <algorithm>

AcApDocManager* acDocManager() {
    static AcApDocManager manager;
    return &manager;
}

AcApDocument* AcApDocManager::addDocument(std::unique_ptr<AcDbDatabase> database) {
    documents_.push_back(std::make_unique<AcApDocument>(std::move(database)));
    AcApDocument* document = documents_.back().get();
    // A reactor may add or remove reactors, so each round goes over a copy.
    for (AcApDocManagerReactor* reactor : std::vector(reactors_)) {
        reactor->documentCreated(document);
    }
    setCurDocument(document);
    return document;
}

void AcApDocManager::setCurDocument(AcApDocument* document) {
    if (document == current_) {
        return;
    }
    current_ = document;
    ed::state().ucs = {};
    ed::state().last_point = {};
    acdbSetCurDwg(document != nullptr ? document->database() : nullptr);
    for (AcApDocManagerReactor* reactor : std::vector(reactors_)) {
        reactor->documentBecameCurrent(document);
    }
}

void AcApDocManager::closeDocument(AcApDocument* document) {
    const auto found = std::find_if(documents_.begin(), documents_.end(),
                                    [&](const auto& held) { return held.get() == document; });
    if (found == documents_.end()) {
        return;
    }
    for (AcApDocManagerReactor* reactor : std::vector(reactors_)) {
        reactor->documentToBeDestroyed(document);
    }
    const std::unique_ptr<AcApDocument> closing = std::move(*found);
    documents_.erase(found);
    if (current_ == document) {
        setCurDocument(documents_.empty() ? nullptr : documents_.back().get());
    }
}

void AcApDocManager::closeAll() {
    while (!documents_.empty()) {
        closeDocument(documents_.back().get());
    }
}

void AcApDocManager::removeReactor(AcApDocManagerReactor* reactor) {
    std::erase(reactors_, reactor);
}
