#include "support/TempDir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

TempDir::TempDir() {
    char pattern[] = "/tmp/tlr-test-XXXXXX";
    if (!mkdtemp(pattern))
        throw std::runtime_error("mkdtemp failed");
    m_sPath = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(m_sPath, ignored);
}

std::string TempDir::Write(const std::string& name, const std::string& content) const {
    std::string path = m_sPath + "/" + name;
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
    return path;
}
