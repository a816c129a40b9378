#pragma once

class CIExtensionModule;
class ISwitch;

// "emhost export": asks a started module for the whole storage tree, as XML or as JSON, and
// writes the answer's text to standard output exactly as it came. Returns the process's exit
// status: 0 when the module answered, 1 otherwise.
int PrintExport(CIExtensionModule& module, ISwitch& hostSwitch, bool json);
