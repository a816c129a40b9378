// The PCI ids of RAID adapters through the host simulator, on a host that lists the sample
// PCI devices: the adapter comes first, then its address in the host's list, then the
// selector. The scan gives its devices no PCI instance text, so the ids themselves are
// never given; a selector past the subsystem vendor id is unknown.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/SwitchProtocol.h"
#include "support/Emhost.h"

namespace {

constexpr uint32_t kClient = 1;
constexpr uint32_t kPastTheSelectors = oc::kSelectPciSubsystemVendorId + 1;

struct Asked {
    uint32_t oi;
    uint32_t oe;
    uint32_t st;
};

std::string Command(const Asked& a) {
    return "{\"OC\":" + std::to_string(oc::kAdapterPciIdentity) +
           ",\"OE\":" + std::to_string(a.oe) + ",\"OI\":" + std::to_string(a.oi) +
           ",\"CI\":" + std::to_string(kClient);
}

// Starts the module on the tree, asks each request, and checks that each answers only its
// status, with the result 1 whatever the status.
void ExpectAnswers(const std::string& tree, const std::vector<Asked>& asked) {
    EmhostOptions options;
    options.sandbox = {"--trace-level", "2", "--sim",
                       "--tree " + SourcePath("samples/trees/" + tree)};
    for (const std::string& option : SampleHostOptions())
        options.sandbox.push_back(option);
    std::vector<std::string> input = {"{\"host\":\"create\"}", "{\"host\":\"start\"}"};
    for (const Asked& a : asked)
        input.push_back("{\"SIP\":{\"V\":1,\"CMD\":[" + Command(a) + "}]}}");

    EmhostRun run = RunEmhost(input, options);
    ASSERT_EQ(run.process.exitCode, 0) << run.process.err;
    ASSERT_EQ(run.lines.size(), input.size()) << run.process.out;
    EXPECT_EQ(WithoutElapsed(run.lines[1]), "{\"host\":\"start\",\"ret\":1,\"ms\":T}");
    for (size_t i = 0; i < asked.size(); ++i) {
        EXPECT_EQ(run.lines[i + 2], "{\"ret\":1,\"record\":{\"SIP\":{\"V\":1,\"CMD\":[" +
                                        Command(asked[i]) +
                                        ",\"ST\":" + std::to_string(asked[i].st) + "}]}}}")
            << tree << " adapter " << asked[i].oi << " OE " << asked[i].oe;
    }
    // Each request scans the host afresh: its eight usable devices.
    EXPECT_NE(run.trace.find("\nCSystemAdapter      : Found 8 PCI devices"), std::string::npos);
}

TEST(AdapterPciIdentityTest, AdaptersTheHostLists) {
    // Both adapters of the demo tree are on the host: the storage controllers at
    // 0000:18:00.0 (bus 24 in the tree) and 0000:00:17.0 (device 23).
    std::vector<Asked> asked;
    for (uint32_t oi : {0u, 1u}) {
        for (uint32_t oe = 0; oe < kPastTheSelectors; ++oe)
            asked.push_back({oi, oe, status::kNotAvailable});
        asked.push_back({oi, kPastTheSelectors, status::kUnknownCode});
    }
    // No third adapter: that ends the request before the selector counts.
    asked.push_back({2, kPastTheSelectors, status::kNotAvailable});
    ExpectAnswers("demo.xml", asked);
}

TEST(AdapterPciIdentityTest, AnAdapterTheHostDoesNotList) {
    // Adapter 0 sits at 0000:3b:00.0, which the host lists (as a NIC); adapter 1 at
    // 0000:5e:00.0, whose record the list drops as too short: not found, even for an
    // unknown selector.
    std::vector<Asked> asked = {{0, kPastTheSelectors, status::kUnknownCode},
                                {0, oc::kSelectPciDeviceId, status::kNotAvailable}};
    for (uint32_t oe = 0; oe <= kPastTheSelectors; ++oe)
        asked.push_back({1, oe, status::kNotAvailable});
    ExpectAnswers("two-adapters-enclosures.xml", asked);
}

}  // namespace
