#include "HostOutput.h"

#include <rapidjson/encodings.h>
#include <rapidjson/memorystream.h>

#include <algorithm>

namespace {

// Discards what the validator copies: only its verdict and the stream position are used.
struct NullStream {
    void Put(char) {}
};

bool IsAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return (static_cast<unsigned char>(c) & 0x80) == 0; });
}

}  // namespace

std::string EscapeInvalidUtf8(const std::string& json) {
    if (IsAscii(json))
        return json;
    static const char kDigits[] = "0123456789abcdef";
    std::string out;
    out.reserve(json.size());
    size_t i = 0;
    while (i < json.size()) {
        rapidjson::MemoryStream in(json.data() + i, json.size() - i);
        NullStream discard;
        if (rapidjson::UTF8<>::Validate(in, discard)) {
            out.append(json, i, in.Tell());
            i += in.Tell();
            continue;
        }
        auto byte = static_cast<unsigned char>(json[i++]);
        out += "\\udc";
        out += kDigits[byte >> 4];
        out += kDigits[byte & 0xF];
    }
    return out;
}

void HostOutput::WriteLine(const std::string& json) {
    std::string line = EscapeInvalidUtf8(json);
    std::lock_guard<std::mutex> lock(m_Mutex);
    if (!m_pOut)
        return;
    fwrite(line.data(), 1, line.size(), m_pOut);
    fputc('\n', m_pOut);
    fflush(m_pOut);
}

void HostOutput::Flush() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    if (!m_pOut)
        return;
    fflush(m_pOut);
}
