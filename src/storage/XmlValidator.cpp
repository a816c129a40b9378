#include "storage/XmlValidator.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "runtime/DebugClient.h"
#include "xml/XmlAttribScan.h"

namespace {

constexpr char kReplacement = '?';

bool IsPrintableAscii(unsigned char c) {
    return c >= 0x20 && c < 0x7F;
}

bool IsContinuation(unsigned char c) {
    return (c & 0xC0) == 0x80;
}

// The length of the UTF-8 sequence that a lead byte starts; 0 for any other byte.
size_t SequenceLength(unsigned char c) {
    if (c >= 0xC0 && c <= 0xDF) {
        return 2;
    }
    if (c >= 0xE0 && c <= 0xEF) {
        return 3;
    }
    if (c >= 0xF0 && c <= 0xF7) {
        return 4;
    }
    return 0;
}

// Whether CleanText would give the text back as it is: no NUL, every byte below 0x80
// printable, every other one in a complete UTF-8 sequence.
bool IsClean(std::string_view sText) {
    const auto* p = reinterpret_cast<const unsigned char*>(sText.data());
    const auto* pEnd = p + sText.size();
    while (p < pEnd) {
        if (*p < 0x80) {
            if (!IsPrintableAscii(*p)) {
                return false;
            }
            ++p;
            continue;
        }
        const size_t nLength = SequenceLength(*p);
        if (!nLength || size_t(pEnd - p) < nLength) {
            return false;
        }
        for (size_t i = 1; i < nLength; ++i) {
            if (!IsContinuation(p[i])) {
                return false;
            }
        }
        p += nLength;
    }
    return true;
}

// Text that holds neither a reference nor markup reads as it stands.
bool IsPlain(std::string_view sRaw) {
    return !std::memchr(sRaw.data(), '&', sRaw.size()) &&
           !std::memchr(sRaw.data(), '<', sRaw.size());
}

// Attribute lists up to this long find the first of a name by looking through them.
constexpr size_t kShortList = 16;

}  // namespace

std::string CXmlValidator::CleanText(const std::string& sText) {
    // The text ends at its first NUL, and c_str() puts one behind the last byte, so that a
    // sequence cut short by the end fails on it like on any other byte.
    const auto* p = reinterpret_cast<const unsigned char*>(sText.c_str());
    std::string sClean;
    sClean.reserve(sText.size());
    while (*p) {
        if (*p < 0x80) {
            sClean += IsPrintableAscii(*p) ? char(*p) : kReplacement;
            ++p;
            continue;
        }
        size_t nLength = SequenceLength(*p);
        size_t nFollowing = 1;
        while (nLength && nFollowing < nLength && IsContinuation(p[nFollowing])) {
            ++nFollowing;
        }
        if (nLength && nFollowing == nLength) {
            sClean.append(reinterpret_cast<const char*>(p), nLength);
            p += nLength;
        } else {
            sClean += kReplacement;
            ++p;
        }
    }
    return sClean;
}

CXmlValidator::CXmlValidator(CXmlDoc& doc) : m_Doc(doc), m_nDocLength(doc.GetRecord(0).nLength) {
    // A walk in document order through the siblings of the first element and all below them;
    // the place is kept in the document's positions and the depth in a counter.
    uint64_t nDepth = 0;
    for (;;) {
        if (m_Doc.FindChildElem()) {
            CleanAttributes();
            m_Doc.IntoElem();
            ++nDepth;
            continue;
        }
        CleanData();
        while (!m_Doc.FindElem()) {
            if (nDepth == 0) {
                m_Doc.ReplaceTexts(m_aEdits);
                return;
            }
            m_Doc.OutOfElem();
            --nDepth;
        }
    }
}

bool CXmlValidator::AddEdit(XmlTextEdit edit, uint32_t& nTagLength) {
    const int64_t nDelta = int64_t(edit.sText.size()) - int64_t(edit.nReplace);
    if (int64_t(m_nDocLength) + nDelta > int64_t(CXmlDoc::kMaxDocLength) ||
        int64_t(nTagLength) + nDelta > int64_t(ElemPos::kStartTagMask)) {
        return false;
    }
    m_nDocLength = uint64_t(int64_t(m_nDocLength) + nDelta);
    nTagLength = uint32_t(int64_t(nTagLength) + nDelta);
    m_aEdits.push_back(std::move(edit));
    return true;
}

void CXmlValidator::CleanAttributes() {
    const uint32_t iPos = m_Doc.GetMainPos();
    uint32_t nTagLength = m_Doc.GetRecord(iPos).StartTagLen();
    // Each name is looked up as a C string reads it, up to its first NUL, and stands for the
    // first attribute of that name in the tag, if any. That one is cleaned once: a name read
    // again finds it clean, unless its change was left out, and then it is tried again.
    struct First {
        XmlAttribScan::Item item;
        bool bVisited = false;
        bool bLeftOut = false;
    };
    // The first attribute of each name, in the order met; a hash table by name once the list
    // is long.
    std::vector<std::pair<std::string_view, First>> aFirst;
    std::unordered_map<std::string_view, size_t> byName;
    const auto find = [&](std::string_view sName) -> First* {
        if (aFirst.size() <= kShortList) {
            for (auto& [sFirstName, entry] : aFirst) {
                if (sFirstName == sName) {
                    return &entry;
                }
            }
            return nullptr;
        }
        const auto it = byName.find(sName);
        return it == byName.end() ? nullptr : &aFirst[it->second].second;
    };
    const auto add = [&](std::string_view sName, const XmlAttribScan::Item& attrib) -> First* {
        if (First* pFound = find(sName)) {
            return pFound;
        }
        aFirst.emplace_back(sName, First{attrib});
        if (aFirst.size() > kShortList) {
            if (byName.empty()) {
                for (size_t i = 0; i < aFirst.size(); ++i) {
                    byName.emplace(aFirst[i].first, i);
                }
            } else {
                byName.emplace(sName, aFirst.size() - 1);
            }
        }
        return &aFirst.back().second;
    };
    bool bAllNames = false;  // the names behind the scan are in too
    const size_t nFirstEdit = m_aEdits.size();
    XmlAttribScan scan(m_Doc, iPos);
    XmlAttribScan::Item item;
    while (scan.Next(item)) {
        const std::string_view sName = scan.Name(item);
        const size_t nNul = sName.find('\0');
        if (nNul != std::string_view::npos && !bAllNames) {
            // A name cut short may stand for an attribute further on.
            XmlAttribScan rest = scan;
            for (XmlAttribScan::Item other; rest.Next(other);) {
                add(rest.Name(other), other);
            }
            bAllNames = true;
        }
        First* pFirst =
            nNul == std::string_view::npos ? add(sName, item) : find(sName.substr(0, nNul));
        if (!pFirst || (pFirst->bVisited && !pFirst->bLeftOut)) {
            continue;
        }
        pFirst->bVisited = true;
        const XmlAttribScan::Item attrib = pFirst->item;
        if (attrib.bValue) {
            const std::string_view sRaw = scan.RawValue(attrib);
            if (IsPlain(sRaw) && IsClean(sRaw)) {
                continue;  // empty, or unchanged by the cleaning
            }
        }
        const std::string sValue = scan.Value(attrib);
        if (sValue.empty()) {
            continue;
        }
        const std::string sClean = CleanText(sValue);
        if (sClean == sValue) {
            continue;
        }
        TLR_TRACE(1,
                  "\nCXmlValidator       : Warning! Attribute string with non printable "
                  "character detected! \"%s\"",
                  sClean.c_str());
        // The value comes out in double quotes, whatever quotes it had.
        const std::string sQuoted = "\"" + CXmlDoc::EscapeText(sClean, XmlAttribText) + "\"";
        XmlTextEdit edit;
        if (attrib.bValue) {
            edit.nPlace = attrib.nValue;
            edit.nReplace = attrib.nValueLength;
            edit.sText = sQuoted;
        } else {
            edit.nPlace = attrib.nName + attrib.nNameLength;
            edit.sText = "=" + sQuoted;
        }
        pFirst->bLeftOut = !AddEdit(std::move(edit), nTagLength);
    }
    // A name cut short may have changed an attribute behind the next one changed.
    const auto byPlace = [](const XmlTextEdit& a, const XmlTextEdit& b) {
        return a.nPlace < b.nPlace;
    };
    if (!std::is_sorted(m_aEdits.begin() + nFirstEdit, m_aEdits.end(), byPlace)) {
        std::sort(m_aEdits.begin() + nFirstEdit, m_aEdits.end(), byPlace);
    }
}

void CXmlValidator::CleanData() {
    const uint32_t iPos = m_Doc.GetMainPos();
    const ElemPos& elem = m_Doc.GetRecord(iPos);
    uint32_t nStart, nEnd;
    if (!elem.iElemChild && m_Doc.ContentRange(iPos, nStart, nEnd)) {
        const std::string_view sRaw(m_Doc.GetDocText().data() + nStart, nEnd - nStart);
        if (IsPlain(sRaw) && IsClean(sRaw)) {
            return;  // empty, or unchanged by the cleaning
        }
    }
    const std::string sData = m_Doc.GetData(iPos);
    if (sData.empty()) {
        return;
    }
    const std::string sClean = CleanText(sData);
    if (sClean != sData) {
        TLR_TRACE(1,
                  "\nCXmlValidator       :  Warning! Element data string with non printable "
                  "character detected! \"%s\"",
                  sClean.c_str());
        // Text comes only from an element with content, so its tags stay as they are.
        XmlTextEdit edit;
        uint32_t nEnd = 0;
        m_Doc.ContentRange(iPos, edit.nPlace, nEnd);
        edit.nReplace = nEnd - edit.nPlace;
        edit.sText = CXmlDoc::EscapeText(sClean, 0);
        edit.iText = iPos;
        uint32_t nNoTagLimit = 0;
        AddEdit(std::move(edit), nNoTagLimit);
    }
}

std::string CleanStorageTreeText(std::string sText) {
    CXmlDoc doc;
    if (doc.SetDoc(std::move(sText))) {
        doc.SavePos();
        doc.ResetPos();
        if (doc.FindElem()) {
            CXmlValidator validator(doc);
        }
        doc.RestorePos();
    }
    return doc.TakeDoc();
}
