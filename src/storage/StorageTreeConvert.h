#pragma once

#include <cstdint>
#include <string>

#include "storage/XmlToJson.h"
#include "xml/XmlDoc.h"

// The forms in which a client gets the exported tree.
enum StorageTreeFormat : int {
    kStorageTreeXml = 1,
    kStorageTreeJson = 2,
};

// The elements of the exported tree that are arrays even when they stand alone.
const ArrayList& StorageTreeArrayList();

// The document as XML text (true when it isn't empty) or as JSON (by XmlToJSON with numbers
// and attributes, not pretty). A document that isn't well formed, or another format, gives
// true and leaves the text untouched.
bool ConvertStorageTree(CXmlDoc& doc, std::string& sOut, int nFormat);

// The export of a whole tree in one of the formats: BuildStorageDeviceTree, then
// ConvertStorageTree. A tree without amEMTL leaves the text untouched, with true.
bool ExportStorageTree(CXmlDoc& tree, int nFormat, std::string& sOut);

// The one mode of GetValueByPath.
constexpr int kPathMustExist = 1;

// Whether a path of element names below amEMTL exists in a whole tree, as "System/Adapter[1]"
// ("[n]" from 0, in decimal, octal with a leading 0 or hexadecimal with 0x). The only mode is
// 1. On success the value is always the empty text: the walk ends at a position without text.
bool GetValueByPath(CXmlDoc& tree, std::string& sValue, const char* pszPath, int nMode);
