// check_batch_folder DIR...: tells what is wrong with batch folders. 1 when anything is, 2 without
// a folder, else 0.
#include "stream_checker.h"

#include <cstdio>

int main(int count, char** words) {
    if (count < 2) {
        std::fputs("usage: check_batch_folder DIR...\n", stderr);
        return 2;
    }
    bool good = true;
    for (int i = 1; i < count; ++i) {
        for (const std::string& fault : checker::check_folder(words[i])) {
            good = false;
            std::printf("%s: %s\n", words[i], fault.c_str());
        }
    }
    return good ? 0 : 1;
}
