#include "storage/XmlValidator.h"

#include <cstdint>

#include "runtime/DebugClient.h"

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

CXmlValidator::CXmlValidator(CXmlDoc& doc) : m_Doc(doc) {
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
                return;
            }
            m_Doc.OutOfElem();
            --nDepth;
        }
    }
}

void CXmlValidator::CleanAttributes() {
    const uint32_t iPos = m_Doc.GetMainPos();
    for (int i = 0;; ++i) {
        const std::string sName = m_Doc.GetAttribName(i);
        if (sName.empty()) {
            return;
        }
        const std::string sValue = m_Doc.GetAttrib(iPos, sName.c_str());
        if (sValue.empty()) {
            continue;
        }
        const std::string sClean = CleanText(sValue);
        if (sClean != sValue) {
            TLR_TRACE(1,
                      "\nCXmlValidator       : Warning! Attribute string with non printable "
                      "character detected! \"%s\"",
                      sClean.c_str());
            m_Doc.SetAttrib(iPos, sName.c_str(), sClean.c_str());
        }
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
        m_Doc.SetData(iPos, sClean.c_str());
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
