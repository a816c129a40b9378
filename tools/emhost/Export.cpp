#include "Export.h"

#include <cstdio>
#include <string>

#include "frame/CommandRecord.h"
#include "frame/ExtensionModule.h"

namespace {

constexpr uint32_t kClientId = 1;

}  // namespace

int PrintExport(CIExtensionModule& module, ISwitch& hostSwitch, bool json) {
    // Standard output carries the tree alone; what the host says goes to standard error.
    fprintf(stderr, "emhost: starting the module...\n");
    module.Start(&hostSwitch, 0);

    CommandRecord record;
    const uint32_t format = json ? oc::kSelectTreeJson : oc::kSelectTreeXml;
    record.SetJson("{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":" + std::to_string(oc::kStorageTreeExport) +
                   ",\"OE\":" + std::to_string(format) + ",\"CI\":" + std::to_string(kClientId) +
                   "}]}}");
    module.ModuleRequest(&record);
    const uint32_t st = record.GetField("ST", status::kMissing);
    std::string tree;
    const bool answered = st == status::kOk;
    if (answered) {
        record.GetDataString(0, tree, 0);
        fwrite(tree.data(), 1, tree.size(), stdout);
        fflush(stdout);
    } else {
        fprintf(stderr, "emhost: no tree: the module answers ST %u\n", st);
    }

    fprintf(stderr, "emhost: stopping the module (a stop takes 10 s by design)...\n");
    module.Stop();
    return answered ? 0 : 1;
}
