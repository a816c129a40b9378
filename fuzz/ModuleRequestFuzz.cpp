// Any command record against any storage tree, in the module's own process: the input is the
// record, a line "----" and the tree. One started module serves every input; before each
// request the daemon serves the input's tree and every client's snapshot is dropped, so that
// the request reads that tree.
#include <fstream>
#include <iterator>
#include <memory>

#include "FuzzKit.h"
#include "frame/CommandRecord.h"
#include "raid/EM_TLRAID.h"
#include "support/FakeRaidDaemon.h"
#include "support/FastTimings.h"

namespace {

class QuietSwitch : public ISwitch {
  public:
    int SendRequest(CIExtensionModule*, CommandRecord*, uint32_t) override { return 0; }
    int SendEvent(CIExtensionModule*, CommandRecord*) override { return 0; }
    uint32_t GetSwitchType() override { return 1; }
};

// One polling cycle at start, and none while the fuzzer runs.
RaidTimings OneCycleTimings() {
    RaidTimings t = FastTimings();
    t.nPollIntervalMs = 3600 * 1000;
    return t;
}

// The module, started on the demo tree; stopped when the process ends.
struct Session {
    std::shared_ptr<FakeRaidDaemon> pDaemon = std::make_shared<FakeRaidDaemon>();
    QuietSwitch sw;
    EM_TLRAID module{OneCycleTimings(), pDaemon};

    Session() {
        std::ifstream demo(TLR_SOURCE_DIR "/samples/trees/demo.xml");
        pDaemon->SetUp(true);
        pDaemon->Serve(std::string(std::istreambuf_iterator<char>(demo), {}));
        module.Start(&sw, 0);
    }
    ~Session() { module.Stop(); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Session session;
    const auto [recordText, tree] = SplitAtSeparator(AsText(data, size));
    CommandRecord record;
    if (record.SetJson(recordText)) {
        // The tree's text is the pass-through's reply too.
        session.pDaemon->Serve(std::string(tree));
        session.pDaemon->SetRedfishReply(std::string(tree));
        session.pDaemon->ForgetCalls();
        session.module.ClearAllSnapshots();
        session.module.ModuleRequest(&record);
        record.ToJson();
    }
    DropTrace();
    return 0;
}
