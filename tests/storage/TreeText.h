#pragma once

#include <string>
#include <vector>

// Texts of storage trees for the tests: the sample trees, and small trees written inline.

// The text of samples/trees/<name>; empty if there is no such file.
std::string SampleTree(const std::string& name);
// The text of a file of the source tree, by its path from the top; empty if there is none.
std::string SourceText(const std::string& relative);
// The names of all sample trees (*.xml), sorted.
std::vector<std::string> SampleTreeNames();

// A whole tree with an "Operational" multiplexer (plus sMultiplexer inside it) and sSystem
// after the multiplexer.
std::string WholeTree(const std::string& sSystem, const std::string& sMultiplexer = "",
                      const std::string& sVersion = "2");
