// A small batch folder written by hand that holds one of every record.
#pragma once

#include <filesystem>
#include <map>
#include <string>

/// The texts of its files by their names, sub-folders included; files whose form the checker does
/// not know hold a word.
const std::map<std::string, std::string>& good_folder_files();

/// Writes all of it.
void write_good_folder(const std::filesystem::path& folder);
void write_file(const std::filesystem::path& path, const std::string& text);
