// The rows that hand a client the tree as a whole, answer questions about it, pass Redfish
// requests through to the RAID manager and hold the test attribute. Each row takes its own
// steps, since several answer a missing tree or missing data with other statuses than the
// usual ones.
#include <iterator>
#include <utility>

#include "raid/EM_TLRAID.h"
#include "raid/RequestTable.h"
#include "runtime/DebugClient.h"
#include "storage/AdapterDeviceId.h"
#include "storage/StorageExport.h"
#include "storage/StorageTreeConvert.h"
#include "storage/XmlValidator.h"

namespace {

constexpr uint32_t kTestValueMask = CommandRecord::kLowByteMask;

// The request's text from its first byte; false when its data holds none.
bool RequestText(CRequest& r, std::string& text) {
    return r.m_Record.GetDataString(text, 0);
}

void ExportTree(CRequest& r, const RequestRow&) {
    int format = 0;
    if (r.m_nSelector == oc::kSelectTreeXml) {
        format = kStorageTreeXml;
    } else if (r.m_nSelector == oc::kSelectTreeJson) {
        format = kStorageTreeJson;
    } else {
        r.AnswerStatus(status::kUnknownCode);
        return;
    }
    if (!r.Snapshot())
        return;
    std::string text;
    if (ExportStorageTree(r.m_Tree, format, text))
        r.AnswerText(text);
}

// Whether a path exists in the tree as the daemon sent it; the answer is always the empty
// text.
void ValueByPath(CRequest& r, const RequestRow&) {
    if (!r.DataPresent() || !r.Snapshot())
        return;
    // The exported tree is built as for an export, though the walk reads the raw one.
    CTLRaidData exported;
    BuildStorageDeviceTree(exported, r.m_Tree);
    std::string path;
    RequestText(r, path);
    if (r.m_nSelector != oc::kSelectPathInRawTree)
        return;
    std::string value;
    if (GetValueByPath(r.m_Tree, value, path.c_str(), kPathMustExist))
        r.AnswerText(value);
}

using IndexFinder = bool (*)(CXmlDoc&, uint32_t&, const std::string&);

// The index of the adapter that the request's device id names, by the finder's count.
void AnswerAdapterIndex(CRequest& r, IndexFinder find) {
    if (!r.DataPresent())
        return;
    std::string id;
    RequestText(r, id);
    if (!r.Snapshot(status::kNoRaidData))
        return;
    uint32_t index = 0;
    if (find(r.m_Tree, index, id))
        r.AnswerUInt(index);
}

void AdapterIndex(CRequest& r, const RequestRow&) {
    AnswerAdapterIndex(r, FindAdapterIndex);
}

void BatteryAdapterIndex(CRequest& r, const RequestRow&) {
    AnswerAdapterIndex(r, FindBatteryAdapterIndex);
}

// The tree as the daemon sends it now, cleaned when it is well formed; no snapshot is read
// or kept.
void RawTree(CRequest& r, const RequestRow&) {
    std::string xml;
    if (!r.m_Module.FetchRawTree(xml)) {
        r.AnswerStatus(status::kNoRaidData);
        return;
    }
    r.AnswerText(CleanStorageTreeText(std::move(xml)));
}

// The request's body goes to the RAID manager, and its reply back to the client.
void RedfishPassThrough(CRequest& r, const RequestRow&) {
    TLR_TRACE(3, "\nTLRAIDRedfishClient    : RaidRedfishRequest");
    // A missing body keeps the preset status: this code doesn't answer "data missing".
    std::string body;
    if (!r.m_Record.HasData() || !RequestText(r, body))
        return;
    std::string reply;
    r.m_Module.RaidRedfishRequest(body, reply);
    r.AnswerText(reply);
}

struct TestAttribute {
    uint32_t nSelector;
    const char* pszName;
    const char* pszWhat;  // in the trace
};

const TestAttribute kTestAttributes[] = {
    {oc::kSelectTestDiskAttribute, "PD0Status", "physical disk"},
    {oc::kSelectTestBatteryAttribute, "BBU0Status", "BBU"},
};

// Sets the test attribute that OE selects to the low byte of the data, or clears it without
// data. Only where the switch allowed test requests.
void SetTestAttribute(CRequest& r, const RequestRow&) {
    if (!r.m_Module.AreTestRequestsEnabled()) {
        r.AnswerStatus(status::kNoRaidData);
        return;
    }
    for (const TestAttribute& attribute : kTestAttributes) {
        if (attribute.nSelector != r.m_nSelector)
            continue;
        if (r.m_Record.HasData()) {
            uint32_t value = 0;
            r.m_Record.GetDataUInt(value);
            value &= kTestValueMask;
            r.m_Module.SetTestAttribute(attribute.pszName, value);
            r.AnswerStatus(status::kOk);
            TLR_TRACE(3, "\nEM_TLRaid           : ModuleRequest - %s testAttribute set to %d",
                      attribute.pszWhat, static_cast<int>(value));
        } else {
            r.m_Module.SetTestAttribute("", 0);
            r.AnswerStatus(status::kOk);
            TLR_TRACE(3, "\nEM_TLRaid           : ModuleRequest - %s testAttribute disabled",
                      attribute.pszWhat);
        }
        return;
    }
}

// Rows that take their own steps.
constexpr RequestRow Own(uint32_t code, RowHandler handler) {
    return Plain(code, Steps::kNone, handler);
}

const RequestRow kTreeRows[] = {
    Own(oc::kStorageTreeExport, ExportTree),
    Own(oc::kRestPassThrough, RedfishPassThrough),
    Own(oc::kTreeValueByPath, ValueByPath),
    Own(oc::kAdapterIndexByDeviceId, AdapterIndex),
    Own(oc::kBatteryAdapterIndexByDeviceId, BatteryAdapterIndex),
    Own(oc::kTestRawTree, RawTree),
    Own(oc::kTestAttribute, SetTestAttribute),
};

}  // namespace

RequestRows TreeRequestRows() {
    return {std::begin(kTreeRows), std::end(kTreeRows)};
}
