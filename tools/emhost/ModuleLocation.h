#pragma once

#include <string>

// Where emhost finds the module when no --module names one: em_tlraid.so beside the emhost
// binary, as the build lays them out; else the module that an installation puts at its
// place relative to the binary's directory. When neither is there, the one beside, so that
// the error names it.
std::string DefaultModulePath();
