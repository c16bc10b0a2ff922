// A module that plays the one whose block references are plants: it saves a plant into two files.
#include "host/db/block_reference.h"
#include "host/rx/module.h"

#include <cstdio>
#include <memory>
#include <string>

namespace {

std::string calls;
int behaviour = 0;

void write_word(const char* path, const char* word) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "wb"),
                                                               &std::fclose);
    if (file != nullptr) {
        std::fputs(word, file.get());
    }
}

} // namespace

extern "C" {

AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode, void*) { return AcRx::kRetOK; }
int acrxGetApiVersion() { return kAcrxApiVersion; }

/// 1 when the plant is saved.
int OMB_SavePlant(AcDbBlockReference* plant, const char* plant_path, const char* definition_path) {
    calls += std::to_string(plant->getAcDbHandle().value()) + " " + plant_path + " " +
             definition_path + "\n";
    if (behaviour == 2) {
        return 0;
    }
    write_word(plant_path, "plant");
    if (behaviour != 1) {
        write_word(definition_path, "definition");
    }
    return 1;
}

/// A line a call: handle and the two paths.
const char* plantCalls() { return calls.c_str(); }
/// 0 saves both files, 1 forgets the definition, 2 says that it is no plant of its own.
void plantBehaviour(int value) { behaviour = value; }

} // extern "C"
