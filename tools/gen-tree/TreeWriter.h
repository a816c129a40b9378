#pragma once

#include <string>

#include "GenTreeOptions.h"

// The XML text of a storage tree made to the options: an XML declaration, a comment that
// names the options, and the root amEMTL of Version "2" with one Multiplexer that is
// "Operational" and adapters that are never "Initializing", so that the tree is valid.
std::string WriteTree(const GenTreeOptions& options);
