#include "runtime/EventNames.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "runtime/InitOrder.h"

namespace {

struct NameEntry {
    std::string key;
    CEventState* state;
};

__attribute__((init_priority(kInitAfterTraceClient))) CRecursiveLock g_EventListLock;
__attribute__((init_priority(kInitAfterTraceClient))) CRecursiveLock g_NameTableLock;
__attribute__((init_priority(kInitAfterTraceClient))) std::vector<NameEntry> g_NameTable;

std::vector<NameEntry>::iterator LowerBound(const char* name) {
    return std::lower_bound(
        g_NameTable.begin(), g_NameTable.end(), name,
        [](const NameEntry& e, const char* n) { return strcmp(e.key.c_str(), n) < 0; });
}

}  // namespace

CRecursiveLock& EventListLock() {
    return g_EventListLock;
}
CRecursiveLock& EventNameTableLock() {
    return g_NameTableLock;
}

CEventState* FindNamedEvent(const char* name) {
    auto it = LowerBound(name);
    return it != g_NameTable.end() && it->key == name ? it->state : nullptr;
}

void AddNamedEvent(const char* name, CEventState* state) {
    auto it = LowerBound(name);
    if (it != g_NameTable.end() && it->key == name) {
        it->state = state;
        return;
    }
    g_NameTable.insert(it, NameEntry{name, state});
}

void RemoveNamedEvent(const char* name) {
    auto it = LowerBound(name);
    if (it != g_NameTable.end() && it->key == name)
        g_NameTable.erase(it);
}
