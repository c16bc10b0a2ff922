// A command line that is given its lines beforehand.
#pragma once

#include "host/ed/ed.h"

#include <deque>
#include <optional>
#include <string>

/// Plays lines and keeps prompts and what is written.
struct LinePort : AcEdInputPort {
    std::deque<std::string> lines;
    std::string output;
    std::optional<std::string> readLine(const std::string& prompt) override {
        output += prompt;
        if (lines.empty()) {
            return std::nullopt;
        }
        std::string line = lines.front();
        lines.pop_front();
        return line;
    }
    void write(const std::string& text) override { output += text; }
};
