#include "raid/PciIdentityRequest.h"

#include "frame/CommandRecord.h"
#include "frame/SwitchProtocol.h"
#include "storage/TLRaidData.h"

namespace {

constexpr uint8_t kHeaderLayoutMask = 0x7F;

bool SameAddress(const PciAddress& pci, const AdapterPciAddress& tree) {
    return pci.nDomain == tree.nSegment && pci.nBus == tree.nBus && pci.nSlot == tree.nDevice &&
           pci.nFunction == tree.nFunction;
}

}  // namespace

void AnswerPciIdentity(CommandRecord& record, CTLRaidData& adapter,
                       SystemAdapterLister listAdapters) {
    AdapterPciAddress address;
    if (!adapter.GetAdapterPciAddress(address)) {
        record.SetStatus(status::kNotAvailable);
        return;
    }
    std::vector<CSystemAdapter> adapters;
    listAdapters(adapters);
    const CSystemAdapter* found = nullptr;
    for (const CSystemAdapter& candidate : adapters) {
        if (SameAddress(candidate.m_Pci.address, address)) {
            found = &candidate;
            break;
        }
    }
    if (!found) {
        record.SetStatus(status::kNotAvailable);
        return;
    }
    const uint32_t selector = record.GetField("OE", 0);
    if (selector > oc::kSelectPciSubsystemVendorId) {
        record.SetStatus(status::kUnknownCode);
        return;
    }
    const PciSlotInfo& pci = found->m_Pci;
    if (!IsPciDevice(*found) || pci.nVendorId == 0 || pci.nVendorId == 0xFFFF ||
        pci.nDeviceId == 0) {
        record.SetStatus(status::kNotAvailable);
        return;
    }
    const bool plainHeader = (pci.nHeaderType & kHeaderLayoutMask) == 0;
    uint32_t value = 0;
    switch (selector) {
        case oc::kSelectPciDeviceId:
            value = pci.nDeviceId;
            break;
        case oc::kSelectPciVendorId:
            value = pci.nVendorId;
            break;
        case oc::kSelectPciSubsystemId:
            value = plainHeader ? pci.nSubDeviceId : 0;
            break;
        case oc::kSelectPciSubsystemVendorId:
            value = plainHeader ? pci.nSubVendorId : 0;
            break;
    }
    record.SetDataUInt(value, status::kOk);
}
