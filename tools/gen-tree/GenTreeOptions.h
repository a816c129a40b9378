#pragma once

#include <cstdint>
#include <string>
#include <vector>

// What gen-tree is asked to write. Counts are per parent: ports per adapter, enclosures
// per port, drives per enclosure.
struct GenTreeOptions {
    uint32_t nAdapters = 2;
    uint32_t nPorts = 2;
    uint32_t nEnclosures = 1;
    uint32_t nDrives = 8;
    uint32_t nPortDrives = 0;  // drives on a port itself, outside its enclosures
    uint32_t nLogicalDrives = 2;
    uint32_t nBatteries = 1;
    uint32_t nFaultPercent = 0;  // share of drives, enclosure parts and batteries not healthy
    uint64_t nSeed = 1;
    std::string sOutput;  // empty: standard output
    bool bHelp = false;
};

// The most drives that one tree may hold, across all adapters.
constexpr uint64_t kMaxTotalDrives = 2000000;

// Reads the command line (without the program name). False with a message in sError for an
// unknown option, a missing or bad value, or a tree that would be too large.
bool ParseGenTreeOptions(const std::vector<std::string>& args, GenTreeOptions& options,
                         std::string& sError);

// The text of --help.
std::string GenTreeUsage();
