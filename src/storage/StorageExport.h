#pragma once

#include "xml/XmlDoc.h"

// The tree that clients get: the objects and properties of a whole storage tree (root amEMTL)
// under the root TLRaidStorageDeviceTree, without wrapper elements, with each object's number
// in the attribute Nr and Type attributes turned into child elements.

// Fills an empty target from a whole tree; a source without amEMTL leaves the target empty.
// The source comes back at its old positions.
void BuildStorageDeviceTree(CXmlDoc& target, CXmlDoc& source);

// Copies the children of the source's main element behind the target's positions: objects
// (with NrOfProperties) and properties (children of objects, Ports excepted) are copied,
// everything else is left out and its children are taken up by the nearest copied ancestor.
// Always 1.
int CopyStorageElements(CXmlDoc& target, CXmlDoc& source);
