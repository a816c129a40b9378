#pragma once

#include <string>
#include <vector>

struct StorageState;

// The exit status of inventory, watch and metrics: a bit for each thing that is wrong, 0 when
// all is well. 2 is a bad command line, alone: nothing was done, so no other bit can stand
// with it, and a status with the other bits never reaches 126.
namespace exit_status {

constexpr int kModule = 1;     // the module could not be created or started
constexpr int kUsage = 2;      // bad input on the command line
constexpr int kDaemon = 4;     // the RAID manager's daemon could not be reached
constexpr int kTree = 8;       // the daemon's tree was refused as invalid
constexpr int kDegraded = 16;  // something is degraded or rebuilding
constexpr int kFailed = 32;    // something has failed
constexpr int kChanged = 64;   // watch --exit-on-change ended on a change

struct Bit {
    int value;
    const char* name;
    const char* meaning;
};
inline constexpr Bit kBits[] = {
    {kModule, "module", "the module could not be created or started"},
    {kUsage, "usage", "bad input on the command line, or a metrics file that can't be written"},
    {kDaemon, "daemon", "the RAID manager's daemon could not be reached"},
    {kTree, "tree", "the storage tree was invalid"},
    {kDegraded, "degraded", "something is degraded or rebuilding"},
    {kFailed, "failed", "something has failed"},
    {kChanged, "changed", "watch ended on a change"},
};

// The names of the bits that are set, lowest first.
std::vector<const char*> Names(int status);
// One line for a person: "Exit status 48: something is degraded or rebuilding; something has
// failed."
std::string Describe(int status);
// The bits that a client's look at the storage tells: the daemon, the tree, and the worst
// state of every status in it.
int OfStorage(const StorageState& state);

}  // namespace exit_status
