#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

// The tree builder's stack of open elements: where each one's name stands in the text, and its
// record. Names are compared in the text, so nothing is copied.
class OpenNames {
  public:
    struct Entry {
        uint32_t nNameStart;
        uint32_t nNameLength;
        uint32_t iPos;
    };

    explicit OpenNames(const char* pText) : m_pText(pText) { m_aEntries.reserve(7); }

    size_t Size() const { return m_aEntries.size(); }
    const Entry& operator[](size_t i) const { return m_aEntries[i]; }
    const Entry& Top() const { return m_aEntries.back(); }
    std::string_view Name(size_t i) const {
        return {m_pText + m_aEntries[i].nNameStart, m_aEntries[i].nNameLength};
    }
    void Push(uint32_t nNameStart, uint32_t nNameLength, uint32_t iPos) {
        m_aEntries.push_back({nNameStart, nNameLength, iPos});
        if (m_bCounted) {
            CountKeys(Name(m_aEntries.size() - 1), 1);
        }
    }
    void PopTo(size_t nSize) {
        if (m_bCounted) {
            CountDown(nSize);
        }
        m_aEntries.resize(nSize);
    }
    // Index of the topmost entry that an end tag of this name closes, or -1 when none does.
    long Find(std::string_view sEndName) {
        // Well-formed text closes the top one.
        size_t n = m_aEntries.size();
        if (n && !m_bCounted && m_aEntries[n - 1].nNameLength == sEndName.size()) {
            const char* pTop = m_pText + m_aEntries[n - 1].nNameStart;
            size_t i = 0;
            while (i < sEndName.size() && pTop[i] == sEndName[i]) {
                ++i;
            }
            if (i == sEndName.size()) {
                return long(n - 1);
            }
        }
        return FindDeeper(sEndName);
    }

  private:
    long FindDeeper(std::string_view sEndName);
    void CountDown(size_t nSize);
    // An end tag name closes an entry whose name it equals, or a leading part of it that ends
    // in front of '=', '[' or ']'. Each such part is a key.
    template <class F>
    void ForEachKey(std::string_view sName, F f) const;
    void CountKeys(std::string_view sName, int nDelta);

    const char* m_pText;
    std::vector<Entry> m_aEntries;
    // Keys of all open names, kept only once a deep stack has missed an end tag, so that a run
    // of lone end tags under deep nesting costs no scan of the whole stack each.
    bool m_bCounted = false;
    std::unordered_map<std::string_view, uint32_t> m_KeyCounts;
};
