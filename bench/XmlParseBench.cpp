// Parse throughput of CXmlDoc against three other parsers and a plain memchr scan for '<' on
// storage-like documents, with memory the process has touched before and with fresh memory,
// and a walk that visits every element and reads one attribute.
#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <tinyxml2.h>

#include <malloc.h>
#include <sys/resource.h>

#include <cstring>
#include <map>
#include <memory>
#include <pugixml.hpp>
#include <string>

#include "ParseRatio.h"
#include "StorageDocGen.h"
#include "xml/XmlDoc.h"

namespace {

const std::string& Doc(int64_t nBytes) {
    static std::map<int64_t, std::string> docs;
    auto it = docs.find(nBytes);
    if (it == docs.end()) {
        it = docs.emplace(nBytes, StorageDocGen::Make(size_t(nBytes))).first;
    }
    return it->second;
}

void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(10 * 1024)->Arg(1 << 20)->Arg(20 << 20)->Unit(benchmark::kMicrosecond);
}

// Parses: more sizes for the plot, each with memory reused (0) and fresh (1).
void ParseSizes(benchmark::internal::Benchmark* b) {
    b->ArgNames({"bytes", "fresh"});
    for (int64_t nFresh : {0, 1}) {
        for (int64_t nBytes : {10 << 10, 100 << 10, 1 << 20, 5 << 20, 20 << 20}) {
            b->Args({nBytes, nFresh});
        }
    }
    b->UseManualTime()->Unit(benchmark::kMicrosecond);
}

// Memory reused: freed blocks up to the largest document stay with the process, so that
// every parser runs on pages it has touched before. Fresh: blocks from 128 KiB on are mapped
// anew, and before each parse the allocator gives back every free page, so that each parse
// touches fresh pages, as one does in a process whose allocator has given its memory back.
void SetMemory(int64_t nFresh) {
    const int nLimit = nFresh ? 128 << 10 : 32 << 20;
    mallopt(M_MMAP_THRESHOLD, nLimit);
    mallopt(M_TRIM_THRESHOLD, nFresh ? nLimit : 1 << 30);
}

long MinorFaults() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_minflt;
}

void Throughput(benchmark::State& state, const std::string& s) {
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(s.size()));
    state.counters["doc_bytes"] = double(s.size());
}

// Runs a parse of the benchmark's document in the benchmark's memory mode; the time of each
// parse is the thread's CPU time, page faults included, and their count is kept too.
template <class Parse>
void MeasureParse(benchmark::State& state, const Parse& parse) {
    const std::string& s = Doc(state.range(0));
    const bool bFresh = state.range(1) != 0;
    SetMemory(state.range(1));
    parse(s);  // once before the clock, so that reused memory has been touched
    long nFaults = 0;
    for (auto _ : state) {
        if (bFresh) {
            malloc_trim(0);
        }
        const long nFaultsBefore = MinorFaults();
        const double start = ThreadClock::now();
        parse(s);
        state.SetIterationTime(ThreadClock::now() - start);
        nFaults += MinorFaults() - nFaultsBefore;
    }
    state.counters["faults"] = double(nFaults) / double(state.iterations());
    Throughput(state, s);
}

struct XmlDocFree {
    void operator()(xmlDoc* p) const { xmlFreeDoc(p); }
};
using XmlDocPtr = std::unique_ptr<xmlDoc, XmlDocFree>;

// Parsing

void BM_Parse_CXmlDoc(benchmark::State& state) {
    MeasureParse(state, [](const std::string& s) {
        CXmlDoc doc;
        bool bOk = doc.SetDoc(s);
        benchmark::DoNotOptimize(bOk);
    });
    CXmlDoc doc;
    doc.SetDoc(Doc(state.range(0)));
    uint32_t nElems = doc.GetRecordCount() - 1;
    state.counters["elements"] = double(nElems);
    state.counters["index_B_per_elem"] = double(sizeof(ElemPos));
    state.counters["index_alloc_B_per_elem"] = double(doc.GetIndexBytes()) / nElems;
}
BENCHMARK(BM_Parse_CXmlDoc)->Apply(ParseSizes);

void BM_Parse_pugixml(benchmark::State& state) {
    MeasureParse(state, [](const std::string& s) {
        pugi::xml_document doc;
        pugi::xml_parse_result r = doc.load_buffer(s.data(), s.size());
        benchmark::DoNotOptimize(r.status);
    });
}
BENCHMARK(BM_Parse_pugixml)->Apply(ParseSizes);

void BM_Parse_libxml2(benchmark::State& state) {
    MeasureParse(state, [](const std::string& s) {
        XmlDocPtr pDoc(xmlReadMemory(s.data(), int(s.size()), "bench.xml", nullptr,
                                     XML_PARSE_NONET | XML_PARSE_HUGE));
        benchmark::DoNotOptimize(pDoc.get());
    });
}
BENCHMARK(BM_Parse_libxml2)->Apply(ParseSizes);

void BM_Parse_tinyxml2(benchmark::State& state) {
    MeasureParse(state, [](const std::string& s) {
        tinyxml2::XMLDocument doc;
        tinyxml2::XMLError e = doc.Parse(s.data(), s.size());
        benchmark::DoNotOptimize(e);
    });
}
BENCHMARK(BM_Parse_tinyxml2)->Apply(ParseSizes);

// The floor of any parser: finding every '<' with memchr, in place.
void BM_Parse_memchr(benchmark::State& state) {
    MeasureParse(state, [](const std::string& s) {
        size_t nTags = 0;
        const char* p = s.data();
        const char* pEnd = p + s.size();
        while ((p = static_cast<const char*>(std::memchr(p, '<', size_t(pEnd - p))))) {
            ++nTags;
            ++p;
        }
        benchmark::DoNotOptimize(nTags);
    });
}
BENCHMARK(BM_Parse_memchr)->Apply(ParseSizes);

// Walking every element and reading its "Nr" attribute. Each walk counts the elements it
// visits, so that the figures can be seen to cover the same tree.

struct WalkCount {
    size_t nVisited = 0;
    size_t nValueBytes = 0;
};

void Report(benchmark::State& state, const WalkCount& count) {
    state.counters["visited"] = double(count.nVisited);
    state.counters["value_bytes"] = double(count.nValueBytes);
}

WalkCount WalkCXmlDoc(CXmlDoc& doc) {
    WalkCount count;
    doc.ResetPos();
    bool bMore = doc.FindElem();
    while (bMore) {
        ++count.nVisited;
        count.nValueBytes += doc.GetAttrib(doc.GetMainPos(), "Nr").size();
        doc.IntoElem();
        if (doc.FindElem()) {
            continue;  // its first child
        }
        doc.OutOfElem();
        while (!(bMore = doc.FindElem()) && doc.OutOfElem()) {
        }
    }
    return count;
}

void BM_Walk_CXmlDoc(benchmark::State& state) {
    CXmlDoc doc;
    doc.SetDoc(Doc(state.range(0)));
    WalkCount count;
    for (auto _ : state) {
        count = WalkCXmlDoc(doc);
        benchmark::DoNotOptimize(count);
    }
    Report(state, count);
}
BENCHMARK(BM_Walk_CXmlDoc)->Apply(Sizes);

WalkCount WalkPugixml(const pugi::xml_document& doc) {
    WalkCount count;
    for (pugi::xml_node node = doc.document_element(); node;) {
        ++count.nVisited;
        count.nValueBytes += std::strlen(node.attribute("Nr").value());
        pugi::xml_node next = node.first_child();
        while (next && next.type() != pugi::node_element) {
            next = next.next_sibling();
        }
        for (pugi::xml_node up = node; !next && up.type() == pugi::node_element; up = up.parent()) {
            next = up.next_sibling();
            while (next && next.type() != pugi::node_element) {
                next = next.next_sibling();
            }
        }
        node = next;
    }
    return count;
}

void BM_Walk_pugixml(benchmark::State& state) {
    const std::string& s = Doc(state.range(0));
    pugi::xml_document doc;
    doc.load_buffer(s.data(), s.size());
    WalkCount count;
    for (auto _ : state) {
        count = WalkPugixml(doc);
        benchmark::DoNotOptimize(count);
    }
    Report(state, count);
}
BENCHMARK(BM_Walk_pugixml)->Apply(Sizes);

WalkCount WalkLibxml2(xmlDoc* pDoc) {
    static const xmlChar* const pszNr = reinterpret_cast<const xmlChar*>("Nr");
    WalkCount count;
    for (xmlNode* p = xmlDocGetRootElement(pDoc); p;) {
        ++count.nVisited;
        if (xmlChar* pValue = xmlGetProp(p, pszNr)) {
            count.nValueBytes += std::strlen(reinterpret_cast<const char*>(pValue));
            xmlFree(pValue);
        }
        xmlNode* pNext = xmlFirstElementChild(p);
        for (xmlNode* pUp = p; !pNext && pUp && pUp->type == XML_ELEMENT_NODE; pUp = pUp->parent) {
            pNext = xmlNextElementSibling(pUp);
        }
        p = pNext;
    }
    return count;
}

void BM_Walk_libxml2(benchmark::State& state) {
    const std::string& s = Doc(state.range(0));
    XmlDocPtr pDoc(xmlReadMemory(s.data(), int(s.size()), "bench.xml", nullptr,
                                 XML_PARSE_NONET | XML_PARSE_HUGE));
    WalkCount count;
    for (auto _ : state) {
        count = WalkLibxml2(pDoc.get());
        benchmark::DoNotOptimize(count);
    }
    Report(state, count);
}
BENCHMARK(BM_Walk_libxml2)->Apply(Sizes);

WalkCount WalkTinyxml2(const tinyxml2::XMLDocument& doc) {
    WalkCount count;
    for (const tinyxml2::XMLElement* p = doc.RootElement(); p;) {
        ++count.nVisited;
        if (const char* pszValue = p->Attribute("Nr")) {
            count.nValueBytes += std::strlen(pszValue);
        }
        const tinyxml2::XMLElement* pNext = p->FirstChildElement();
        for (const tinyxml2::XMLElement* pUp = p; !pNext && pUp;
             pUp = pUp->Parent() ? pUp->Parent()->ToElement() : nullptr) {
            pNext = pUp->NextSiblingElement();
        }
        p = pNext;
    }
    return count;
}

void BM_Walk_tinyxml2(benchmark::State& state) {
    const std::string& s = Doc(state.range(0));
    tinyxml2::XMLDocument doc;
    doc.Parse(s.data(), s.size());
    WalkCount count;
    for (auto _ : state) {
        count = WalkTinyxml2(doc);
        benchmark::DoNotOptimize(count);
    }
    Report(state, count);
}
BENCHMARK(BM_Walk_tinyxml2)->Apply(Sizes);

}  // namespace

int main(int argc, char** argv) {
    SetMemory(0);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
