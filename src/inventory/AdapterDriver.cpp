// The driver of a PCI device, from the kernel's list of PCI devices: one line a device,
// the bus and devfn word first, sixteen numbers, then the driver's name if it has one.
#include <cctype>
#include <cstdio>
#include <cstring>
#include <memory>

#include "inventory/SystemAdapter.h"
#include "runtime/DebugClient.h"
#include "runtime/Pipe.h"

namespace {

constexpr int kNumbersBehindKey = 16;
constexpr size_t kRestBytes = 256;

// Reads up to the end of the current line; false at the end of the file.
bool SkipLine(FILE* file) {
    int c;
    while ((c = fgetc(file)) != EOF) {
        if (c == '\n')
            return true;
    }
    return false;
}

}  // namespace

bool GetAdapterDriverName(uint16_t domain, uint8_t bus, uint8_t slot, uint8_t function,
                          char* buffer, size_t size) {
    return GetAdapterDriverName(domain, bus, slot, function, buffer, size,
                                inventory_host::kPciDevices);
}

bool GetAdapterDriverName(uint16_t domain, uint8_t bus, uint8_t slot, uint8_t function,
                          char* buffer, size_t size, const char* devicesPath) {
    TLR_TRACE(3, "\nGetAdapterDriverName() : for %04x:%02x:%02x.%d from %s\n", domain, bus, slot,
              function, devicesPath);
    if (size > 0)
        buffer[0] = '\0';
    FilePtr file(fopen(devicesPath, "r"));
    if (!file)
        return false;
    const unsigned long key = static_cast<unsigned long>(bus) << 8 |
                              static_cast<unsigned long>(slot) << 3 | (function & 7u);
    for (;;) {
        unsigned long first = 0;
        int read = fscanf(file.get(), "%lx", &first);
        if (read == EOF)
            return false;
        if (read == 1 && first == key)
            break;
        if (!SkipLine(file.get()))
            return false;
    }
    for (int i = 0; i < kNumbersBehindKey; ++i) {
        unsigned long ignored = 0;
        if (fscanf(file.get(), "%lx", &ignored) != 1)
            break;
    }
    char rest[kRestBytes] = "";
    if (!fgets(rest, sizeof(rest), file.get()))
        rest[0] = '\0';
    char* name = rest;
    while (*name && isspace(static_cast<unsigned char>(*name)))
        ++name;
    if (*name && size > 0) {
        name[strcspn(name, "\n")] = '\0';
        strncpy(buffer, name, size);
        buffer[size - 1] = '\0';
        TLR_TRACE(3, "\nGetAdapterDriverName() : Drivername for %04x:%02x:%02x.%d found %s\n",
                  domain, bus, slot, function, buffer);
        return true;
    }
    TLR_TRACE(3, "\nGetAdapterDriverName() : Drivername for %04x:%02x:%02x.%d NOT found\n", domain,
              bus, slot, function);
    return false;
}
