// A batch program for tests: notes how it was called in the file FAKE_BATCH_LOG and then does what
// FAKE_BATCH says: "exit N", "edit NAME; VALUE" (adds a line to the options file beside the
// parameter file that it was given), "listen" (notes messages until one asks it to close), "sleep".
#include "platform/messages.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include <unistd.h>

namespace {

void note(const std::string& line) {
    std::ofstream(std::getenv("FAKE_BATCH_LOG"), std::ios::app) << line << "\n";
}

int listen() {
    platform::MessagePort port;
    std::string error;
    if (!port.open(error)) {
        note("no port: " + error);
        return 1;
    }
    note("listening");
    for (int i = 0; i < 100; ++i) {
        port.wait(0.2);
        while (const auto message = port.poll()) {
            note("message " + std::to_string(message->number) + " " +
                 std::to_string(message->parameter) + " " + message->text);
            if (message->number == platform::WM_CLOSE || message->parameter == platform::WM_CLOSE) {
                return 0;
            }
        }
    }
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    std::string call = std::filesystem::path(argv[0]).filename().string();
    for (int i = 1; i < argc; ++i) {
        call += std::string("|") + argv[i];
    }
    note(call + "|in " + std::filesystem::current_path().filename().string());
    const char* given = std::getenv("FAKE_BATCH");
    const std::string order = given != nullptr ? given : "";
    if (order.starts_with("edit ")) {
        const std::string argument = argc > 1 ? argv[1] : "";
        const auto params = std::filesystem::path(argument.substr(argument.find(':') + 1));
        std::ofstream(params.parent_path() / "option_globals.txt", std::ios::app)
            << order.substr(5) << "\n";
    }
    if (order == "listen") {
        return listen();
    }
    if (order == "sleep") {
        std::this_thread::sleep_for(std::chrono::seconds(20));
    }
    return order.starts_with("exit ") ? std::atoi(order.c_str() + 5) : 0;
}
