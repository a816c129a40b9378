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
#include "support/QuietSwitch.h"

namespace {

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
