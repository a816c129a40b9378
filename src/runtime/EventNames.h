#pragma once

#include "runtime/EventState.h"
#include "runtime/RecursiveLock.h"

// Process-wide bookkeeping of events: the lock held while events are created or their
// references change, and the table of named events, kept sorted by name.
CRecursiveLock& EventListLock();
CRecursiveLock& EventNameTableLock();

// Callers hold the name table lock.
CEventState* FindNamedEvent(const char* name);
void AddNamedEvent(const char* name, CEventState* state);
void RemoveNamedEvent(const char* name);
