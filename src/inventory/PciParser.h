#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Something that reads one block of text lines.
class DataParser {
  public:
    virtual ~DataParser() = default;
    // False when the lines are no block of this kind.
    virtual bool Parse(const std::vector<std::string>& lines) = 0;
};

// One device record of the host's PCI list: 34 to 38 lines, the first the address, every
// other "Key: value". Lines are taken by position; the keys aren't looked at.
class PciParser : public DataParser {
  public:
    static constexpr size_t kMinLines = 34;
    static constexpr size_t kMaxLines = 38;

    // The record's fields in the order of its lines.
    struct Record {
        std::string sAddress;  // 0, the whole line
        std::string sLine1;
        uint32_t nDomain = 0;  // 2 to 5
        uint32_t nBus = 0;
        uint32_t nSlot = 0;
        uint32_t nFunction = 0;
        std::string sLine6;
        std::string sDeviceName;  // 7: the name the host reports
        std::string sLine8;
        std::string sLine9;
        uint32_t nVendorId = 0;  // 10 to 13
        uint32_t nDeviceId = 0;
        uint32_t nSubVendorId = 0;
        uint32_t nSubDeviceId = 0;
        uint32_t nClass = 0;  // 14: base class in the high byte, sub class in the low one
        std::string sLine15;
        uint32_t nProgInterface = 0;  // 16
        uint32_t nRevision = 0;       // 17
        uint32_t nNumbers[7] = {};    // 18 to 24
        std::string sLine25;
        uint32_t nLine26 = 0;
        uint32_t nInterrupt = 0;  // 27, decimal
        std::string sLine28;
        std::string sLine29;  // only in records of 35 lines and more
        bool bFlag1 = false;
        std::string sTail[3];
        bool bFlag2 = false;

        uint8_t BaseClass() const { return static_cast<uint8_t>(nClass / 256); }
        uint8_t SubClass() const { return static_cast<uint8_t>(nClass); }  // the low byte
    };

    bool Parse(const std::vector<std::string>& lines) override;
    const Record& Get() const { return m_Record; }

  private:
    Record m_Record;
};
