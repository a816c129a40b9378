#include "xml/OpenNames.h"

namespace {

constexpr size_t kDeepStack = 64;

bool Closes(std::string_view sOpen, std::string_view sEnd) {
    if (sOpen.size() < sEnd.size() || sOpen.compare(0, sEnd.size(), sEnd) != 0) {
        return false;
    }
    if (sOpen.size() == sEnd.size()) {
        return true;
    }
    char c = sOpen[sEnd.size()];
    return c == ' ' || c == '/' || c == '=' || c == '[' || c == ']';
}

}  // namespace

template <class F>
void OpenNames::ForEachKey(std::string_view sName, F f) const {
    for (size_t i = 0; i < sName.size(); ++i) {
        char c = sName[i];
        if (c == ' ' || c == '/' || c == '=' || c == '[' || c == ']') {
            f(sName.substr(0, i));
        }
    }
    f(sName);
}

void OpenNames::CountKeys(std::string_view sName, int nDelta) {
    ForEachKey(sName, [&](std::string_view sKey) {
        uint32_t& n = m_KeyCounts[sKey];
        n += uint32_t(nDelta);
        if (n == 0) {
            m_KeyCounts.erase(sKey);
        }
    });
}

void OpenNames::CountDown(size_t nSize) {
    for (size_t i = nSize; i < m_aEntries.size(); ++i) {
        CountKeys(Name(i), -1);
    }
}

long OpenNames::FindDeeper(std::string_view sEndName) {
    if (m_bCounted && m_KeyCounts.find(sEndName) == m_KeyCounts.end()) {
        return -1;
    }
    for (size_t i = m_aEntries.size(); i-- > 0;) {
        if (Closes(Name(i), sEndName)) {
            return long(i);
        }
    }
    if (!m_bCounted && m_aEntries.size() > kDeepStack) {
        m_bCounted = true;
        for (size_t i = 0; i < m_aEntries.size(); ++i) {
            CountKeys(Name(i), 1);
        }
    }
    return -1;
}
