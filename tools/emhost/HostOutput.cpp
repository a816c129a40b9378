#include "HostOutput.h"

void HostOutput::WriteLine(const std::string& json) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    if (!m_pOut)
        return;
    fwrite(json.data(), 1, json.size(), m_pOut);
    fputc('\n', m_pOut);
    fflush(m_pOut);
}

void HostOutput::Flush() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    if (!m_pOut)
        return;
    fflush(m_pOut);
}
