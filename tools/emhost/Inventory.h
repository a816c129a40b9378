#pragma once

#include "Colour.h"
#include "TextTable.h"

class CIExtensionModule;
class ISwitch;
struct Coded;
struct StorageState;

struct InventoryOptions {
    bool bJson = false;
    Palette palette;
};

// "emhost inventory": starts the module, asks it for everything a client of the switch sees
// and prints it as tables, each number with its meaning, or as one JSON document; then stops
// the module. Returns the process's exit status (ExitStatus.h).
int RunInventory(CIExtensionModule& module, ISwitch& hostSwitch, const InventoryOptions& options);

// The tables of the adapters and the overall statuses, then those of the cabinets.
void PrintStorage(const StorageState& state, const Palette& palette);
void PrintCabinets(const StorageState& state, const Palette& palette);
// A status in a table: in words, painted by its severity.
TextTable::Cell StatusCell(const Coded& status);
