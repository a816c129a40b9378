#include <cstring>

#include "xml/XmlChars.h"
#include "xml/XmlDoc.h"
#include "xml/XmlScanner.h"

void CXmlDoc::SetPosFields(uint32_t iParent, uint32_t iMain, uint32_t iChild) {
    m_iPosParent = iParent;
    m_iPos = iMain;
    m_iPosChild = iChild;
    m_nNodeType = iMain != 0;
    m_nNodeOffset = 0;
    m_nNodeLength = 0;
}

void CXmlDoc::ResetPos() {
    SetPosFields(0, 0, 0);
}

void CXmlDoc::SetPos(uint32_t iParent, uint32_t iMain, uint32_t iChild) {
    SetPosFields(iParent, iMain, iChild);
}

bool CXmlDoc::FindElem(const char* pszPath) {
    if (!IsValidPos(0)) {
        return false;
    }
    uint32_t iPos = FindPos(m_iPosParent, m_iPos, pszPath);
    if (!iPos) {
        return false;
    }
    SetPosFields(Rec(iPos).iElemParent, iPos, 0);
    return true;
}

bool CXmlDoc::FindChildElem(const char* pszPath) {
    if (!m_iPos && !FindElem(nullptr)) {
        return false;
    }
    uint32_t iPos = FindPos(m_iPos, m_iPosChild, pszPath);
    if (!iPos) {
        return false;
    }
    uint32_t iMain = Rec(iPos).iElemParent;
    SetPosFields(Rec(iMain).iElemParent, iMain, iPos);
    return true;
}

bool CXmlDoc::FindPrevElem(const char* pszName) {
    if (!IsValidPos(0)) {
        return false;
    }
    uint32_t iPos;
    if (m_iPos) {
        if (Rec(m_iPos).Has(kElemFirst)) {
            return false;
        }
        iPos = Rec(m_iPos).iElemPrev;
    } else {
        uint32_t iFirst = Rec(m_iPosParent).iElemChild;
        if (!iFirst) {
            return false;
        }
        iPos = Rec(iFirst).iElemPrev;
    }
    bool bAny = !pszName || !*pszName;
    // The walk back ends at the sibling marked first; the count guards against a broken chain.
    for (uint32_t n = 0; IsElem(iPos) && n < m_iPosFree; ++n) {
        if (bAny || TagNameView(iPos) == pszName) {
            SetPosFields(m_iPosParent, iPos, 0);
            return true;
        }
        if (Rec(iPos).Has(kElemFirst)) {
            break;
        }
        iPos = Rec(iPos).iElemPrev;
    }
    return false;
}

bool CXmlDoc::IntoElem() {
    if (!m_iPos || m_nNodeType != 1) {
        return false;
    }
    SetPosFields(m_iPos, m_iPosChild, 0);
    return true;
}

bool CXmlDoc::OutOfElem() {
    if (!m_iPosParent) {
        return false;
    }
    SetPosFields(Rec(m_iPosParent).iElemParent, m_iPosParent, m_iPos);
    return true;
}

bool CXmlDoc::SavePos(const char* pszName, int nMap) {
    if (!pszName) {
        return false;
    }
    if (m_iPosChild) {
        return m_SavedPosMaps.Save(pszName, nMap, m_iPosChild, kSavedChild);
    }
    if (m_iPos) {
        return m_SavedPosMaps.Save(pszName, nMap, m_iPos, kSavedMain);
    }
    return m_SavedPosMaps.Save(pszName, nMap, m_iPosParent, 0);
}

bool CXmlDoc::RestorePos(const char* pszName, int nMap) {
    uint32_t iPos = 0, nKind = 0;
    if (!pszName || !m_SavedPosMaps.Restore(pszName, nMap, iPos, nKind)) {
        return false;
    }
    if (nKind & kSavedChild) {
        uint32_t iMain = Rec(iPos).iElemParent;
        SetPosFields(Rec(iMain).iElemParent, iMain, iPos);
    } else if (nKind & kSavedMain) {
        SetPosFields(Rec(iPos).iElemParent, iPos, 0);
    } else {
        SetPosFields(iPos, 0, 0);
    }
    return true;
}

std::string_view CXmlDoc::TagNameView(uint32_t iPos) const {
    if (!IsElem(iPos)) {
        return {};
    }
    const char* p = m_sDoc.data();
    size_t n = m_sDoc.size();
    size_t i = size_t(Rec(iPos).nStart) + 1;
    while (i < n && XmlIs(p[i], kChWs)) {
        ++i;
    }
    size_t nStart = i < n ? i : n;
    while (i < n && !XmlIs(p[i], kChTagNameEnd)) {
        ++i;
    }
    return {p + nStart, i - nStart};
}

std::string CXmlDoc::GetTagName() const {
    return std::string(TagNameView(m_iPos));
}

std::string CXmlDoc::GetElemTagName(uint32_t iPos) const {
    return std::string(TagNameView(iPos));
}

bool CXmlDoc::ContentRange(uint32_t iPos, uint32_t& nStart, uint32_t& nEnd) const {
    if (!IsElem(iPos)) {
        return false;
    }
    const ElemPos& elem = Rec(iPos);
    uint64_t nDocLen = m_sDoc.size();
    uint64_t nElemEnd = uint64_t(elem.nStart) + elem.nLength;
    nElemEnd = nElemEnd < nDocLen ? nElemEnd : nDocLen;
    uint64_t nS = uint64_t(elem.nStart) + elem.StartTagLen();
    uint64_t nE = nElemEnd >= elem.EndTagLen() ? nElemEnd - elem.EndTagLen() : 0;
    nE = nE > nDocLen ? nDocLen : nE;
    nS = nS > nE ? nE : nS;
    nStart = uint32_t(nS);
    nEnd = uint32_t(nE);
    return true;
}

std::string CXmlDoc::GetData(uint32_t iPos) const {
    std::string sData;
    uint32_t nStart, nEnd;
    const ElemPos& elem = Rec(iPos);
    if (!ContentRange(iPos, nStart, nEnd) || elem.nLength == elem.StartTagLen() ||
        elem.iElemChild || nStart == nEnd) {
        return sData;
    }
    const char* p = m_sDoc.data() + nStart;
    uint32_t nLen = nEnd - nStart;
    if (!std::memchr(p, '<', nLen)) {
        return UnescapeText(std::string_view(p, nLen));
    }
    // Content with markup: text and CDATA sections count, everything else is passed over.
    XmlScanner scanner;
    scanner.pText = p;
    scanner.nTextLength = nLen;
    scanner.nDocFlags = m_nDocFlags;
    scanner.bQuiet = true;
    XmlToken token;
    for (int nType; (nType = ScanToken(scanner, token)) != kTokEndOfText;) {
        if (nType == kTokText) {
            sData += UnescapeText(std::string_view(p + token.nOffset, token.nLength));
        } else if (nType == kTokCData) {
            uint32_t nSkip = token.nLength - 3 < 9 ? token.nLength - 3 : 9;
            sData.append(p + token.nOffset + nSkip, token.nLength - 3 - nSkip);
        }
    }
    return sData;
}

std::string CXmlDoc::GetChildData() const {
    return GetData(m_iPosChild);
}

std::string CXmlDoc::GetSubDoc(uint32_t iPos) const {
    if (!IsElem(iPos)) {
        return std::string();
    }
    const ElemPos& elem = Rec(iPos);
    size_t nDocLen = m_sDoc.size();
    size_t nStart = elem.nStart < nDocLen ? elem.nStart : nDocLen;
    size_t nEnd = size_t(elem.nStart) + elem.nLength;
    nEnd = nEnd < nDocLen ? nEnd : nDocLen;
    // White space up to the next tag or the end comes along.
    size_t i = nEnd;
    while (i < nDocLen && XmlIs(m_sDoc[i], kChWs)) {
        ++i;
    }
    if (i == nDocLen || m_sDoc[i] == '<') {
        nEnd = i;
    }
    return m_sDoc.substr(nStart, nEnd - nStart);
}

std::string CXmlDoc::GetElemPath() const {
    std::string sPath;
    for (uint32_t iPos = m_iPos; IsElem(iPos); iPos = Rec(iPos).iElemParent) {
        std::string_view sName = TagNameView(iPos);
        // Count the siblings of this name up to and including this one.
        uint32_t nCount = 0;
        uint32_t iSib = Rec(Rec(iPos).iElemParent).iElemChild;
        for (; iSib; iSib = Rec(iSib).iElemNext) {
            if (TagNameView(iSib) == sName) {
                ++nCount;
            }
            if (iSib == iPos) {
                break;
            }
        }
        std::string sLevel = "/";
        sLevel += sName;
        if (nCount > 1) {
            sLevel += "[" + std::to_string(nCount) + "]";
        }
        sPath.insert(0, sLevel);
    }
    return sPath;
}
