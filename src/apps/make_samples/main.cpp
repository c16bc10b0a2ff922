// make_samples OUTDIR: writes the sample drawings, the same bytes on every run.
#include "apps/make_samples/everything.h"
#include "apps/make_samples/samples.h"

#include <cstdio>
#include <exception>

namespace {

struct Sample {
    const char* file;
    void (*build)(make_samples::Drawing&);
};

constexpr Sample kSamples[] = {
    {"courtyard.dxf", make_samples::build_courtyard},   {"room.dxf", make_samples::build_room},
    {"tower.dxf", make_samples::build_tower},           {"solids.dxf", make_samples::build_solids},
    {"everything.dxf", make_samples::build_everything},
};

constexpr int kWorkFailed = 1, kWrongUsage = 2, kCannotWrite = 5;

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || argv[1][0] == '-') {
        std::fputs("usage: make_samples OUTDIR\n", stderr);
        return kWrongUsage;
    }
    const std::filesystem::path folder = argv[1];
    for (const Sample& sample : kSamples) {
        const std::filesystem::path path = folder / sample.file;
        try {
            make_samples::Drawing drawing;
            sample.build(drawing);
            std::string error;
            if (!drawing.write(path, error)) {
                std::fprintf(stderr, "make_samples: %s: %s\n", path.c_str(), error.c_str());
                return kCannotWrite;
            }
        } catch (const std::exception& fault) {
            std::fprintf(stderr, "make_samples: %s: %s\n", sample.file, fault.what());
            return kWorkFailed;
        }
    }
    if (std::string error; !make_samples::write_everything_files(folder, error)) {
        std::fprintf(stderr, "make_samples: %s: %s\n", folder.c_str(), error.c_str());
        return kCannotWrite;
    }
    return 0;
}
