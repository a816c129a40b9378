// Start fills the module's PCI list once the service is found, before the first tree.
#include "RaidTestKit.h"
#include "support/CaptureTraceServer.h"

namespace {

using PciScanAtStart = RaidModuleTest;

const char kSasAdapterNamed[] = "\nPCI PARSER device_name = TL RAID HX420";

TEST_F(PciScanAtStart, BetweenDetectionAndTheFirstTreeAndNotWithoutTheService) {
    ScopedTraceLevel trace(5);
    Daemon().installed = true;
    EXPECT_EQ(StartModule(), 1);
    EXPECT_FALSE(Has(Debug.Take(), "PCI PARSER"));
    StopModule();

    ServeSample("demo.xml");
    EXPECT_EQ(StartModule(), 1);
    std::string t = Debug.Take();
    size_t detected = t.find("\nEM_TLRAID           : INFO - NOT RunningOnServerStart");
    size_t scanned = t.find(kSasAdapterNamed);
    size_t waiting = t.find("\nEM_TLRAID           : Wait for first valid TLRAID responses");
    ASSERT_NE(scanned, std::string::npos) << t;
    EXPECT_LT(detected, scanned);
    EXPECT_LT(scanned, waiting);
}

}  // namespace
