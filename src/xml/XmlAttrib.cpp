#include <cstring>

#include "xml/XmlAttribScan.h"
#include "xml/XmlChars.h"
#include "xml/XmlDoc.h"

XmlAttribScan::XmlAttribScan(const CXmlDoc& doc, uint32_t iPos) : m_p(doc.m_sDoc.data()) {
    if (!doc.IsElem(iPos)) {
        return;
    }
    const ElemPos& elem = doc.Rec(iPos);
    uint64_t nEnd = uint64_t(elem.nStart) + elem.StartTagLen();
    m_nLimit = uint32_t(nEnd < doc.m_sDoc.size() ? nEnd : doc.m_sDoc.size());
    m_nPos = elem.nStart + 1;
    uint32_t nOffset, nLength;
    m_bDone = !Token(false, nOffset, nLength);
    m_nLastEnd = nOffset + nLength;
}

bool XmlAttribScan::Token(bool bValue, uint32_t& nOffset, uint32_t& nLength) {
    while (m_nPos < m_nLimit && XmlIs(m_p[m_nPos], kChWs)) {
        ++m_nPos;
    }
    nOffset = m_nPos;
    nLength = 0;
    if (m_nPos >= m_nLimit) {
        return false;
    }
    char c = m_p[m_nPos];
    uint32_t nEnd = m_nPos;
    if (c == '"' || c == '\'') {
        // An unended quote runs to the end of the tag.
        const void* pQuote = std::memchr(m_p + m_nPos + 1, c, m_nLimit - m_nPos - 1);
        nEnd = pQuote ? uint32_t(static_cast<const char*>(pQuote) - m_p) + 1 : m_nLimit;
    } else if (!bValue && XmlIs(c, kChAttrNameEnd)) {
        nEnd = m_nPos + 1;
    } else {
        uint16_t nStop = bValue ? kChBareEnd : kChAttrNameEnd;
        while (nEnd < m_nLimit && !XmlIs(m_p[nEnd], nStop)) {
            ++nEnd;
        }
    }
    nLength = nEnd - m_nPos;
    m_nPos = nEnd;
    return true;
}

bool XmlAttribScan::Next(Item& item) {
    while (!m_bDone) {
        uint32_t nOffset, nLength;
        if (!Token(false, nOffset, nLength)) {
            break;
        }
        char c = m_p[nOffset];
        if (nLength == 1 && (c == '/' || c == '>' || c == '?')) {
            break;
        }
        if (nLength == 1 && c == '=') {
            // A value without a name counts as no attribute.
            Token(true, nOffset, nLength);
            m_nLastEnd = nOffset + nLength;
            continue;
        }
        item = Item();
        item.nName = nOffset;
        item.nNameLength = nLength;
        m_nLastEnd = nOffset + nLength;
        uint32_t nBack = m_nPos;
        while (m_nPos < m_nLimit && XmlIs(m_p[m_nPos], kChWs)) {
            ++m_nPos;
        }
        if (m_nPos < m_nLimit && m_p[m_nPos] == '=') {
            ++m_nPos;
            item.bValue = true;
            Token(true, item.nValue, item.nValueLength);
            m_nLastEnd = item.nValue + item.nValueLength;
        } else {
            m_nPos = nBack;
        }
        return true;
    }
    m_bDone = true;
    return false;
}

bool XmlAttribScan::Find(std::string_view sName, Item& item) {
    while (Next(item)) {
        if (Name(item) == sName) {
            return true;
        }
    }
    return false;
}

std::string_view XmlAttribScan::RawValue(const Item& item) const {
    std::string_view s(m_p + item.nValue, item.nValueLength);
    if (!s.empty() && (s[0] == '"' || s[0] == '\'')) {
        bool bClosed = s.size() >= 2 && s.back() == s[0];
        s = s.substr(1, s.size() - (bClosed ? 2 : 1));
    }
    return s;
}

std::string XmlAttribScan::Value(const Item& item) const {
    if (!item.bValue) {
        return std::string(Name(item));
    }
    return CXmlDoc::UnescapeText(RawValue(item));
}

std::string CXmlDoc::GetAttrib(uint32_t iPos, const char* pszName) const {
    XmlAttribScan scan(*this, iPos);
    XmlAttribScan::Item item;
    if (!pszName || !scan.Find(pszName, item)) {
        return std::string();
    }
    return scan.Value(item);
}

std::string CXmlDoc::GetAttribName(int nIndex) const {
    XmlAttribScan scan(*this, m_iPos);
    XmlAttribScan::Item item;
    for (int i = 0; nIndex >= 0 && scan.Next(item); ++i) {
        if (i == nIndex) {
            return std::string(scan.Name(item));
        }
    }
    return std::string();
}
