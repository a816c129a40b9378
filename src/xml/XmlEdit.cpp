#include <algorithm>

#include "xml/XmlAttribScan.h"
#include "xml/XmlChars.h"
#include "xml/XmlDoc.h"

namespace {

constexpr size_t kReportLimit = 999;

// A start tag closed by "/>" and no end tag: "<a/>" or "<a />".
bool IsSelfEnded(const std::string& sDoc, const ElemPos& elem) {
    uint32_t nTag = elem.StartTagLen();
    if (elem.EndTagLen() || elem.Has(kElemUnended) || nTag < 3) {
        return false;
    }
    size_t nEnd = size_t(elem.nStart) + nTag;
    return nEnd <= sDoc.size() && sDoc[nEnd - 1] == '>' && sDoc[nEnd - 2] == '/';
}

}  // namespace

void CXmlDoc::Splice(uint32_t nPlace, uint32_t nReplace, const std::string& sText, bool bReserve) {
    size_t nNewLength = m_sDoc.size() - nReplace + sText.size();
    if (bReserve && nNewLength > m_sDoc.capacity()) {
        // Room for many more, so that adding elements in a row doesn't copy the text each time.
        m_sDoc.reserve(nNewLength + nNewLength / 2 + 128);
    }
    m_sDoc.replace(nPlace, nReplace, sText);
    m_nDocFlags |= kDocChanged;
}

void CXmlDoc::AdjustOffsets(uint32_t iPos, uint32_t nDelta) {
    // Everything behind the edit moves; every element around it grows.
    auto shiftBelow = [this, nDelta](uint32_t iTop) {
        uint32_t i = m_aPos[iTop].iElemChild;
        while (i) {
            m_aPos[i].nStart += nDelta;
            if (m_aPos[i].iElemChild) {
                i = m_aPos[i].iElemChild;
                continue;
            }
            while (i != iTop && !m_aPos[i].iElemNext) {
                i = m_aPos[i].iElemParent;
            }
            i = i == iTop ? 0 : m_aPos[i].iElemNext;
        }
    };
    shiftBelow(iPos);
    for (uint32_t i = iPos; i;) {
        for (uint32_t iSib = m_aPos[i].iElemNext; iSib; iSib = m_aPos[iSib].iElemNext) {
            m_aPos[iSib].nStart += nDelta;
            shiftBelow(iSib);
        }
        i = m_aPos[i].iElemParent;
        m_aPos[i].nLength += nDelta;
    }
}

void CXmlDoc::ReplaceTexts(const std::vector<XmlTextEdit>& aEdits) {
    // The text, copied once with every edit in its place; and for each edit the offset it
    // starts at and the growth of the text up to its end.
    std::vector<uint32_t> aPlaces;
    std::vector<int64_t> aGrowth;
    std::string sDoc;
    size_t nCopied = 0;
    int64_t nGrowth = 0;
    for (const XmlTextEdit& edit : aEdits) {
        if (edit.nPlace < nCopied || edit.nPlace > m_sDoc.size()) {
            continue;
        }
        const size_t nReplace = std::min<size_t>(edit.nReplace, m_sDoc.size() - edit.nPlace);
        if (sDoc.empty()) {
            sDoc.reserve(m_sDoc.size() + m_sDoc.size() / 16);
        }
        sDoc.append(m_sDoc, nCopied, edit.nPlace - nCopied);
        sDoc += edit.sText;
        nCopied = edit.nPlace + nReplace;
        nGrowth += int64_t(edit.sText.size()) - int64_t(nReplace);
        aPlaces.push_back(edit.nPlace);
        aGrowth.push_back(nGrowth);
        if (edit.iText && IsElem(edit.iText)) {
            RecW(edit.iText).Clear(kElemIllFormed);
        }
    }
    if (aPlaces.empty()) {
        return;
    }
    sDoc.append(m_sDoc, nCopied, std::string::npos);
    m_sDoc = std::move(sDoc);
    m_nDocFlags |= kDocChanged;
    // An offset moves by the growth of the edits that start before it.
    auto moved = [&](uint64_t nOffset) {
        size_t n =
            size_t(std::lower_bound(aPlaces.begin(), aPlaces.end(), nOffset) - aPlaces.begin());
        return uint32_t(int64_t(nOffset) + (n ? aGrowth[n - 1] : 0));
    };
    m_aPos[0].nLength = uint32_t(m_sDoc.size());
    for (uint32_t i = 1; i < m_iPosFree; ++i) {
        ElemPos& elem = m_aPos[i];
        if (elem.Has(kElemDeleted)) {
            continue;
        }
        const uint32_t nStart = moved(elem.nStart);
        const uint32_t nTagEnd = moved(uint64_t(elem.nStart) + elem.StartTagLen());
        const uint32_t nEnd = moved(uint64_t(elem.nStart) + elem.nLength);
        elem.nStart = nStart;
        elem.SetStartTagLen(nTagEnd - nStart);
        elem.nLength = nEnd - nStart;
    }
}

bool CXmlDoc::AddElem(const char* pszName, const char* pszValue, uint32_t nFlags) {
    return AddElemImpl(pszName, pszValue, nFlags);
}

bool CXmlDoc::AddChildElem(const char* pszName, const char* pszValue, uint32_t nFlags) {
    return AddElemImpl(pszName, pszValue, nFlags | XmlChild);
}

bool CXmlDoc::AddElemImpl(const char* pszName, const char* pszValue, uint32_t nFlags) {
    const bool bChild = (nFlags & XmlChild) != 0;
    const bool bNoLines = (nFlags & XmlNoLines) != 0;
    const bool bValue = pszValue && *pszValue;
    if (!pszName || !*pszName || (bChild && !m_iPos) || ((nFlags & XmlNoEndTag) && bValue)) {
        return false;
    }
    if (!IsValidPos(0)) {
        if (m_sDoc.size() > kMaxDocLength) {
            return false;
        }
        InitIndex();
    }
    const uint32_t iParent = bChild ? m_iPos : m_iPosParent;
    uint32_t iSib = bChild ? m_iPosChild : m_iPos;
    // The positions must hold a parent and one of its children.
    if ((iParent && !IsElem(iParent)) ||
        (iSib && (!IsElem(iSib) || Rec(iSib).iElemParent != iParent))) {
        return false;
    }

    const std::string_view sName(pszName);
    std::string sElem = "<";
    sElem += sName;
    uint32_t nStartTag, nEndTag = 0;
    if (bValue) {
        sElem += '>';
        sElem +=
            (nFlags & XmlCData) ? WrapCData(pszValue) : EscapeText(pszValue, nFlags & XmlKeepRefs);
        sElem += "</";
        sElem += sName;
        sElem += '>';
        nStartTag = uint32_t(sName.size() + 2);
        nEndTag = uint32_t(sName.size() + 3);
    } else {
        sElem += (nFlags & XmlNoEndTag) ? ">" : (nFlags & XmlSpaceBeforeEnd) ? " />" : "/>";
        nStartTag = uint32_t(sElem.size());
    }

    const ElemPos parent = Rec(iParent);
    const bool bBefore = (nFlags & XmlInsertBefore) && (iSib || parent.iElemChild);
    std::string sText;
    uint32_t nPlace, nReplace = 0, nElemOffset = 0;
    std::string_view sParentName;
    bool bOpenParent = false;
    if (bBefore) {
        iSib = iSib ? iSib : parent.iElemChild;
        nPlace = Rec(iSib).nStart;
        sText = sElem + (bNoLines ? "" : "\n");
    } else {
        uint32_t nContentStart = 0, nContentEnd = uint32_t(m_sDoc.size());
        if (iParent) {
            ContentRange(iParent, nContentStart, nContentEnd);
        }
        if (iSib) {
            nPlace = Rec(iSib).nStart + Rec(iSib).nLength;
        } else {
            nPlace = nContentEnd;  // in front of the parent's end tag
            iSib = parent.iElemChild ? Rec(parent.iElemChild).iElemPrev : 0;
        }
        bOpenParent = iParent && !iSib && IsSelfEnded(m_sDoc, parent);
        bool bEmptyParent = iParent && !iSib && parent.EndTagLen() && nContentStart == nContentEnd;
        if (!bOpenParent && !(nFlags & (XmlNoLines | XmlReplace))) {
            // Behind white space only, the new element goes in front of the next tag, never
            // past the parent's content: a parent without end tag ends where its text does.
            size_t i = nPlace;
            while (i < nContentEnd && XmlIs(m_sDoc[i], kChWs)) {
                ++i;
            }
            if (i == m_sDoc.size() || i >= nContentEnd || m_sDoc[i] == '<') {
                nPlace = uint32_t(i);
            }
        }
        sText = sElem + (bNoLines ? "" : "\n");
        if (bOpenParent) {
            // "<P/>" opens: the new text goes over the '/' and ends with the parent's end tag.
            sParentName = TagNameView(iParent);
            std::string sOpen = bNoLines ? ">" : ">\n";
            nElemOffset = uint32_t(sOpen.size());
            sText = sOpen + sText + "</" + std::string(sParentName);
            nPlace = parent.nStart + parent.StartTagLen() - 2;
            nReplace = 1;
        } else if (bEmptyParent) {
            nPlace = nContentStart;
            if (!bNoLines) {
                sText.insert(0, "\n");
                nElemOffset = 1;
            }
        }
    }
    if (m_sDoc.size() + sText.size() > kMaxDocLength || nStartTag > ElemPos::kStartTagMask) {
        return false;
    }
    Splice(nPlace, nReplace, sText, true);

    const uint32_t iNew = TakeRecord();
    ElemPos& elem = RecW(iNew);
    elem.nStart = nPlace + nElemOffset;
    elem.nLength = uint32_t(sElem.size());
    elem.nTagLengths = 0;
    elem.SetStartTagLen(nStartTag);
    elem.SetEndTagLen(nEndTag);
    elem.nLevelFlags = iParent ? (parent.Level() + 1) & 0xFFFF : 0;
    if (nFlags & XmlNoEndTag) {
        elem.Set(kElemUnended);
    }
    elem.iElemParent = iParent;
    elem.iElemChild = 0;
    if (bOpenParent) {
        ElemPos& p = RecW(iParent);
        p.SetStartTagLen(p.StartTagLen() - 1);
        p.SetEndTagLen(uint32_t(sParentName.size() + 3));
    }
    if (bBefore) {
        ElemPos& sib = RecW(iSib);
        elem.iElemNext = iSib;
        elem.iElemPrev = sib.iElemPrev;
        if (sib.Has(kElemFirst)) {
            sib.Clear(kElemFirst);
            elem.Set(kElemFirst);
            RecW(iParent).iElemChild = iNew;
        } else {
            RecW(sib.iElemPrev).iElemNext = iNew;
        }
        sib.iElemPrev = iNew;
    } else if (iSib) {
        ElemPos& sib = RecW(iSib);
        elem.iElemNext = sib.iElemNext;
        elem.iElemPrev = iSib;
        // Both neighbours point back; behind the last one, the first child's prev does.
        RecW(sib.iElemNext ? sib.iElemNext : RecW(iParent).iElemChild).iElemPrev = iNew;
        sib.iElemNext = iNew;
    } else {
        elem.Set(kElemFirst);
        elem.iElemNext = 0;
        elem.iElemPrev = iNew;
        RecW(iParent).iElemChild = iNew;
    }
    AdjustOffsets(iNew, uint32_t(sText.size()) - nReplace);
    if (bChild) {
        SetPosFields(m_iPosParent, m_iPos, iNew);
    } else {
        SetPosFields(iParent, iNew, 0);
    }
    return true;
}

bool CXmlDoc::SetAttrib(uint32_t iPos, const char* pszName, const char* pszValue, uint32_t nFlags) {
    if (!IsElem(iPos) || m_nNodeType != 1 || !pszName || !*pszName) {
        return false;
    }
    std::string sValue = EscapeText(pszValue ? pszValue : "", nFlags | XmlAttribText);
    XmlAttribScan scan(*this, iPos);
    XmlAttribScan::Item item;
    std::string sText;
    uint32_t nPlace, nReplace = 0;
    if (scan.Find(pszName, item)) {
        // The value comes out in double quotes, whatever quotes it had.
        if (item.bValue) {
            nPlace = item.nValue;
            nReplace = item.nValueLength;
            sText = "\"" + sValue + "\"";
        } else {
            nPlace = item.nName + item.nNameLength;
            sText = "=\"" + sValue + "\"";
        }
    } else {
        // A quote outside a value runs to the tag's end in the scan: the new attribute still
        // goes in front of the tag's "/>" or ">".
        const ElemPos& elem = Rec(iPos);
        uint32_t nClose = elem.nStart + elem.StartTagLen();
        if (nClose > elem.nStart && m_sDoc[nClose - 1] == '>') {
            nClose -= IsSelfEnded(m_sDoc, elem) ? 2 : 1;
        }
        nPlace = std::min(scan.LastEnd(), nClose);
        sText = " " + std::string(pszName) + "=\"" + sValue + "\"";
    }
    if (m_sDoc.size() - nReplace + sText.size() > kMaxDocLength ||
        RecW(iPos).StartTagLen() - nReplace + sText.size() > ElemPos::kStartTagMask) {
        return false;
    }
    Splice(nPlace, nReplace, sText, false);
    uint32_t nDelta = uint32_t(sText.size()) - nReplace;
    ElemPos& elem = RecW(iPos);
    elem.nLength += nDelta;
    elem.SetStartTagLen(elem.StartTagLen() + nDelta);
    AdjustOffsets(iPos, nDelta);
    return true;
}

bool CXmlDoc::SetAttrib(uint32_t iPos, const char* pszName, int nValue, uint32_t nFlags) {
    return SetAttrib(iPos, pszName, std::to_string(nValue).c_str(), nFlags);
}

bool CXmlDoc::SetData(uint32_t iPos, const char* pszText, uint32_t nFlags) {
    if (!IsElem(iPos) || Rec(iPos).iElemChild) {
        return false;
    }
    std::string_view sIn = pszText ? pszText : "";
    std::string sText = (nFlags & XmlCData) ? WrapCData(sIn) : EscapeText(sIn, nFlags);
    uint32_t nPlace, nReplace, nEnd;
    const ElemPos elem = Rec(iPos);
    const bool bOpen = IsSelfEnded(m_sDoc, elem);
    std::string_view sName;
    if (bOpen) {
        // "<a/>" opens to "<a>text</a>".
        sName = TagNameView(iPos);
        sText = ">" + sText + "</" + std::string(sName) + ">";
        nPlace = elem.nStart + elem.StartTagLen() - 2;
        nReplace = 2;
    } else {
        ContentRange(iPos, nPlace, nEnd);
        nReplace = nEnd - nPlace;
    }
    if (m_sDoc.size() - nReplace + sText.size() > kMaxDocLength) {
        return false;
    }
    Splice(nPlace, nReplace, sText, false);
    uint32_t nDelta = uint32_t(sText.size()) - nReplace;
    ElemPos& rec = RecW(iPos);
    if (bOpen) {
        rec.SetStartTagLen(rec.StartTagLen() - 1);
        rec.SetEndTagLen(uint32_t(sName.size() + 3));
    }
    rec.nLength += nDelta;
    rec.Clear(kElemIllFormed);
    AdjustOffsets(iPos, nDelta);
    return true;
}

void CXmlDoc::Report(std::string& sResult, const char* pszElem, const char* pszTagName, int nOffset,
                     int nOffset2, const char* pszType) {
    if (sResult.size() > kReportLimit) {
        return;
    }
    // The reports form one line of elements, each appended to what is there.
    CXmlDoc doc;
    doc.SetDoc(sResult);
    if (!doc.AddElem(pszElem, "", XmlNoLines)) {
        return;
    }
    uint32_t iPos = doc.m_iPos;
    if (pszTagName) {
        doc.SetAttrib(iPos, "tagname", pszTagName);
    }
    if (pszType) {
        doc.SetAttrib(iPos, "type", pszType);
    }
    if (nOffset != -1) {
        doc.SetAttrib(iPos, "offset", nOffset);
    }
    if (nOffset2 != -1) {
        doc.SetAttrib(iPos, "offset2", nOffset2);
    }
    sResult = std::move(doc.m_sDoc);
}
