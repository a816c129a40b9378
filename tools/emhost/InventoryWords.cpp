#include "InventoryWords.h"

#include <map>

namespace inventory_words {

namespace {

std::string Lookup(const std::map<uint32_t, const char*>& words, uint32_t value) {
    auto it = words.find(value);
    std::string word = it != words.end() ? it->second : "unknown";
    return std::to_string(value) + " " + word;
}

}  // namespace

std::string AdapterType(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {
        {0, "SCSI"},  {1, "ATAPI"}, {2, "ATA"},  {3, "1394"}, {4, "SSA"},
        {5, "Fibre"}, {6, "USB"},   {7, "SATA"}, {8, "SAS"},  {9, "PCIe"}};
    return Lookup(words, v);
}

std::string AdapterStatus(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {{0, "OK"}, {1, "warning"}, {2, "failed"}};
    return Lookup(words, v);
}

std::string DriveStatus(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {{0, "operational"},
                                                          {1, "copyback"},
                                                          {2, "available"},
                                                          {3, "unconfigured failed"},
                                                          {4, "dedicated hotspare"},
                                                          {5, "global hotspare"},
                                                          {6, "rebuilding"},
                                                          {8, "rebuild necessary"},
                                                          {9, "JBOD"},
                                                          {10, "migrating"},
                                                          {11, "failed"},
                                                          {12, "failed (missing)"},
                                                          {13, "offline"},
                                                          {14, "shield"},
                                                          {15, "auto replace hotspare"}};
    return Lookup(words, v);
}

std::string DriveType(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {
        {0, "SCSI"}, {7, "SATA"}, {8, "SAS"}, {15, "NVMe"}, {13, "PCI Express"}};
    return Lookup(words, v);
}

std::string SmartFlag(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {
        {0, "no error"}, {1, "SMART error"}, {255, "no statement"}};
    return Lookup(words, v);
}

std::string LogicalDriveStatus(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {{0, "operational"},
                                                          {1, "degraded"},
                                                          {2, "partially degraded"},
                                                          {3, "failed"},
                                                          {4, "impacted"}};
    return Lookup(words, v);
}

std::string BatteryStatus(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {
        {0, "normal"},  {2, "voltage problem"}, {3, "charging"},           {4, "discharging"},
        {5, "warning"}, {6, "failed"},          {8, "temperature problem"}};
    return Lookup(words, v);
}

std::string LearnCycle(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {
        {1, "requested"}, {2, "active"}, {3, "timed out"}, {4, "failed"}, {255, "none of these"}};
    return Lookup(words, v);
}

std::string ComponentStatus(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {
        {0, "unknown"}, {1, "OK"}, {2, "warning"}, {3, "failed"}};
    return Lookup(words, v);
}

}  // namespace inventory_words
