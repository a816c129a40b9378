#pragma once

class CIExtensionModule;
class ISwitch;

// "emhost inventory": asks a started module for everything a client of the switch sees and
// prints it as tables, each number with its meaning. Returns the process's exit status.
int PrintInventory(CIExtensionModule& module, ISwitch& hostSwitch);
