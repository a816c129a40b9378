#pragma once

#include <cstdint>
#include <string>
#include <string_view>

class CXmlDoc;

// The small scan over the attributes of an element's start tag. Quoted text is one token; a
// name ends at white space, '/', '=', '>' or '?', a value behind '=' at white space or '>'. The
// first token is the tag's name; a token '/', '>' or '?' ends the tag.
class XmlAttribScan {
  public:
    struct Item {
        uint32_t nName = 0;  // offsets in the document
        uint32_t nNameLength = 0;
        bool bValue = false;  // a name alone has no value
        uint32_t nValue = 0;  // the value token, quotes included
        uint32_t nValueLength = 0;
    };

    XmlAttribScan(const CXmlDoc& doc, uint32_t iPos);

    bool Next(Item& item);                           // the next attribute, false at the tag's end
    bool Find(std::string_view sName, Item& item);   // the first attribute of that name
    uint32_t LastEnd() const { return m_nLastEnd; }  // behind the last name or value read
    std::string_view Name(const Item& item) const { return {m_p + item.nName, item.nNameLength}; }
    std::string_view RawValue(const Item& item) const;  // without its quotes
    std::string Value(const Item& item) const;          // unescaped; a name alone gives the name

  private:
    bool Token(bool bValue, uint32_t& nOffset, uint32_t& nLength);

    const char* m_p;
    uint32_t m_nPos = 0;
    uint32_t m_nLimit = 0;  // end of the start tag
    uint32_t m_nLastEnd = 0;
    bool m_bDone = true;
};
