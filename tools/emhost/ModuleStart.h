#pragma once

#include <cstdio>

class CIExtensionModule;
class ISwitch;

struct StartResult {
    int nReturned = 0;
    long long nMs = 0;
};

// Starts the module as the host's views do, telling the person what it waits for and how
// long the start took on the given stream.
StartResult StartModule(CIExtensionModule& module, ISwitch& hostSwitch, FILE* chatter);
