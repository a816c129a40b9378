#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "xml/XmlDoc.h"

// Checks that the index of a document is a sound tree over its text: links agree both ways,
// sibling chains close through the first child's prev, and every element lies in the text.
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
        for (uint32_t i = iFirst; i; i = doc.GetRecord(i).iElemNext) {
            if (i >= nCount || aSeen[i]) {
                ADD_FAILURE() << "record " << i << " out of range or reached twice";
                return nReached;
            }
            aSeen[i] = true;
            ++nReached;
            const ElemPos& elem = doc.GetRecord(i);
            EXPECT_EQ(elem.iElemParent, iParent) << "record " << i;
            EXPECT_EQ(elem.Has(kElemFirst), i == iFirst) << "record " << i;
            if (i != iFirst) {
                EXPECT_EQ(elem.iElemPrev, iPrev) << "record " << i;
                EXPECT_GT(elem.nStart, doc.GetRecord(iPrev).nStart) << "record " << i;
            }
            EXPECT_LE(uint64_t(elem.nStart) + elem.nLength, sDoc.size()) << "record " << i;
            EXPECT_GE(elem.nLength, elem.StartTagLen()) << "record " << i;
            if (elem.nStart < sDoc.size()) {
                EXPECT_EQ(sDoc[elem.nStart], '<') << "record " << i;
            }
            if (iParent) {
                EXPECT_GT(elem.nStart, doc.GetRecord(iParent).nStart) << "record " << i;
            }
            aStack.push_back(i);
            iPrev = i;
        }
        if (iFirst) {
            EXPECT_EQ(doc.GetRecord(iFirst).iElemPrev, iPrev) << "last child of " << iParent;
        }
    }
    EXPECT_EQ(doc.GetRecord(0).nLength, sDoc.size());
    return nReached;
}

// Checks that the index of an edited document is what parsing its text gives: the same tree of
// elements with the same offsets and tag lengths.
inline void CheckSameAsParsed(const CXmlDoc& doc) {
    CheckIndex(doc);
    CXmlDoc parsed;
    parsed.SetDoc(doc.GetDoc());
    std::vector<std::pair<uint32_t, uint32_t>> aStack{{0, 0}};
    while (!aStack.empty()) {
        auto [iEdited, iParsed] = aStack.back();
        aStack.pop_back();
        uint32_t i = doc.GetRecord(iEdited).iElemChild;
        uint32_t j = parsed.GetRecord(iParsed).iElemChild;
        for (; i && j; i = doc.GetRecord(i).iElemNext, j = parsed.GetRecord(j).iElemNext) {
            const ElemPos& e = doc.GetRecord(i);
            const ElemPos& p = parsed.GetRecord(j);
            EXPECT_EQ(e.nStart, p.nStart) << doc.GetElemTagName(i);
            EXPECT_EQ(e.nLength, p.nLength) << doc.GetElemTagName(i);
            EXPECT_EQ(e.StartTagLen(), p.StartTagLen()) << doc.GetElemTagName(i);
            EXPECT_EQ(e.EndTagLen(), p.EndTagLen()) << doc.GetElemTagName(i);
            EXPECT_EQ(e.Level(), p.Level()) << doc.GetElemTagName(i);
            aStack.push_back({i, j});
        }
        EXPECT_EQ(i, 0u) << "edited index has more elements than the parse";
        EXPECT_EQ(j, 0u) << "parse has more elements than the edited index";
    }
}
