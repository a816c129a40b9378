#pragma once

#include <string>
#include <vector>

#include "xml/XmlDoc.h"

// Cleans a raw storage tree of characters that its readers can't take: control characters
// and bytes that don't start a UTF-8 sequence become '?'. Attributes are cleaned on elements
// with children, texts on elements without; each change is traced. The work is done by the
// constructor, on a document positioned at its first element.
class CXmlValidator {
  public:
    explicit CXmlValidator(CXmlDoc& doc);
    CXmlValidator(const CXmlValidator&) = delete;
    CXmlValidator& operator=(const CXmlValidator&) = delete;

    // The text up to its first NUL, with printable ASCII and complete UTF-8 sequences kept and
    // every other byte replaced by '?'.
    static std::string CleanText(const std::string& sText);

  private:
    void CleanAttributes();
    void CleanData();
    // Adds the edit unless it would make the text or the start tag longer than the index
    // holds; false when left out.
    bool AddEdit(XmlTextEdit edit, uint32_t& nTagLength);

    CXmlDoc& m_Doc;
    // The changes, in document order, carried out together at the end of the walk.
    std::vector<XmlTextEdit> m_aEdits;
    uint64_t m_nDocLength;  // with the edits so far
};

// The raw tree as the cleaning request answers it: a well-formed text cleaned, any other text
// as it is.
std::string CleanStorageTreeText(std::string sText);
