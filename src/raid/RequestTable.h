#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "frame/CommandRecord.h"
#include "storage/TLRaidData.h"

class EM_TLRAID;
struct RequestRow;

// One request of a client while a row answers it: the command's fields, the documents that
// the row's steps prepared, and the result of ModuleRequest. Every path that gives no answer
// leaves the status preset before the row ran.
class CRequest {
  public:
    using ObjectGetter = bool (CTLRaidData::*)(CXmlDoc&, uint32_t);

    CRequest(EM_TLRAID& module, CommandRecord& record);
    CRequest(const CRequest&) = delete;
    CRequest& operator=(const CRequest&) = delete;

    // The steps; each sets the status of its failure and gives false.
    // The client's snapshot into m_Tree; without one, failStatus.
    bool Snapshot(uint32_t failStatus = status::kNotAvailable);
    // The adapter of that index into m_Adapter; without one, not available.
    bool Adapter(uint32_t index);
    // The adapter OE, then its object OI into m_Object; no such object is its own status.
    bool Object(ObjectGetter get);
    // The request's data is there; else data missing.
    bool DataPresent();
    // The request's text into m_sText; empty, data missing.
    bool TextGiven();

    // Answers, each with status 0.
    void AnswerByte(uint32_t value) { m_Record.SetDataByte(static_cast<int>(value), status::kOk); }
    void AnswerUInt(uint32_t value) { m_Record.SetDataUInt(value, status::kOk); }
    void AnswerUInt64(uint64_t value) { m_Record.SetDataUInt64(value, status::kOk); }
    void AnswerText(const std::string& text) { m_Record.SetDataString(text.c_str(), status::kOk); }
    // A status without an answer; Decline also makes ModuleRequest return 0.
    void AnswerStatus(uint32_t st) { m_Record.SetStatus(st); }
    void Decline() { m_nResult = 0; }

    EM_TLRAID& m_Module;
    CommandRecord& m_Record;
    const uint32_t m_nClient;
    const uint32_t m_nSelector;  // OE
    const uint32_t m_nIndex;     // OI
    CTLRaidData m_Tree;
    CTLRaidData m_Adapter;
    CTLRaidData m_Object;
    // The document that the row's steps ended on: the object, else the adapter.
    CTLRaidData* m_pSubject = &m_Adapter;
    std::string m_sText;
    uint32_t m_nResult = 1;
};

// What a row does before its handler runs.
enum class Steps : uint8_t {
    kNone,       // nothing: the handler takes whatever steps it needs
    kSnapshot,   // the client's snapshot
    kAdapterOi,  // the adapter OI
    kAdapterOe,  // the adapter OE
    kObject,     // the adapter OE, then its object OI by the row's getter
};

using RowHandler = void (*)(CRequest& request, const RequestRow& row);
using ValueGetter = int32_t (CTLRaidData::*)();
using CountGetter = uint32_t (CTLRaidData::*)();
using PropertyGetter = bool (CTLRaidData::*)(std::string&, const char*);
// A tree's number as the number a client receives.
using StatusMap = uint32_t (*)(int32_t);

// One object code: its steps and its handler, with what the handler reads and maps. A row
// is built by a maker (Plain below, the others in RequestTable.cpp) that sets the members it
// needs by name; the others keep their defaults.
struct RequestRow {
    uint32_t nCode = 0;
    Steps steps = Steps::kNone;
    RowHandler handler = nullptr;
    CRequest::ObjectGetter object = nullptr;  // Steps::kObject
    bool bNamedByText = false;                // data present before the steps, the text after
    ValueGetter value = nullptr;
    StatusMap map = nullptr;  // null: the value as it is
    CountGetter count = nullptr;
    PropertyGetter property = nullptr;
};

// A row of its code, steps and handler alone.
constexpr RequestRow Plain(uint32_t code, Steps steps, RowHandler handler) {
    RequestRow row;
    row.nCode = code;
    row.steps = steps;
    row.handler = handler;
    return row;
}

// The row of an object code; null when it has none.
const RequestRow* FindRequestRow(uint32_t code);
// Every row, the main table's and then the families'.
std::vector<const RequestRow*> AllRequestRows();

// The rows of a family kept in a file of its own; FindRequestRow searches them too.
struct RequestRows {
    const RequestRow* pFirst;
    const RequestRow* pEnd;
};
RequestRows TreeRequestRows();  // TreeRows.cpp: the tree as a whole, pass-through, tests

// Carries out the row of the record's OC (status 1 and result 0 without one); the result
// of ModuleRequest.
uint32_t AnswerRequest(EM_TLRAID& module, CommandRecord& record);

// Handlers that many rows share: on the document the steps ended on.
namespace rows {
void Name(CRequest& r, const RequestRow& row);             // text of Name, empty if none
void MappedByte(CRequest& r, const RequestRow& row);       // map(value) by byte
void MappedUInt(CRequest& r, const RequestRow& row);       // map(value) by 32 bits
void Count(CRequest& r, const RequestRow& row);            // count by 32 bits
void Property(CRequest& r, const RequestRow& row);         // the property the text names
void KnownUnanswered(CRequest& r, const RequestRow& row);  // unknown code, result 1
void NoSuchObject(CRequest& r, const RequestRow& row);
void Declined(CRequest& r, const RequestRow& row);  // result 0, status as preset

// Handlers of one row each, by family.
void AdapterCount(CRequest& r, const RequestRow& row);
void AdapterDeviceId(CRequest& r, const RequestRow& row);
void AdapterPciIdentity(CRequest& r, const RequestRow& row);
void MultiplexerStatus(CRequest& r, const RequestRow& row);
void SmartOfAllDrives(CRequest& r, const RequestRow& row);
void CustomerReplaceable(CRequest& r, const RequestRow& row);
void RenewSnapshot(CRequest& r, const RequestRow& row);
void CabinetList(CRequest& r, const RequestRow& row);
void IdentityText(CRequest& r, const RequestRow& row);
void DriveSize(CRequest& r, const RequestRow& row);
void DriveEnclosureIndex(CRequest& r, const RequestRow& row);
void DriveIndex(CRequest& r, const RequestRow& row);
void EnclosureIndex(CRequest& r, const RequestRow& row);
void LogicalDriveSize(CRequest& r, const RequestRow& row);
void LogicalDrivePhysicalSize(CRequest& r, const RequestRow& row);
void LogicalDriveRaidLevel(CRequest& r, const RequestRow& row);
void BatteryLearnCycle(CRequest& r, const RequestRow& row);
}  // namespace rows
