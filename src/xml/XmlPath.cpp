#include <cstring>
#include <string_view>

#include "xml/XmlAttribScan.h"
#include "xml/XmlDoc.h"

namespace {

// One step of a path: a name or "*", and at most one predicate.
struct PathSegment {
    enum Predicate { kNone, kIndex, kAttrib, kChild };
    std::string_view sName;
    Predicate nPredicate = kNone;
    uint64_t nIndex = 1;       // [n]
    std::string_view sAttrib;  // [@name] and [@name=value]
    bool bValue = false;
    std::string_view sValue;
    std::string_view sChild;  // [name]
    bool bLast = false;
};

// Reads a path segment by segment without copying it.
class PathReader {
  public:
    enum Lead { kRelative, kAbsolute, kAnywhere };

    explicit PathReader(std::string_view sPath) : m_sPath(sPath) {
        if (m_sPath.substr(0, 2) == "//") {
            m_nLead = kAnywhere;
            m_nStart = 2;
        } else if (m_sPath.substr(0, 1) == "/") {
            m_nLead = kAbsolute;
            m_nStart = 1;
        }
    }
    Lead GetLead() const { return m_nLead; }
    size_t Start() const { return m_nStart; }

    // Checks the whole path before a search; an invalid one matches nothing.
    bool IsValid() const {
        size_t nPos = m_nStart;
        PathSegment seg;
        for (int nCount = 1;; ++nCount) {
            if (!Read(nPos, seg) || (m_nLead == kAnywhere && nCount > 1)) {
                return false;
            }
            if (seg.bLast) {
                return true;
            }
        }
    }

    // Reads the segment at nPos and moves nPos to the next one.
    bool Read(size_t& nPos, PathSegment& seg) const;

  private:
    size_t Until(size_t nPos, const char* pszStops) const {
        while (nPos < m_sPath.size() && !std::strchr(pszStops, m_sPath[nPos])) {
            ++nPos;
        }
        return nPos;
    }
    bool ReadPredicate(size_t& nPos, PathSegment& seg) const;

    std::string_view m_sPath;
    Lead m_nLead = kRelative;
    size_t m_nStart = 0;
};

bool PathReader::ReadPredicate(size_t& nPos, PathSegment& seg) const {
    const size_t n = m_sPath.size();
    if (++nPos >= n) {
        return false;
    }
    char c = m_sPath[nPos];
    if (c >= '1' && c <= '9') {
        seg.nPredicate = PathSegment::kIndex;
        seg.nIndex = 0;
        for (; nPos < n && m_sPath[nPos] >= '0' && m_sPath[nPos] <= '9'; ++nPos) {
            if (seg.nIndex < (uint64_t(1) << 40)) {
                seg.nIndex = seg.nIndex * 10 + uint64_t(m_sPath[nPos] - '0');
            }
        }
    } else if (c == '@') {
        seg.nPredicate = PathSegment::kAttrib;
        size_t nEnd = Until(++nPos, "=]");
        seg.sAttrib = m_sPath.substr(nPos, nEnd - nPos);
        nPos = nEnd;
        if (seg.sAttrib.empty() || nPos >= n) {
            return false;
        }
        if (m_sPath[nPos] == '=') {
            seg.bValue = true;
            char q = ++nPos < n ? m_sPath[nPos] : 0;
            if (q == '"' || q == '\'') {
                nEnd = m_sPath.find(q, ++nPos);
                if (nEnd == std::string_view::npos) {
                    return false;
                }
                seg.sValue = m_sPath.substr(nPos, nEnd - nPos);
                nPos = nEnd + 1;
            } else {
                nEnd = Until(nPos, "]");
                seg.sValue = m_sPath.substr(nPos, nEnd - nPos);
                nPos = nEnd;
            }
        }
    } else {
        seg.nPredicate = PathSegment::kChild;
        size_t nEnd = Until(nPos, "]");
        seg.sChild = m_sPath.substr(nPos, nEnd - nPos);
        nPos = nEnd;
        if (seg.sChild.empty()) {
            return false;
        }
    }
    if (nPos >= n || m_sPath[nPos] != ']') {
        return false;
    }
    ++nPos;
    return nPos == n || m_sPath[nPos] == '/';
}

bool PathReader::Read(size_t& nPos, PathSegment& seg) const {
    const size_t n = m_sPath.size();
    seg = PathSegment();
    size_t nEnd = Until(nPos, " /=[]");
    seg.sName = m_sPath.substr(nPos, nEnd - nPos);
    nPos = nEnd;
    if (seg.sName.empty()) {
        return false;
    }
    if (nPos < n && m_sPath[nPos] == '[' && !ReadPredicate(nPos, seg)) {
        return false;
    }
    if (nPos == n) {
        seg.bLast = true;
        return true;
    }
    if (m_sPath[nPos] != '/' || ++nPos == n) {
        return false;
    }
    if (m_sPath[nPos] == '@') {
        // A last "/@name" selects an attribute: the search stops at this segment's element.
        std::string_view sAttrib = m_sPath.substr(nPos + 1);
        if (sAttrib.empty() || sAttrib.find('/') != std::string_view::npos) {
            return false;
        }
        nPos = n;
        seg.bLast = true;
    }
    return true;
}

}  // namespace

// The search of a path below a parent, from a start position, in the index of one document.
class XmlPathSearch {
  public:
    XmlPathSearch(const CXmlDoc& doc, uint32_t iPosParent) : m_doc(doc), m_iPosParent(iPosParent) {}

    uint32_t Find(uint32_t iPosStart, const char* pszPath) const;

  private:
    const ElemPos& Rec(uint32_t iPos) const { return m_doc.Rec(iPos); }
    bool NameIs(uint32_t iPos, std::string_view sName) const {
        return sName == "*" || m_doc.TagNameView(iPos) == sName;
    }
    // Next element in document order below the parent.
    uint32_t NextInOrder(uint32_t iPos) const;
    bool Matches(uint32_t iPos, const PathSegment& seg) const;

    const CXmlDoc& m_doc;
    uint32_t m_iPosParent;
};

uint32_t XmlPathSearch::NextInOrder(uint32_t iPos) const {
    if (Rec(iPos).iElemChild) {
        return Rec(iPos).iElemChild;
    }
    for (; iPos && iPos != m_iPosParent; iPos = Rec(iPos).iElemParent) {
        if (Rec(iPos).iElemNext) {
            return Rec(iPos).iElemNext;
        }
    }
    return 0;
}

bool XmlPathSearch::Matches(uint32_t iPos, const PathSegment& seg) const {
    if (seg.nPredicate == PathSegment::kChild) {
        for (uint32_t i = Rec(iPos).iElemChild; i; i = Rec(i).iElemNext) {
            if (m_doc.TagNameView(i) == seg.sChild) {
                return true;
            }
        }
        return false;
    }
    if (seg.nPredicate != PathSegment::kAttrib) {
        return true;
    }
    XmlAttribScan scan(m_doc, iPos);
    XmlAttribScan::Item item;
    if (!scan.Find(seg.sAttrib, item)) {
        return false;
    }
    if (!seg.bValue) {
        return true;
    }
    // Both sides are compared unescaped; most values hold no reference and need no copy.
    std::string_view sRaw = item.bValue ? scan.RawValue(item) : scan.Name(item);
    if (sRaw.find('&') == std::string_view::npos &&
        seg.sValue.find('&') == std::string_view::npos) {
        return sRaw == seg.sValue;
    }
    return CXmlDoc::UnescapeText(sRaw) == CXmlDoc::UnescapeText(seg.sValue);
}

uint32_t XmlPathSearch::Find(uint32_t iPosStart, const char* pszPath) const {
    PathReader path(pszPath ? pszPath : "");
    if (!pszPath || !*pszPath) {
        return iPosStart ? Rec(iPosStart).iElemNext : Rec(m_iPosParent).iElemChild;
    }
    if (!path.IsValid()) {
        return 0;
    }
    bool bAnywhere = path.GetLead() == PathReader::kAnywhere;
    uint32_t iPos;
    if (path.GetLead() == PathReader::kAbsolute) {
        iPos = Rec(0).iElemChild;
    } else if (bAnywhere) {
        iPos = iPosStart ? NextInOrder(iPosStart) : Rec(m_iPosParent).iElemChild;
    } else {
        iPos = iPosStart ? Rec(iPosStart).iElemNext : Rec(m_iPosParent).iElemChild;
    }
    size_t nPos = path.Start();
    PathSegment seg;
    path.Read(nPos, seg);
    while (iPos) {
        if (!NameIs(iPos, seg.sName) || !Matches(iPos, seg)) {
            iPos = bAnywhere ? NextInOrder(iPos) : Rec(iPos).iElemNext;
            continue;
        }
        for (uint64_t n = 1; n < seg.nIndex; ++n) {
            do {
                iPos = Rec(iPos).iElemNext;
            } while (iPos && !NameIs(iPos, seg.sName));
            if (!iPos) {
                return 0;
            }
        }
        if (seg.bLast) {
            return iPos;
        }
        // No backtracking: a match descends for good.
        iPos = Rec(iPos).iElemChild;
        path.Read(nPos, seg);
    }
    return 0;
}

uint32_t CXmlDoc::FindPos(uint32_t iPosParent, uint32_t iPos, const char* pszPath) const {
    return XmlPathSearch(*this, iPosParent).Find(iPos, pszPath);
}
