// Parse throughput of CXmlDoc against three other parsers on storage-like documents, and a walk
// that visits every element and reads one attribute.
#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <tinyxml2.h>

#include <malloc.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <pugixml.hpp>
#include <string>

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
