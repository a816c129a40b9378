#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "InventoryWords.h"
#include "ModuleClient.h"

// A coded answer with the words that say what its numbers mean.
struct Coded {
    Reply reply;
    const Vocabulary* pWords = nullptr;

    bool Ok() const { return reply.Ok(); }
    // kNone when the module gave no answer.
    Severity SeverityOf() const;
    // "11 failed", or what the status says instead.
    std::string Shown() const;
};

// A text as the module answered it, or what its status says instead.
std::string Shown(const Reply& reply);
// A number with its unit (" MB", " C"), or what the status says instead.
std::string Shown(const Reply& reply, const char* unit);

struct DriveState {
    Reply name;
    Coded type, status, smart;
    Reply size;
};

struct LogicalDriveState {
    Reply name;
    Coded status;
    Reply raidLevel, size, physicalSize;
    Reply progress;  // MDCProgress: a rebuild's or a check's progress in %, a text
};

struct BatteryState {
    Reply name;
    Coded status, learnCycle;
};

struct EnclosureState {
    Reply name;
    Coded status;
};

// The ids of the host's PCI device at an adapter's address, by the selector of each.
struct PciIdKind {
    uint32_t nSelector;
    const char* name;
};
extern const PciIdKind kPciIdKinds[4];

struct AdapterState {
    Reply name;
    Coded type, status;
    Reply deviceId;
    Reply pciIds[4];  // in the order of kPciIdKinds
    std::vector<DriveState> drives;
    std::vector<LogicalDriveState> logicalDrives;
    std::vector<BatteryState> batteries;
    std::vector<Reply> ports;  // their names
    std::vector<EnclosureState> enclosures;
};

// The overall statuses, each by its object code, in the order the views show them.
struct OverallKind {
    uint32_t nCode;
    const char* name;
};
extern const OverallKind kOverallKinds[4];

struct FanState {
    Reply name, designation;
    Coded status, location;
};

struct SensorState {
    Reply name;
    Coded status, location;
    Reply temperature, warning, critical;  // degrees Celsius
};

struct SupplyState {
    Reply name;
    Coded status;
};

struct CabinetState {
    uint32_t nNumber = 0;
    Reply model, chassisModel, vendor, serialNumber;
    std::vector<FanState> fans;
    std::vector<SensorState> sensors;
    std::vector<SupplyState> supplies;
    Coded redundancy;
};

// Everything that a client of the switch sees of the storage at one look.
struct StorageState {
    // The renewal of the client's snapshot, when one was asked: it fetches the tree without
    // judging it, so when it works and there is no tree, the tree is what the module refuses.
    std::optional<Reply> renewal;
    Reply adapterCount;  // there is a tree when the module answers it
    std::vector<AdapterState> adapters;
    Coded overall[4];  // in the order of kOverallKinds; asked only when there is a tree
    Reply cabinetList;
    std::vector<CabinetState> cabinets;
};

// When a look renews the client's snapshot first: always (the present tree), never (the
// snapshot the client has), or only when there is no tree, so as to tell a daemon that
// can't be reached from a tree that is not valid.
enum class Renewal { kFirst, kNever, kToTellWhy };

// How much a look reads: everything that the inventory shows, or what watch follows (the
// names, statuses and progress of adapters, drives, logical drives and batteries, the
// overall statuses, the cabinets), which keeps a look at every polling cycle short.
enum class Detail { kAll, kWatched };

// Asks the module for the storage, as the given client.
StorageState ReadStorage(ModuleClient& client, Renewal renewal, Detail detail = Detail::kAll);
// The cabinets part: the server's list of cabinets, then each cabinet through requests
// addressed to its number.
void ReadCabinets(ModuleClient& client, StorageState& state);
