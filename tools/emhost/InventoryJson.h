#pragma once

#include <string>

#include "ModuleStart.h"

struct StorageState;

// "emhost inventory --json": every table of the text view as arrays of objects, each status
// as its number and its name, with the module's name, its start and the exit status. The
// schema is docs/inventory.schema.json.
std::string InventoryJson(const StorageState& state, const char* moduleName,
                          const StartResult& start, int exitStatus);
