#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "xml/XmlDoc.h"

// Checks that the index of a document is a sound tree over its text: links agree both ways,
// sibling chains close through the first child's prev, and every element lies in the text
// and within its parent.
// Returns the number of elements reached from record 0.
inline uint32_t CheckIndex(const CXmlDoc& doc) {
    uint32_t nCount = doc.GetRecordCount();
    if (nCount == 0) {
        return 0;
    }
    const std::string sDoc = doc.GetDoc();
    std::vector<bool> aSeen(nCount, false);
    std::vector<uint32_t> aStack{0};
    uint32_t nReached = 0;
    while (!aStack.empty()) {
        uint32_t iParent = aStack.back();
        aStack.pop_back();
        uint32_t iFirst = doc.GetRecord(iParent).iElemChild;
        uint32_t iPrev = 0;
        for (uint32_t i = iFirst; i; iPrev = i, i = doc.GetRecord(i).iElemNext) {
            if (i >= nCount || aSeen[i]) {
                ADD_FAILURE() << "record " << i << " out of range or reached twice";
                return nReached;
            }
            aSeen[i] = true;
            ++nReached;
            const ElemPos& e = doc.GetRecord(i);
            const bool bLinks =
                e.iElemParent == iParent && e.Has(kElemFirst) == (i == iFirst) &&
                (i == iFirst || (e.iElemPrev == iPrev && e.nStart > doc.GetRecord(iPrev).nStart)) &&
                (!iParent ||
                 (e.nStart > doc.GetRecord(iParent).nStart &&
                  uint64_t(e.nStart) + e.nLength <=
                      uint64_t(doc.GetRecord(iParent).nStart) + doc.GetRecord(iParent).nLength));
            const bool bInText = uint64_t(e.nStart) + e.nLength <= sDoc.size() &&
                                 e.nLength >= e.StartTagLen() &&
                                 (e.nStart >= sDoc.size() || sDoc[e.nStart] == '<');
            EXPECT_TRUE(bLinks && bInText) << "record " << i;
            aStack.push_back(i);
        }
        if (iFirst) {
            EXPECT_EQ(doc.GetRecord(iFirst).iElemPrev, iPrev) << "last child of " << iParent;
        }
    }
    EXPECT_EQ(doc.GetRecord(0).nLength, sDoc.size());
    return nReached;
}

// Each element in document order with its start, length, tag lengths and level.
inline std::string Layout(const CXmlDoc& doc) {
    std::string s;
    std::vector<uint32_t> aStack{doc.GetRecordCount() ? doc.GetRecord(0).iElemChild : 0u};
    // Twice the records at most, should the links go round in a circle.
    for (uint32_t n = 0; !aStack.empty() && n <= 2 * doc.GetRecordCount(); ++n) {
        const uint32_t i = aStack.back();
        aStack.pop_back();
        if (i) {
            const ElemPos& e = doc.GetRecord(i);
            s += doc.GetElemTagName(i) + " " + std::to_string(e.nStart) + "+" +
                 std::to_string(e.nLength) + " " + std::to_string(e.StartTagLen()) + "/" +
                 std::to_string(e.EndTagLen()) + " " + std::to_string(e.Level()) + "\n";
            aStack.push_back(e.iElemNext);
            aStack.push_back(e.iElemChild);
        }
    }
    return s;
}

// Checks that the index of an edited document is what parsing its text gives.
inline void CheckSameAsParsed(const CXmlDoc& doc) {
    CheckIndex(doc);
    CXmlDoc parsed;
    parsed.SetDoc(doc.GetDoc());
    EXPECT_EQ(Layout(doc), Layout(parsed)) << doc.GetDoc();
}
