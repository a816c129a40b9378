#include <cstring>
#include <utility>

#include "xml/OpenNames.h"
#include "xml/XmlChars.h"
#include "xml/XmlDoc.h"
#include "xml/XmlScanImpl.h"

namespace {

// Reports are dropped once the result is this long.
constexpr size_t kReportLimit = 999;

// Whether the end tag at p is "</" and exactly the name of the open element, then '>'.
inline bool EndsInnermost(const char* pText, uint32_t p, uint32_t nTextLength,
                          const OpenNames::Entry& open) {
    uint32_t nEnd = p + 2 + open.nNameLength;
    if (nEnd >= nTextLength || pText[nEnd] != '>') {
        return false;
    }
    const char* pName = pText + open.nNameStart;
    const char* pEnd = pText + p + 2;
    for (uint32_t i = 0; i < open.nNameLength; ++i) {
        if (pName[i] != pEnd[i]) {
            return false;
        }
    }
    return true;
}

}  // namespace

CXmlDoc::CXmlDoc() {
    SetDoc(nullptr);
}

CXmlDoc::~CXmlDoc() = default;

void CXmlDoc::SetDoc(const char* pszDoc) {
    if (!pszDoc) {
        std::string().swap(m_sDoc);
        m_sResult.clear();
        m_SavedPosMaps.Clear();
        m_aPos.Free();
        m_iPosFree = 0;
        m_iPosDeleted = 0;
        m_nDocFlags = 0;
        SetPosFields(0, 0, 0);
        return;
    }
    m_sDoc.assign(pszDoc);
    Parse();
}

bool CXmlDoc::SetDoc(const std::string& sDoc) {
    m_sDoc = sDoc;
    return Parse();
}

bool CXmlDoc::SetDoc(std::string&& sDoc) {
    m_sDoc = std::move(sDoc);
    return Parse();
}

std::string CXmlDoc::TakeDoc() {
    std::string sDoc = std::move(m_sDoc);
    SetDoc(nullptr);
    return sDoc;
}

bool CXmlDoc::IsWellFormed() const {
    if (!IsValidPos(0)) {
        return false;
    }
    const ElemPos& doc = Rec(0);
    return !doc.Has(kDocIllFormed) && doc.iElemChild && !Rec(doc.iElemChild).iElemNext;
}

void CXmlDoc::InitIndex() {
    m_iPosFree = 0;
    m_iPosDeleted = 0;
    // Room for a document denser in elements than most, so that the first segment seldom
    // moves while it fills; what is left over is given back after the parse.
    m_aPos.Reserve(uint32_t(m_sDoc.size() / 40 + 8));
    m_aPos[0] = ElemPos{};
    m_aPos[0].nLength = uint32_t(m_sDoc.size());
    m_iPosFree = 1;
}

uint32_t CXmlDoc::TakeRecordSlow() {
    if (m_iPosDeleted) {
        uint32_t iPos = m_iPosDeleted;
        m_iPosDeleted = m_aPos[iPos].iElemNext;
        m_aPos[iPos].Clear(kElemDeleted);
        return iPos;
    }
    if (m_iPosFree >= m_aPos.Capacity()) {
        m_aPos.Grow();
    }
    return m_iPosFree++;
}

bool CXmlDoc::Parse() {
    m_SavedPosMaps.Clear();
    m_sResult.clear();
    m_nDocFlags = 0;
    if (m_sDoc.size() > kMaxDocLength) {
        m_aPos.Free();
        m_iPosFree = 0;
        m_iPosDeleted = 0;
        SetPosFields(0, 0, 0);
        return false;
    }
    InitIndex();
    if (!m_sDoc.empty()) {
        XmlScanner scanner;
        scanner.pText = m_sDoc.data();
        scanner.nTextLength = uint32_t(m_sDoc.size());
        scanner.nDocFlags = m_nDocFlags;
        uint32_t iPosRoot = ParseElements(0, scanner);
        m_aPos[0].nLength = uint32_t(m_sDoc.size());
        if (iPosRoot == 0) {
            Report(m_sResult, "no_root_element", nullptr, -1, -1);
        } else if (m_aPos[iPosRoot].iElemNext) {
            Report(m_sResult, "root_has_sibling", nullptr, -1, -1);
        }
    }
    m_aPos.ShrinkTo(m_iPosFree);
    SetPosFields(0, 0, 0);
    return IsWellFormed();
}

uint32_t CXmlDoc::ParseElements(uint32_t iPosTop, XmlScanner& scanner) {
    const char* pText = scanner.pText;
    const uint32_t nTextLength = scanner.nTextLength;
    const uint32_t nTopLevel = m_aPos[iPosTop].Level();
    OpenNames names(pText);
    XmlToken token;
    uint32_t iPosCur = iPosTop;
    uint32_t iPosFirst = 0;
    // First and last child of the current element, so that linking a new one reads no record.
    uint32_t iPosCurFirst = m_aPos[iPosTop].iElemChild;
    uint32_t iPosCurLast = iPosCurFirst ? m_aPos[iPosCurFirst].iElemPrev : 0;

    // Ends the open elements from the top of the stack down to nKeep (exclusive), deepest
    // first: each loses its end, and its children follow it as siblings.
    auto endUnended = [&](size_t nKeep, uint32_t nOffset2) {
        m_aPos[iPosTop].Set(kDocIllFormed);
        bool bIllFormed = false;
        for (size_t i = names.Size(); i-- > nKeep;) {
            ElemPos& elem = m_aPos[names[i].iPos];
            elem.Set(kElemUnended);
            elem.SetEndTagLen(0);
            elem.nLength = elem.StartTagLen();
            bIllFormed |= elem.Has(kElemIllFormed);
            elem.Clear(kElemIllFormed);
            if (m_sResult.size() <= kReportLimit) {
                Report(m_sResult, "unended_start_tag", std::string(names.Name(i)).c_str(),
                       int(elem.nStart), int(nOffset2));
            }
        }
        // Taken from the shallowest down, every child ends up under the shallowest one's
        // parent, in the same order as one element at a time would leave them.
        uint32_t iPosUp = m_aPos[names[nKeep].iPos].iElemParent;
        if (bIllFormed) {
            m_aPos[iPosUp].Set(kElemIllFormed);
        }
        uint32_t iPosLast = names[names.Size() - 1].iPos;
        for (size_t i = nKeep; i < names.Size(); ++i) {
            uint32_t iPos = names[i].iPos;
            uint32_t iPosChild = m_aPos[iPos].iElemChild;
            if (!iPosChild) {
                continue;
            }
            iPosLast = m_aPos[iPosChild].iElemPrev;
            for (uint32_t iPosMove = iPosChild; iPosMove; iPosMove = m_aPos[iPosMove].iElemNext) {
                m_aPos[iPosMove].iElemParent = iPosUp;
            }
            m_aPos[iPosChild].Clear(kElemFirst);
            m_aPos[iPosChild].iElemPrev = iPos;
            m_aPos[iPos].iElemNext = iPosChild;
            m_aPos[iPos].iElemChild = 0;
        }
        m_aPos[m_aPos[iPosUp].iElemChild].iElemPrev = iPosLast;
        names.PopTo(nKeep);
    };

    while (true) {
        // Text between markup makes no record: go straight to the next '<'.
        uint32_t p = scanner.nOffset;
        if (p < nTextLength && pText[p] != '<') {
            p = XmlFind(pText, p, nTextLength, '<');
            if (p == nTextLength) {
                break;
            }
            scanner.nOffset = p;
        }
        if (names.Size() && p + 1 < nTextLength && pText[p + 1] == '/' &&
            EndsInnermost(pText, p, nTextLength, names.Top())) {
            // "</name>" of the innermost open element, the most common end tag, is taken in
            // place: scanning it and searching the open names would give the same.
            uint32_t iPos = names.Top().iPos;
            uint32_t nEnd = p + 3 + names.Top().nNameLength;
            ElemPos& elem = m_aPos[iPos];
            elem.nLength = nEnd - elem.nStart;
            elem.SetEndTagLen(nEnd - p);
            names.PopTo(names.Size() - 1);
            iPosCur = elem.iElemParent;
            iPosCurLast = iPos;
            iPosCurFirst = m_aPos[iPosCur].iElemChild;
            scanner.nOffset = nEnd;
            continue;
        }
        TokenScan scan(scanner, token);
        int nType = p + 1 < nTextLength && XmlIs(pText[p + 1], kChNameStart)
                        ? scan.ScanStartTagHere()
                        : scan.Scan();
        if (nType == kTokStartTag && token.nLength > ElemPos::kStartTagMask) {
            // Its length doesn't fit the record: no element is made, and the document is
            // refused rather than read with a wrapped length.
            m_aPos[iPosTop].Set(kDocIllFormed);
            m_aPos[iPosCur].Set(kElemIllFormed);
            if (m_sResult.size() <= kReportLimit) {
                std::string sName(pText + scanner.nNameStart, scanner.NameLength());
                Report(m_sResult, kStartTagTooLong, sName.c_str(), int(token.nOffset), -1);
            }
        } else if (nType == kTokStartTag) {
            uint32_t iPos = TakeRecord();
            ElemPos& elem = m_aPos[iPos];
            ElemPos& parent = m_aPos[iPosCur];
            elem.nStart = token.nOffset;
            elem.nTagLengths = token.nLength;
            elem.nLevelFlags = (uint32_t(names.Size()) + nTopLevel) & 0xFFFF;
            elem.iElemParent = iPosCur;
            elem.iElemChild = 0;
            elem.iElemNext = 0;
            if (!iPosCurFirst) {
                parent.iElemChild = iPos;
                elem.iElemPrev = iPos;
                elem.nLevelFlags |= kElemFirst;
                iPosCurFirst = iPos;
            } else {
                elem.iElemPrev = iPosCurLast;
                m_aPos[iPosCurLast].iElemNext = iPos;
                m_aPos[iPosCurFirst].iElemPrev = iPos;
            }
            iPosCurLast = iPos;
            if (!iPosFirst) {
                iPosFirst = iPos;
            }
            if (token.nFlags & kTokSelfEnded) {
                elem.nLength = token.nLength;
            } else {
                names.Push(scanner.nNameStart, scanner.NameLength(), iPos);
                iPosCur = iPos;
                iPosCurFirst = iPosCurLast = 0;
            }
        } else if (nType == kTokEndTag) {
            std::string_view sName(pText + scanner.nNameStart, scanner.NameLength());
            long nFound = names.Find(sName);
            if (nFound < 0) {
                m_aPos[iPosTop].Set(kDocIllFormed);
                m_aPos[iPosCur].Set(kElemIllFormed);
                if (m_sResult.size() <= kReportLimit) {
                    Report(m_sResult, "lone_end_tag", std::string(sName).c_str(),
                           int(token.nOffset), -1);
                }
                continue;
            }
            uint32_t iPos = names[size_t(nFound)].iPos;
            if (size_t(nFound) + 1 < names.Size()) {
                endUnended(size_t(nFound) + 1, scanner.nNameStart - 1);
            }
            ElemPos& elem = m_aPos[iPos];
            elem.nLength = token.nOffset + token.nLength - elem.nStart;
            elem.SetEndTagLen(token.nLength);
            names.PopTo(size_t(nFound));
            // It was the last child of its parent, and nothing was added there meanwhile.
            iPosCur = elem.iElemParent;
            iPosCurLast = iPos;
            iPosCurFirst = m_aPos[iPosCur].iElemChild;
        } else if (nType == kTokBad) {
            m_aPos[iPosTop].Set(kDocIllFormed);
            m_aPos[iPosCur].Set(kElemIllFormed);
            if (m_sResult.size() <= kReportLimit) {
                m_sResult += token.sReport;
            }
        } else if (nType == kTokEndOfText) {
            break;
        }
    }
    if (names.Size()) {
        endUnended(0, nTextLength);
    }
    return iPosFirst;
}
