#include "enclosure/EnclosureMap.h"

#include <cstdarg>
#include <cstdio>

namespace {

// printf into a string that grows to fit. Every key is made here, so that records are found
// by plain text equality.
std::string FormatText(const char* pszFormat, ...) __attribute__((format(printf, 1, 2)));
std::string FormatText(const char* pszFormat, ...) {
    std::string text(32, '\0');
    for (;;) {
        va_list args;
        va_start(args, pszFormat);
        int n = vsnprintf(&text[0], text.size(), pszFormat, args);
        va_end(args);
        if (n < 0) {
            return std::string();
        }
        if (static_cast<size_t>(n) < text.size()) {
            text.resize(static_cast<size_t>(n));
            return text;
        }
        text.assign(static_cast<size_t>(n) + 1, '\0');
    }
}

}  // namespace

std::string MakeCabinetKey(uint32_t nCabinet) {
    return FormatText("SAS-ENCL CAB-NR=%d", static_cast<int>(nCabinet));
}

std::string MakeObjectKey(uint32_t nCabinet, uint32_t nIndex) {
    return FormatText("%d-%d", static_cast<int>(nCabinet), static_cast<int>(nIndex));
}

std::string MakeFanDesignation(uint32_t nNumber) {
    return FormatText("Fan_%d", static_cast<int>(nNumber));
}

bool GetCabinetNumbers(const EnclosureMap& map, std::vector<uint32_t>& numbers) {
    for (const auto& entry : map.m_Cabinets) {
        numbers.push_back(entry.second.CabinetNr);
    }
    return !numbers.empty();
}
