// The requests over a whole tree as a client's snapshot gets them (the snapshot's text parsed,
// then the request's work) on trees that grow ten and a hundred times in one direction: drives
// per adapter, nesting, attributes per drive. The counter "parses" is the time of a request
// over the time of one CXmlDoc parse of the same tree, so that a request that grows with the
// tree keeps its figure and one that grows faster shows it as a rising figure.
#include <benchmark/benchmark.h>

#include <chrono>
#include <map>
#include <string>

#include "GrowthTreeGen.h"
#include "ParseRatio.h"
#include "storage/StorageTreeConvert.h"
#include "storage/TLRaidData.h"
#include "storage/XmlValidator.h"

namespace {

enum Direction { kWidth, kDepth, kAttribs };
constexpr GrowthShape kBase = {20, 5, 2};

const std::string& Tree(int64_t nDirection, int64_t nFactor) {
    static std::map<std::pair<int64_t, int64_t>, std::string> trees;
    auto& text = trees[{nDirection, nFactor}];
    if (text.empty()) {
        GrowthShape shape = kBase;
        int* pGrown = nDirection == kWidth   ? &shape.nDrives
                      : nDirection == kDepth ? &shape.nDepth
                                             : &shape.nAttribs;
        *pGrown *= static_cast<int>(nFactor);
        text = GrowthTreeGen::Make(shape);
    }
    return text;
}

// Runs the request on the tree of the benchmark's arguments, and the parse alone after it.
template <class Request>
void Measure(benchmark::State& state, const Request& request) {
    const std::string& text = Tree(state.range(0), state.range(1));
    double dRequests = 0;
    for (auto _ : state) {
        const double start = ThreadClock::now();
        request(text);
        dRequests += SecondsSince(start);
    }
    state.counters["parses"] = dRequests / double(state.iterations()) / ParseSeconds(text);
    state.counters["KiB"] = double(text.size()) / 1024;
}

void Clean(benchmark::State& state) {
    Measure(state, [](const std::string& text) {
        benchmark::DoNotOptimize(CleanStorageTreeText(text).size());
    });
}

void Smart(benchmark::State& state) {
    Measure(state, [](const std::string& text) {
        CTLRaidData tree;
        tree.SetDoc(text);
        benchmark::DoNotOptimize(tree.GetSmartFlagOfAllDrives());
    });
}

void DiskStatus(benchmark::State& state) {
    Measure(state, [](const std::string& text) {
        CTLRaidData tree;
        tree.SetDoc(text);
        int32_t nDisks = 0;
        tree.GetPhysicalDiskOverallComponentStatus(nDisks);
        benchmark::DoNotOptimize(nDisks);
    });
}

template <int nFormat>
void Export(benchmark::State& state) {
    Measure(state, [](const std::string& text) {
        CTLRaidData tree;
        tree.SetDoc(text);
        std::string out;
        ExportStorageTree(tree, nFormat, out);
        benchmark::DoNotOptimize(out.size());
    });
}

// Direction, then factor.
void Growth(benchmark::internal::Benchmark* b) {
    b->ArgNames({"dir", "x"});
    for (int64_t nDirection : {kWidth, kDepth, kAttribs}) {
        for (int64_t nFactor : {1, 10, 100}) {
            b->Args({nDirection, nFactor});
        }
    }
    b->Unit(benchmark::kMicrosecond);
}

}  // namespace

BENCHMARK(Clean)->Apply(Growth);
BENCHMARK(Smart)->Apply(Growth);
BENCHMARK(DiskStatus)->Apply(Growth);
BENCHMARK(Export<kStorageTreeXml>)->Name("ExportXml")->Apply(Growth);
BENCHMARK(Export<kStorageTreeJson>)->Name("ExportJson")->Apply(Growth);

BENCHMARK_MAIN();
