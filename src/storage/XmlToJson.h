#pragma once

#include <string>
#include <vector>

#include "xml/XmlDoc.h"

// The JSON form of an XML document, written as text by these rules and no JSON library:
// an element with children is an object of "@" attributes and then its children; a leaf is
// its text, or an object of its attributes and "#text"; siblings of one name, and elements
// whose path is on the array list, are arrays at the place of the first of them. Texts made
// of digits are numbers unless they begin with "0"; a double quote in a text is escaped,
// nothing else is, and attribute values go out as they are.
// The time taken is linear in the size of the document, however many siblings share a name.

// The paths of elements that are arrays even when they stand alone, as GetElemPath gives them.
using ArrayList = std::vector<std::string>;

// The whole document between "{" and "}"; false (and "{}") for a document without elements.
bool XmlToJSON(std::string& sOut, CXmlDoc& doc, const ArrayList& arrayList, bool bNumbers,
               bool bAttributes, bool bPretty);
// Appends the member of the element at the main position, with a comma in front unless nIndex
// is 0; nothing for an element that was written with an earlier sibling of its name. Always 1.
int ElementToJSON(std::string& sOut, CXmlDoc& doc, const ArrayList& arrayList, bool bNumbers,
                  bool bAttributes, bool bPretty, int nIndex, int nDepth);
// Appends the value of the element at the main position. Always 1.
int ValueToJSON(std::string& sOut, CXmlDoc& doc, const ArrayList& arrayList, bool bNumbers,
                bool bAttributes, bool bPretty, int nIndex, int nDepth);
