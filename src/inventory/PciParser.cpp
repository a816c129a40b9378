#include "inventory/PciParser.h"

#include <cstdio>

namespace {

constexpr char kTrailingBlanks[] = " \n\r\t";

// The value of a "Key: value" line: what stands two characters behind the first colon.
std::string ValueOf(const std::string& line) {
    size_t colon = line.find(':');
    if (colon == std::string::npos || colon + 2 > line.size())
        return std::string();
    return line.substr(colon + 2);
}

uint32_t Hex(const std::string& text) {
    unsigned int value = 0;
    sscanf(text.c_str(), "%x", &value);
    return value;
}

uint32_t Decimal(const std::string& text) {
    unsigned int value = 0;
    sscanf(text.c_str(), "%u", &value);
    return value;
}

}  // namespace

bool PciParser::Parse(const std::vector<std::string>& lines) {
    if (lines.size() < kMinLines || lines.size() > kMaxLines)
        return false;
    std::vector<std::string> v(lines.size());
    for (size_t i = 0; i < lines.size(); ++i) {
        std::string line = lines[i];
        size_t end = line.find_last_not_of(kTrailingBlanks);
        line.erase(end == std::string::npos ? 0 : end + 1);
        v[i] = i == 0 ? line : ValueOf(line);
    }

    Record r;
    r.sAddress = v[0];
    r.sLine1 = v[1];
    r.nDomain = Hex(v[2]);
    r.nBus = Hex(v[3]);
    r.nSlot = Hex(v[4]);
    r.nFunction = Hex(v[5]);
    r.sLine6 = v[6];
    r.sDeviceName = v[7];
    r.sLine8 = v[8];
    r.sLine9 = v[9];
    r.nVendorId = Hex(v[10]);
    r.nDeviceId = Hex(v[11]);
    r.nSubVendorId = Hex(v[12]);
    r.nSubDeviceId = Hex(v[13]);
    r.nClass = Hex(v[14]);
    r.sLine15 = v[15];
    r.nProgInterface = Hex(v[16]);
    r.nRevision = Hex(v[17]);
    for (size_t i = 0; i < 7; ++i)
        r.nNumbers[i] = Hex(v[18 + i]);
    r.sLine25 = v[25];
    r.nLine26 = Hex(v[26]);
    r.nInterrupt = Decimal(v[27]);
    r.sLine28 = v[28];
    // The shortest record lacks line 29's text: its tail starts one line earlier.
    size_t tail = 29;
    if (lines.size() > kMinLines)
        r.sLine29 = v[tail++];
    r.bFlag1 = v[tail] == "true";
    for (size_t i = 0; i < 3; ++i)
        r.sTail[i] = v[tail + 1 + i];
    r.bFlag2 = v[tail + 4] == "true";
    m_Record = r;
    return true;
}
