#pragma once

#include <atomic>
#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

// One configuration file held in memory, cut down to the one section that was asked for.
// A reader whose path is empty follows no file.
class ConfigSectionReader {
  public:
    // Loads the file (dir + "/" + fileName when no path is held yet, else the held path)
    // and finds the section; any failure empties the reader.
    bool LocateSection(const char* section, const char* fileName, const std::string& dir);
    // Reads a number behind "key" and "=" in the section found.
    bool ReadKey(const char* key, uint32_t& value) const;
    void Clear();

    const std::string& Path() const { return m_sPath; }
    bool HasSection() const { return m_pSectionStart != nullptr; }

    int64_t m_nSize = 0;
    time_t m_tModified = 0;

  private:
    bool Load();

    std::vector<char> m_Buffer;
    char* m_pSectionStart = nullptr;
    char* m_pSectionEnd = nullptr;
    std::string m_sPath;
};

// Settings read from the trace configuration. The numbers are read by every thread that
// traces while one of them may update them, so they are atomics.
struct CDebugTraceConfig {
    static constexpr uint32_t kNoFileLevel = 0xFFFFFFFF;

    std::atomic<uint32_t> m_nLevel{0};
    std::atomic<uint32_t> m_nLevelCopy{0};
    std::atomic<uint32_t> m_nFileLevel{0};
    std::atomic<uint32_t> m_nTraceFlags{0};
    std::atomic<bool> m_bEnabled{false};
    std::string m_sModuleName;
    ConfigSectionReader m_GlobalReader;
    ConfigSectionReader m_ModuleReader;
    std::atomic<uint32_t> m_nDynamicUpdate{0};
    std::atomic<uint32_t> m_nUpdateInterval{0};
    std::atomic<time_t> m_tLastCheck{0};
};
