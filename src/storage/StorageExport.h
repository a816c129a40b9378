#pragma once

#include <string>

#include "xml/XmlDoc.h"

// The tree that clients get: the objects and properties of a whole storage tree (root amEMTL)
// under the root TLRaidStorageDeviceTree, without wrapper elements, with each object's number
// in the attribute Nr and Type attributes turned into child elements.

// Fills an empty target from a whole tree; a source without amEMTL leaves the target empty.
// The source comes back at its old positions.
void BuildStorageDeviceTree(CXmlDoc& target, CXmlDoc& source);

// The text that BuildStorageDeviceTree gives its target; false, with the text untouched, for a
// source without amEMTL. The source comes back at its old positions.
bool WriteStorageDeviceTree(CXmlDoc& source, std::string& sOut);
