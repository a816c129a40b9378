#include "inventory/PciSlotInfo.h"

#include <tuple>

bool PciAddress::operator<(const PciAddress& other) const {
    if (IsAny() || other.IsAny())
        return false;
    return std::tie(nDomain, nBus, nSlot, nFunction) <
           std::tie(other.nDomain, other.nBus, other.nSlot, other.nFunction);
}
