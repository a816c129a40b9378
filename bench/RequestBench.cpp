// Requests as a client of the switch makes them: a started module in this process, its daemon
// replaced by one in memory, every client's snapshot filled before the clock starts. Each
// figure "parses" is the CPU time of one request over one CXmlDoc parse of the same tree.
// Trees come from gen-tree (about 10 KB, 1 MB and 20 MB) and from the growth series (drives
// per adapter, nesting and attributes, each 10 and 100 times the base). Besides them: the
// floors of the requests whose steps are prescribed, one polling cycle without the network,
// the disk status and the MDC progress map that requests and cycles rest on, and requests of
// 1, 2 and 4 threads side by side.
#include <benchmark/benchmark.h>

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <thread>

#include "GrowthTreeGen.h"
#include "ParseRatio.h"
#include "TreeWriter.h"
#include "frame/CommandRecord.h"
#include "frame/SwitchProtocol.h"
#include "raid/EM_TLRAID.h"
#include "storage/TLRaidData.h"
#include "support/FakeRaidDaemon.h"
#include "support/FastTimings.h"
#include "support/QuietSwitch.h"
#include "xml/XmlAttribScan.h"

namespace {

// The trees by number: 0-2 gen-tree's sizes; 10 + 3 * direction + step the growth series,
// direction 0 width, 1 depth, 2 attributes, step 0, 1, 2 for 1, 10 and 100 times the base.
enum TreeSize { kSmall, kMedium, kLarge };
constexpr int64_t kGrowthTrees = 10;

GenTreeOptions SizeOptions(int64_t nSize) {
    GenTreeOptions options;
    if (nSize == kSmall) {  // about 10 KB
        options.nAdapters = 1;
        options.nPorts = 1;
        options.nDrives = 7;
        options.nLogicalDrives = 1;
    } else if (nSize == kMedium) {  // about 1 MB
        options.nDrives = 345;
        options.nLogicalDrives = 8;
    } else {  // about 20 MB
        options.nPorts = 4;
        options.nDrives = 3450;
        options.nLogicalDrives = 64;
    }
    return options;
}

const std::string& Tree(int64_t nTree) {
    static std::map<int64_t, std::string> trees;
    std::string& text = trees[nTree];
    if (text.empty()) {
        if (nTree < kGrowthTrees) {
            text = WriteTree(SizeOptions(nTree));
        } else {
            const int64_t nDirection = (nTree - kGrowthTrees) / 3;
            const int64_t nStep = (nTree - kGrowthTrees) % 3;
            const int nFactor = nStep == 0 ? 1 : nStep == 1 ? 10 : 100;
            GrowthShape shape = {20, 5, 2};
            int* pGrown = nDirection == 0   ? &shape.nDrives
                          : nDirection == 1 ? &shape.nDepth
                                            : &shape.nAttribs;
            *pGrown *= nFactor;
            text = GrowthTreeGen::Make(shape);
        }
    }
    return text;
}

// The module, started once on the first tree asked for and stopped when the process ends.
struct Session {
    std::shared_ptr<FakeRaidDaemon> pDaemon = std::make_shared<FakeRaidDaemon>();
    QuietSwitch sw;
    EM_TLRAID module{OneCycleTimings(), pDaemon};
    int64_t nServed = -1;

    Session() {
        pDaemon->SetUp(true);
        pDaemon->Serve(Tree(kSmall));
        module.Start(&sw, 0);
    }
    ~Session() { module.Stop(); }

    // The daemon serves this tree; snapshots of another tree are dropped.
    void Serve(int64_t nTree) {
        if (nServed != nTree) {
            pDaemon->Serve(Tree(nTree));
            module.ClearAllSnapshots();
            nServed = nTree;
        }
    }

    static Session& Get() {
        static Session session;
        return session;
    }
};

std::string RecordText(uint32_t nOc, uint32_t nOe, uint32_t nClient) {
    return "{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":" + std::to_string(nOc) +
           ",\"OE\":" + std::to_string(nOe) + ",\"OI\":0,\"CI\":" + std::to_string(nClient) +
           "}]}}";
}

// The module's part of a request; the host's writing of the answered record is left out.
void Ask(EM_TLRAID& module, const std::string& text) {
    CommandRecord record;
    record.SetJson(text);
    module.ModuleRequest(&record);
    benchmark::DoNotOptimize(record.GetField("ST", 0));
}

template <uint32_t nOc, uint32_t nOe = 0>
void Request(benchmark::State& state) {
    Session& session = Session::Get();
    const int64_t nTree = state.range(0);
    if (state.thread_index() == 0) {
        session.Serve(nTree);
    }
    const std::string text = RecordText(nOc, nOe, uint32_t(state.thread_index()) + 1);
    Ask(session.module, text);  // fills this client's snapshot
    double dSeconds = 0;
    for (auto _ : state) {
        const double start = ThreadClock::now();
        Ask(session.module, text);
        dSeconds += SecondsSince(start);
    }
    state.SetItemsProcessed(state.iterations());
    if (state.thread_index() == 0) {
        state.counters["parses"] =
            dSeconds / double(state.iterations()) / ParseSeconds(Tree(nTree));
        state.counters["KiB"] = double(Tree(nTree).size()) / 1024;
    }
}

// One polling cycle: a module of its own polls without a pause, while the benchmark's thread
// mostly sleeps; the process's CPU time between two fetches some cycles apart, over the
// cycles between them, is the module thread's time for one cycle.
void PollingCycle(benchmark::State& state) {
    const std::string& tree = Tree(state.range(0));
    auto pDaemon = std::make_shared<FakeRaidDaemon>();
    pDaemon->SetUp(true);
    pDaemon->Serve(tree);
    RaidTimings timings = FastTimings();
    timings.nPollIntervalMs = 0;
    QuietSwitch sw;
    EM_TLRAID module(timings, pDaemon);
    module.Start(&sw, 0);
    const auto processSeconds = [] {
        timespec t;
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
        return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
    };
    size_t nCycles = 0;
    double dSeconds = 0;
    for (auto _ : state) {
        const size_t nFirst = pDaemon->WaitForFetches(pDaemon->Fetches() + 1);
        const double start = processSeconds();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        const size_t nLast = pDaemon->WaitForFetches(pDaemon->Fetches() + 1);
        dSeconds += processSeconds() - start;
        nCycles += nLast - nFirst;
    }
    module.Stop();
    state.counters["parses"] = dSeconds / double(nCycles) / ParseSeconds(tree);
    state.counters["cycles"] = double(nCycles);
    state.counters["KiB"] = double(tree.size()) / 1024;
}

// The status of all disks over the tree, which the customer replaceable parts rest on, as
// its getter answers it on a parsed snapshot.
void DiskStatus(benchmark::State& state) {
    const std::string& text = Tree(state.range(0));
    double dSeconds = 0;
    for (auto _ : state) {
        const double start = ThreadClock::now();
        CTLRaidData tree;
        tree.SetDoc(text);
        int32_t nDisks = 0;
        tree.GetPhysicalDiskOverallComponentStatus(nDisks);
        benchmark::DoNotOptimize(nDisks);
        dSeconds += SecondsSince(start);
    }
    state.counters["parses"] = dSeconds / double(state.iterations()) / ParseSeconds(text);
    state.counters["KiB"] = double(text.size()) / 1024;
}

// The MDC progress map of one adapter with 8, 80 and 800 logical drives of 4 drives each.
void MdcMap(benchmark::State& state) {
    static std::map<int64_t, std::string> trees;
    std::string& text = trees[state.range(0)];
    if (text.empty()) {
        GenTreeOptions options;
        options.nAdapters = 1;
        options.nPorts = 1;
        options.nLogicalDrives = uint32_t(state.range(0));
        options.nDrives = 4 * options.nLogicalDrives;
        text = WriteTree(options);
    }
    double dSeconds = 0;
    for (auto _ : state) {
        const double start = ThreadClock::now();
        CTLRaidData tree;
        tree.SetDoc(text);
        benchmark::DoNotOptimize(tree.GetMDCProgressMap().size());
        dSeconds += SecondsSince(start);
    }
    state.counters["parses"] = dSeconds / double(state.iterations()) / ParseSeconds(text);
    state.counters["KiB"] = double(text.size()) / 1024;
}

// Floors: the least work that a request's prescribed steps need, done once, measured as
// parses of the same tree like the requests.
template <class Work>
void Floor(benchmark::State& state, const Work& work) {
    const std::string& text = Tree(state.range(0));
    double dSeconds = 0;
    for (auto _ : state) {
        const double start = ThreadClock::now();
        work(text);
        dSeconds += SecondsSince(start);
    }
    state.counters["parses"] = dSeconds / double(state.iterations()) / ParseSeconds(text);
    state.counters["KiB"] = double(text.size()) / 1024;
}

// One walk over every element that reads its start tag through and writes its markup into
// a buffer sized ahead: what any writer of a rebuilt tree must do at least.
void WalkAndWrite(const CXmlDoc& doc, std::string& sOut) {
    const std::string& sText = doc.GetDocText();
    sOut.clear();
    sOut.reserve(sText.size());
    for (uint32_t iPos = 1; iPos < doc.GetRecordCount(); ++iPos) {
        const ElemPos& elem = doc.GetRecord(iPos);
        XmlAttribScan scan(doc, iPos);
        XmlAttribScan::Item item;
        while (scan.Next(item)) {
        }
        sOut.append(sText, elem.nStart, elem.StartTagLen());
        uint32_t nStart, nEnd;
        if (!elem.iElemChild && doc.ContentRange(iPos, nStart, nEnd)) {
            sOut.append(sText, nStart, elem.nStart + elem.nLength - nStart);
        }
        sOut += '\n';
    }
}

// A text parsed and written out again by one walk.
std::string ParsedAndWritten(const std::string& text) {
    CXmlDoc doc;
    doc.SetDoc(text);
    std::string sOut;
    WalkAndWrite(doc, sOut);
    return sOut;
}

// The snapshot's parse, the rebuilt tree written, the answer copied into the record.
void FloorExportXml(benchmark::State& state) {
    Floor(state, [](const std::string& text) {
        const std::string sAnswer = ParsedAndWritten(text);
        benchmark::DoNotOptimize(std::string(sAnswer).data());
    });
}

// The same, then the rebuilt tree parsed and written once more.
void FloorExportJson(benchmark::State& state) {
    Floor(state, [](const std::string& text) {
        const std::string sAnswer = ParsedAndWritten(ParsedAndWritten(text));
        benchmark::DoNotOptimize(std::string(sAnswer).data());
    });
}

// The snapshot's parse, then the adapter cut out and parsed.
void FloorAdapterCut(benchmark::State& state) {
    Floor(state, [](const std::string& text) {
        CTLRaidData tree;
        tree.SetDoc(text);
        CTLRaidData adapter;
        benchmark::DoNotOptimize(tree.GetAdapterData(adapter, 0));
    });
}

// A polling cycle's work in line, without the thread: the fetched text copied, parsed, and
// its MDC progress map, which cuts out and parses every adapter and logical drive.
void FloorPollingCycle(benchmark::State& state) {
    Floor(state, [](const std::string& text) {
        std::string sFetched = text;
        CTLRaidData tree;
        tree.SetDoc(sFetched);
        benchmark::DoNotOptimize(tree.GetMDCProgressMap().size());
    });
}

void Sizes(benchmark::internal::Benchmark* b) {
    b->ArgName("tree")->Arg(kSmall)->Arg(kMedium)->Arg(kLarge)->Unit(benchmark::kMicrosecond);
}

// Growth trees: width, depth and attributes, each at 1, 10 and 100 times the base.
void Growth(benchmark::internal::Benchmark* b) {
    b->ArgName("tree");
    for (int64_t nTree = kGrowthTrees; nTree < kGrowthTrees + 9; ++nTree) {
        b->Arg(nTree);
    }
    b->Unit(benchmark::kMicrosecond);
}

void BothSeries(benchmark::internal::Benchmark* b) {
    Sizes(b);
    Growth(b);
}

}  // namespace

BENCHMARK(Request<oc::kAdapterCount>)->Name("AdapterCount")->Apply(Sizes);
BENCHMARK(Request<oc::kDriveStatus>)->Name("DriveStatus")->Apply(Sizes);
BENCHMARK(Request<oc::kLogicalDriveCount>)->Name("LogicalDriveCount")->Apply(Sizes);
BENCHMARK(Request<oc::kSmartStatus>)->Name("Smart")->Apply(BothSeries);
BENCHMARK(Request<oc::CM_RaidStatusCustomerReplaceable>)->Name("Replaceable")->Apply(BothSeries);
BENCHMARK(Request<oc::kStorageTreeExport, oc::kSelectTreeXml>)
    ->Name("ExportXml")
    ->Apply(BothSeries);
BENCHMARK(Request<oc::kStorageTreeExport, oc::kSelectTreeJson>)
    ->Name("ExportJson")
    ->Apply(BothSeries);
BENCHMARK(Request<oc::kTestRawTree>)->Name("RawTree")->Apply(BothSeries);
BENCHMARK(PollingCycle)->Apply(Sizes);
BENCHMARK(DiskStatus)->Apply(BothSeries);
BENCHMARK(FloorExportXml)->Apply(BothSeries);
BENCHMARK(FloorExportJson)->Apply(BothSeries);
BENCHMARK(FloorAdapterCut)->Apply(Sizes);
BENCHMARK(FloorPollingCycle)->Apply(Sizes);
BENCHMARK(MdcMap)->ArgName("lds")->Arg(8)->Arg(80)->Arg(800)->Unit(benchmark::kMicrosecond);
// Clients side by side on the 1 MB tree; the figure that counts is items_per_second.
BENCHMARK(Request<oc::kAdapterCount>)
    ->Name("Clients/AdapterCount")
    ->Arg(kMedium)
    ->Threads(1)
    ->Threads(2)
    ->Threads(4)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(Request<oc::kDriveStatus>)
    ->Name("Clients/DriveStatus")
    ->Arg(kMedium)
    ->Threads(1)
    ->Threads(2)
    ->Threads(4)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
