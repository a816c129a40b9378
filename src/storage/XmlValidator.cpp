#include "storage/XmlValidator.h"

#include <algorithm>
#include <cstdint>
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
    std::unordered_map<std::string_view, First> first;
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
                first.try_emplace(rest.Name(other), First{other});
            }
            bAllNames = true;
        }
        const auto it = nNul == std::string_view::npos ? first.try_emplace(sName, First{item}).first
                                                       : first.find(sName.substr(0, nNul));
        if (it == first.end() || (it->second.bVisited && !it->second.bLeftOut)) {
            continue;
        }
        it->second.bVisited = true;
        const XmlAttribScan::Item& attrib = it->second.item;
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
        it->second.bLeftOut = !AddEdit(std::move(edit), nTagLength);
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

std::string CleanStorageTreeText(const std::string& sText) {
    CXmlDoc doc;
    if (doc.SetDoc(sText)) {
        doc.SavePos();
        doc.ResetPos();
        if (doc.FindElem()) {
            CXmlValidator validator(doc);
        }
        doc.RestorePos();
    }
    return doc.GetDoc();
}
