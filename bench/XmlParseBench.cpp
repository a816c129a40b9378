// Parse throughput of CXmlDoc against three other parsers on storage-like documents, and a walk
// that visits every element and reads one attribute.
#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <tinyxml2.h>

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <vector>

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

// The machine is shared: with repetitions, the least time of them is the figure to compare.
double Least(const std::vector<double>& a) {
    return *std::min_element(a.begin(), a.end());
}

void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(10 * 1024)->Arg(1 << 20)->Arg(20 << 20)->Unit(benchmark::kMicrosecond);
    b->ComputeStatistics("min", Least);
}

void Throughput(benchmark::State& state, const std::string& s) {
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(s.size()));
    state.counters["doc_bytes"] = double(s.size());
}

struct XmlDocFree {
    void operator()(xmlDoc* p) const { xmlFreeDoc(p); }
};
using XmlDocPtr = std::unique_ptr<xmlDoc, XmlDocFree>;

// Parsing

void BM_Parse_CXmlDoc(benchmark::State& state) {
    const std::string& s = Doc(state.range(0));
    for (auto _ : state) {
        CXmlDoc doc;
        bool bOk = doc.SetDoc(s);
        benchmark::DoNotOptimize(bOk);
    }
    Throughput(state, s);
    CXmlDoc doc;
    doc.SetDoc(s);
    uint32_t nElems = doc.GetRecordCount() - 1;
    state.counters["elements"] = double(nElems);
    state.counters["index_B_per_elem"] = double(sizeof(ElemPos));
    state.counters["index_alloc_B_per_elem"] = double(doc.GetIndexBytes()) / nElems;
}
BENCHMARK(BM_Parse_CXmlDoc)->Apply(Sizes);

void BM_Parse_pugixml(benchmark::State& state) {
    const std::string& s = Doc(state.range(0));
    for (auto _ : state) {
        pugi::xml_document doc;
        pugi::xml_parse_result r = doc.load_buffer(s.data(), s.size());
        benchmark::DoNotOptimize(r.status);
    }
    Throughput(state, s);
}
BENCHMARK(BM_Parse_pugixml)->Apply(Sizes);

void BM_Parse_libxml2(benchmark::State& state) {
    const std::string& s = Doc(state.range(0));
    for (auto _ : state) {
        XmlDocPtr pDoc(xmlReadMemory(s.data(), int(s.size()), "bench.xml", nullptr,
                                     XML_PARSE_NONET | XML_PARSE_HUGE));
        benchmark::DoNotOptimize(pDoc.get());
    }
    Throughput(state, s);
}
BENCHMARK(BM_Parse_libxml2)->Apply(Sizes);

void BM_Parse_tinyxml2(benchmark::State& state) {
    const std::string& s = Doc(state.range(0));
    for (auto _ : state) {
        tinyxml2::XMLDocument doc;
        tinyxml2::XMLError e = doc.Parse(s.data(), s.size());
        benchmark::DoNotOptimize(e);
    }
    Throughput(state, s);
}
BENCHMARK(BM_Parse_tinyxml2)->Apply(Sizes);

// Walking every element and reading its "Nr" attribute

size_t WalkCXmlDoc(CXmlDoc& doc) {
    size_t nFound = 0;
    doc.ResetPos();
    if (!doc.FindElem()) {
        return 0;
    }
    while (true) {
        nFound += doc.GetAttrib(doc.GetMainPos(), "Nr").size();
        doc.IntoElem();
        if (doc.FindElem()) {
            continue;  // first child
        }
        doc.OutOfElem();
        while (!doc.FindElem()) {
            if (!doc.OutOfElem()) {
                return nFound;
            }
        }
    }
}

void BM_Walk_CXmlDoc(benchmark::State& state) {
    const std::string& s = Doc(state.range(0));
    CXmlDoc doc;
    doc.SetDoc(s);
    for (auto _ : state) {
        benchmark::DoNotOptimize(WalkCXmlDoc(doc));
    }
    state.counters["elements"] = double(doc.GetRecordCount() - 1);
}
BENCHMARK(BM_Walk_CXmlDoc)->Apply(Sizes);

void BM_Walk_pugixml(benchmark::State& state) {
    const std::string& s = Doc(state.range(0));
    pugi::xml_document doc;
    doc.load_buffer(s.data(), s.size());
    for (auto _ : state) {
        size_t nFound = 0;
        pugi::xml_node node = doc.document_element();
        while (node) {
            nFound += std::strlen(node.attribute("Nr").value());
            pugi::xml_node next =
                node.find_child([](pugi::xml_node n) { return n.type() == pugi::node_element; });
            while (!next && node) {
                next = node.next_sibling();
                while (next && next.type() != pugi::node_element) {
                    next = next.next_sibling();
                }
                if (!next) {
                    node = node.parent();
                    if (node.type() != pugi::node_element) {
                        node = pugi::xml_node();
                    }
                }
            }
            node = next;
        }
        benchmark::DoNotOptimize(nFound);
    }
}
BENCHMARK(BM_Walk_pugixml)->Apply(Sizes);

void BM_Walk_libxml2(benchmark::State& state) {
    const std::string& s = Doc(state.range(0));
    XmlDocPtr pDoc(xmlReadMemory(s.data(), int(s.size()), "bench.xml", nullptr,
                                 XML_PARSE_NONET | XML_PARSE_HUGE));
    const xmlChar* pszNr = reinterpret_cast<const xmlChar*>("Nr");
    for (auto _ : state) {
        size_t nFound = 0;
        xmlNode* p = xmlDocGetRootElement(pDoc.get());
        while (p) {
            if (xmlChar* v = xmlGetProp(p, pszNr)) {
                nFound += std::strlen(reinterpret_cast<const char*>(v));
                xmlFree(v);
            }
            xmlNode* next = xmlFirstElementChild(p);
            while (!next && p) {
                next = xmlNextElementSibling(p);
                if (!next) {
                    p = p->parent && p->parent->type == XML_ELEMENT_NODE ? p->parent : nullptr;
                }
            }
            p = next;
        }
        benchmark::DoNotOptimize(nFound);
    }
}
BENCHMARK(BM_Walk_libxml2)->Apply(Sizes);

void BM_Walk_tinyxml2(benchmark::State& state) {
    const std::string& s = Doc(state.range(0));
    tinyxml2::XMLDocument doc;
    doc.Parse(s.data(), s.size());
    for (auto _ : state) {
        size_t nFound = 0;
        const tinyxml2::XMLElement* p = doc.RootElement();
        while (p) {
            if (const char* v = p->Attribute("Nr")) {
                nFound += std::strlen(v);
            }
            const tinyxml2::XMLElement* next = p->FirstChildElement();
            while (!next && p) {
                next = p->NextSiblingElement();
                if (!next) {
                    const tinyxml2::XMLNode* up = p->Parent();
                    p = up ? up->ToElement() : nullptr;
                }
            }
            p = next;
        }
        benchmark::DoNotOptimize(nFound);
    }
}
BENCHMARK(BM_Walk_tinyxml2)->Apply(Sizes);

}  // namespace

int main(int argc, char** argv) {
    // Freed memory stays with the process, so that every parser runs on pages it has touched
    // before: on a host where a page fault is dear, the first touch of fresh pages would otherwise
    // outweigh the parse, differently for each library's allocation sizes. Set
    // TLR_BENCH_FRESH_PAGES=1 to measure with the allocator's defaults.
    const char* pszFresh = std::getenv("TLR_BENCH_FRESH_PAGES");
    if (!pszFresh || std::strcmp(pszFresh, "1") != 0) {
        mallopt(M_MMAP_THRESHOLD, 1 << 30);
        mallopt(M_TRIM_THRESHOLD, 1 << 30);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
