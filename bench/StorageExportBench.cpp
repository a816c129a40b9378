// The tree as clients get it, on trees whose adapter holds many drives of one name: the
// JSON writer, the rebuilt tree and the cleaning of a raw tree. Each should take time in
// proportion to the number of drives.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>

#include "storage/StorageExport.h"
#include "storage/StorageTreeConvert.h"
#include "storage/TLRaidData.h"
#include "storage/XmlValidator.h"

namespace {

// A raw tree: one adapter with n drives straight beneath it.
const std::string& RawTree(int64_t nDrives) {
    static std::map<int64_t, std::string> trees;
    auto it = trees.find(nDrives);
    if (it != trees.end()) {
        return it->second;
    }
    std::string s =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<amEMTL Version=\"2\">\n"
        "<System NrOfProperties=\"0\">\n<Adapter Type=\"SAS\" Nr=\"0\" NrOfProperties=\"3\">\n"
        "<Status>OK</Status>\n<PCIBus>24</PCIBus>\n<PCIDevice>0</PCIDevice>\n";
    char drive[512];
    for (int64_t i = 0; i < nDrives; ++i) {
        snprintf(drive, sizeof(drive),
                 "<PhysicalDrive DeviceNumber=\"%lld\" NrOfProperties=\"5\">\n"
                 "<Name>MIRAVEX MX4000N (%lld)</Name>\n<Status>Operational</Status>\n"
                 "<Type>SAS</Type>\n<SerialNumber>MV4N%08lld</SerialNumber>\n"
                 "<PhysicalSize>3814697</PhysicalSize>\n</PhysicalDrive>\n",
                 static_cast<long long>(i), static_cast<long long>(i), static_cast<long long>(i));
        s += drive;
    }
    s += "</Adapter>\n</System>\n</amEMTL>\n";
    return trees.emplace(nDrives, std::move(s)).first->second;
}

void Drives(benchmark::internal::Benchmark* b) {
    b->Arg(2000)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond);
    b->Complexity(benchmark::oN);
}

void Report(benchmark::State& state, size_t nBytes) {
    state.SetComplexityN(state.range(0));
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(nBytes));
    state.counters["out_bytes"] = double(nBytes);
}

void BM_JsonOfSameNamedDrives(benchmark::State& state) {
    CTLRaidData source, exported;
    source.SetDoc(RawTree(state.range(0)));
    BuildStorageDeviceTree(exported, source);
    std::string json;
    for (auto _ : state) {
        ConvertStorageTree(exported, json, kStorageTreeJson);
        benchmark::DoNotOptimize(json.data());
    }
    Report(state, json.size());
}
BENCHMARK(BM_JsonOfSameNamedDrives)->Apply(Drives);

void BM_ExportOfSameNamedDrives(benchmark::State& state) {
    CTLRaidData source;
    source.SetDoc(RawTree(state.range(0)));
    size_t nBytes = 0;
    for (auto _ : state) {
        CTLRaidData exported;
        BuildStorageDeviceTree(exported, source);
        nBytes = exported.GetDoc().size();
    }
    Report(state, nBytes);
}
BENCHMARK(BM_ExportOfSameNamedDrives)->Apply(Drives);

void BM_CleanRawTreeOfSameNamedDrives(benchmark::State& state) {
    const std::string& raw = RawTree(state.range(0));
    for (auto _ : state) {
        std::string clean = CleanStorageTreeText(raw);
        benchmark::DoNotOptimize(clean.data());
    }
    Report(state, raw.size());
}
BENCHMARK(BM_CleanRawTreeOfSameNamedDrives)->Apply(Drives);

}  // namespace

BENCHMARK_MAIN();
