// Any command record against any storage tree, in the module's own process: the input is the
// record, a line "----" and the tree. One started module serves every input; before each
// request the daemon serves the input's tree and every client's snapshot is dropped, so that
// the request reads that tree.
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>

#include "FuzzKit.h"
#include "frame/CommandRecord.h"
#include "raid/EM_TLRAID.h"

namespace {

class TreeDaemon : public CIRaidDaemon {
  public:
    void Serve(std::string_view tree) {
        std::lock_guard<std::mutex> lock(m_Mutex);
        m_sTree = tree;
    }
    bool IsInstalled() override { return true; }
    bool IsServiceRunning() override { return true; }
    bool ProbeRestServer(uint32_t) override { return true; }
    bool FetchTree(std::string& xml, uint32_t) override {
        std::lock_guard<std::mutex> lock(m_Mutex);
        xml = m_sTree;
        return true;
    }
    bool PostRedfish(const std::string& body, std::string& reply, uint32_t) override {
        reply = body;
        return true;
    }

  private:
    std::mutex m_Mutex;
    std::string m_sTree;
};

class QuietSwitch : public ISwitch {
  public:
    int SendRequest(CIExtensionModule*, CommandRecord*, uint32_t) override { return 0; }
    int SendEvent(CIExtensionModule*, CommandRecord*) override { return 0; }
    uint32_t GetSwitchType() override { return 1; }
};

RaidTimings ShortTimings() {
    RaidTimings t;
    t.nStartDetectWaitMs = t.nThreadDetectWaitMs = 40;
    t.nInitWaitMs = 20;
    t.nStopPollEndedWaitMs = 2000;
    t.nStopWaitMs = 50;
    t.nSnapshotTries = 2;
    t.nSnapshotRetrySleepSec = 0;
    t.nPollIntervalMs = 3600 * 1000;  // one cycle at start only
    return t;
}

// The module, started on the demo tree; stopped when the process ends.
struct Session {
    std::shared_ptr<TreeDaemon> pDaemon = std::make_shared<TreeDaemon>();
    QuietSwitch sw;
    EM_TLRAID module{ShortTimings(), pDaemon};

    Session() {
        std::ifstream demo(TLR_SOURCE_DIR "/samples/trees/demo.xml");
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
        session.pDaemon->Serve(tree);
        session.module.ClearAllSnapshots();
        session.module.ModuleRequest(&record);
        record.ToJson();
    }
    DropTrace();
    return 0;
}
