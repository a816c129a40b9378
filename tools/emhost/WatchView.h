#pragma once

#include <map>
#include <string>
#include <vector>

#include "StorageState.h"

// One watched value at a look: which object and field it is, how the text view names it,
// and its value.
struct Watched {
    std::string object;  // "adapter", "drive", "logical drive", "battery", "overall"
    long nAdapter = -1;  // -1: none
    long nIndex = -1;
    std::string name;   // the object's name, or what the overall status is of
    std::string field;  // "status", "state", "progress"
    std::string label;  // "adapter 0, drive 4 'MIRAVEX MX4000N (10)': status"
    Coded value;        // no words for a progress, whose answer is a text
    bool bProgress = false;

    // In words: "11 failed", "37 %", "none".
    std::string Shown() const;
};

// Keyed so that the keys sort as the inventory does.
using View = std::map<std::string, Watched>;

// What watch follows of a look: the statuses of adapters, drives and batteries, the
// states and progress of logical drives, the overall statuses.
View ViewOf(const StorageState& state);

// A difference between two views: a value that is new (no old), gone (no now) or changed.
struct ViewChange {
    const Watched* pOld;
    const Watched* pNow;
};
std::vector<ViewChange> Changes(const View& before, const View& now);
