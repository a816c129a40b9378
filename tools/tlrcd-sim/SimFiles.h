#pragma once

#include <string>

// Reads a whole file; false if it can't be read.
bool ReadWholeFile(const std::string& path, std::string& text);
