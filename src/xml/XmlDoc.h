#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "xml/ElemPos.h"
#include "xml/SavedPosMaps.h"

struct XmlScanner;

// Flags of AddElem, SetAttrib, SetData and the text conversions.
enum XmlFlag : uint32_t {
    XmlCData = 0x1,            // AddElem, SetData: write the value as a CDATA section
    XmlNoLines = 0x2,          // no newline added
    XmlSpaceBeforeEnd = 0x4,   // AddElem: a blank before "/>"
    XmlKeepRefs = 0x8,         // the value may already hold references
    XmlNoEndTag = 0x10,        // AddElem: no end tag
    XmlAttribText = 0x100,     // EscapeText: the attribute rule, quotes escaped too
    XmlReplace = 0x1000,       // replace the content of the position
    XmlInsertBefore = 0x2000,  // insert before instead of after
    XmlChild = 0x4000,         // AddElem: add under main, next to the child position
};

// One replacement of a batch of edits: a range of the text and what goes there.
struct XmlTextEdit {
    uint32_t nPlace = 0;
    uint32_t nReplace = 0;
    std::string sText;
    uint32_t iText =
        0;  // the element whose text is replaced (it loses its ill-formed mark); 0 if none
};

// An XML document kept as its text plus an index of 32-byte element records, read and changed
// through a cursor of three positions: parent, main and child. Positions are record indexes;
// record 0 stands for the document itself.
class CXmlDoc {
  public:
    // Offsets are 32 bits wide: a longer text is kept but not indexed, and edits stop short of it.
    static constexpr size_t kMaxDocLength = 0xFFFFFFFE;

    CXmlDoc();
    ~CXmlDoc();
    CXmlDoc(const CXmlDoc&) = delete;
    CXmlDoc& operator=(const CXmlDoc&) = delete;

    // Parsing
    void SetDoc(const char* pszDoc);       // replaces and parses the text; null frees everything
    bool SetDoc(const std::string& sDoc);  // replaces and parses the text; answers IsWellFormed
    bool SetDoc(std::string&& sDoc);       // the same, taking the text over
    bool IsWellFormed() const;             // one root, nothing ill-formed
    const std::string& GetResult() const { return m_sResult; }  // reports of the last parse
    // The report of a start tag too long for the index (4 MiB or more); its document is
    // not well formed.
    static constexpr char kStartTagTooLong[] = "start_tag_too_long";

    // Positions
    void ResetPos();  // all three positions to 0
    void SetPos(uint32_t iParent, uint32_t iMain, uint32_t iChild);
    uint32_t GetParentPos() const { return m_iPosParent; }
    uint32_t GetMainPos() const { return m_iPos; }
    uint32_t GetChildPos() const { return m_iPosChild; }
    bool FindElem(const char* pszPath = nullptr);       // moves main to the next match
    bool FindChildElem(const char* pszPath = nullptr);  // moves child to the next match under main
    bool FindPrevElem(const char* pszName = nullptr);   // moves main to an earlier sibling
    bool IntoElem();                                    // parent = main, main = child, child = 0
    bool OutOfElem();                                   // child = main, main = parent, one up
    bool SavePos(const char* pszName = "", int nMap = 0);     // keeps the deepest position in use
    bool RestorePos(const char* pszName = "", int nMap = 0);  // goes back to a kept position

    // Reading
    std::string GetTagName() const;                     // name at main, empty if none
    std::string_view TagNameView(uint32_t iPos) const;  // name of that element, in the text
    std::string GetElemTagName(uint32_t iPos) const;    // name of that element
    std::string GetData(uint32_t iPos) const;           // text of a leaf element, unescaped
    std::string GetChildData() const;                   // GetData at the child position
    std::string GetAttrib(uint32_t iPos, const char* pszName) const;  // unescaped value
    std::string GetAttribName(int nIndex) const;              // name of main's nIndex-th attribute
    std::string GetSubDoc(uint32_t iPos) const;               // the element's markup
    std::string GetDoc() const { return m_sDoc; }             // a copy of the whole text
    const std::string& GetDocText() const { return m_sDoc; }  // the whole text in place
    std::string TakeDoc();            // hands the text over and leaves the document empty
    std::string GetElemPath() const;  // path of main, with [n] where needed

    // Editing
    bool AddElem(const char* pszName, const char* pszValue = nullptr, uint32_t nFlags = 0);
    bool AddChildElem(const char* pszName, const char* pszValue = nullptr, uint32_t nFlags = 0);
    bool SetAttrib(uint32_t iPos, const char* pszName, const char* pszValue, uint32_t nFlags = 0);
    bool SetAttrib(uint32_t iPos, const char* pszName, int nValue, uint32_t nFlags = 0);
    bool SetData(uint32_t iPos, const char* pszText, uint32_t nFlags = 0);
    // Carries out edits in increasing order that don't overlap and don't cross the start or
    // end of an element, in one pass over the text and the index; an edit that overlaps the
    // one before it is left out.
    void ReplaceTexts(const std::vector<XmlTextEdit>& aEdits);
    // The offsets of an element's content, between its tags; false for no element.
    bool ContentRange(uint32_t iPos, uint32_t& nStart, uint32_t& nEnd) const;
    // Appends one report element to a result string, dropped once that is past 999 bytes.
    static void Report(std::string& sResult, const char* pszElem, const char* pszTagName,
                       int nOffset, int nOffset2, const char* pszType = nullptr);

    // Text conversions
    static std::string EscapeText(std::string_view sText, uint32_t nFlags);
    static void AppendEscaped(std::string& sOut, std::string_view sText, uint32_t nFlags);
    static std::string UnescapeText(const char* pText, int nLength, uint32_t nFlags = 0);
    static std::string UnescapeText(std::string_view sText);
    // Writes a code point as UTF-8 at pOut + nLength (only counts with pOut null); adds the count.
    static void EncodeUtf8(int32_t nCode, char* pOut, int& nLength);
    static std::string WrapCData(std::string_view sText);  // "]]>" inside splits the section

    // Element records (for tests and tools that look at the index itself)
    uint32_t GetRecordCount() const { return m_iPosFree; }
    const ElemPos& GetRecord(uint32_t iPos) const { return Rec(iPos); }
    size_t GetIndexBytes() const { return size_t(m_aPos.Capacity()) * sizeof(ElemPos); }

  private:
    friend class XmlPathSearch;
    friend class XmlAttribScan;

    // Index access
    bool IsValidPos(uint32_t iPos) const;
    bool IsElem(uint32_t iPos) const { return iPos != 0 && IsValidPos(iPos); }
    const ElemPos& Rec(uint32_t iPos) const;  // a zero record for an invalid position
    ElemPos& RecW(uint32_t iPos) { return m_aPos[iPos]; }
    uint32_t TakeRecord() {
        if (!m_iPosDeleted && m_iPosFree < m_aPos.Capacity()) {
            return m_iPosFree++;
        }
        return TakeRecordSlow();
    }
    uint32_t TakeRecordSlow();  // from the free list, or after growing the index
    void InitIndex();

    // Builder
    bool Parse();
    uint32_t ParseElements(uint32_t iPosTop, XmlScanner& scanner);

    // Reading helpers
    uint32_t FindPos(uint32_t iPosParent, uint32_t iPos, const char* pszPath) const;
    void SetPosFields(uint32_t iParent, uint32_t iMain, uint32_t iChild);

    // Editing helpers
    bool AddElemImpl(const char* pszName, const char* pszValue, uint32_t nFlags);
    void AdjustOffsets(uint32_t iPos, uint32_t nDelta);
    void Splice(uint32_t nPlace, uint32_t nReplace, const std::string& sText, bool bReserve);

    std::string m_sDoc;          // the XML text
    std::string m_sResult;       // report of the last parse
    uint32_t m_iPosParent = 0;   // 0 = document level
    uint32_t m_iPos = 0;         // main position, 0 = none
    uint32_t m_iPosChild = 0;    // 0 = none
    uint32_t m_iPosFree = 0;     // next fresh record; 0 while the index is empty
    uint32_t m_iPosDeleted = 0;  // head of the free list, chained through iElemNext
    uint32_t m_nNodeType = 0;    // 1 when main is set
    uint32_t m_nNodeOffset = 0;
    uint32_t m_nNodeLength = 0;
    uint32_t m_nDocFlags = 0;  // kDocChanged
    SavedPosMaps m_SavedPosMaps;
    ElemPosArray m_aPos;  // the element index
};

// Record access is inline: every walk asks for records at each step.
inline bool CXmlDoc::IsValidPos(uint32_t iPos) const {
    return iPos < m_iPosFree && !m_aPos[iPos].Has(kElemDeleted);
}

inline const ElemPos& CXmlDoc::Rec(uint32_t iPos) const {
    static constexpr ElemPos kNoRecord{};
    return IsValidPos(iPos) ? m_aPos[iPos] : kNoRecord;
}

// m_nDocFlags: changed since parsing.
constexpr uint32_t kDocChanged = 0x2;
