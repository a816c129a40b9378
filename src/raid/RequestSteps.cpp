// The steps that rows are made of, and the handlers that many rows share.
#include "raid/EM_TLRAID.h"
#include "raid/RequestTable.h"

CRequest::CRequest(EM_TLRAID& module, CommandRecord& record)
    : m_Module(module),
      m_Record(record),
      m_nClient(record.GetField("CI", 0)),
      m_nSelector(record.GetField("OE", 0)),
      m_nIndex(record.GetField("OI", 0)) {}

bool CRequest::Snapshot(uint32_t failStatus) {
    if (m_Module.TLRaidDataGetSnapshot(m_Tree, m_nClient))
        return true;
    m_Record.SetStatus(failStatus);
    return false;
}

bool CRequest::Adapter(uint32_t index) {
    if (m_Module.GetRaidAdapterData(m_Adapter, m_nClient, index))
        return true;
    m_Record.SetStatus(status::kNotAvailable);
    return false;
}

bool CRequest::Object(ObjectGetter get) {
    if (!Adapter(m_nSelector))
        return false;
    if ((m_Adapter.*get)(m_Object, m_nIndex))
        return true;
    m_Record.SetStatus(status::kNoSuchObject);
    return false;
}

bool CRequest::DataPresent() {
    if (m_Record.HasData())
        return true;
    m_Record.SetStatus(status::kDataMissing);
    return false;
}

bool CRequest::TextGiven() {
    m_sText.clear();
    m_Record.GetDataString(m_sText, 0);
    if (!m_sText.empty())
        return true;
    m_Record.SetStatus(status::kDataMissing);
    return false;
}

namespace rows {

namespace {

uint32_t MappedValue(CRequest& r, const RequestRow& row) {
    int32_t value = (r.m_pSubject->*row.value)();
    return row.map ? row.map(value) : static_cast<uint32_t>(value);
}

}  // namespace

void Name(CRequest& r, const RequestRow&) {
    std::string name;
    r.m_pSubject->GetName(name);
    r.AnswerText(name);
}

void MappedByte(CRequest& r, const RequestRow& row) {
    r.AnswerByte(MappedValue(r, row));
}

void MappedUInt(CRequest& r, const RequestRow& row) {
    r.AnswerUInt(MappedValue(r, row));
}

void Count(CRequest& r, const RequestRow& row) {
    r.AnswerUInt((r.m_pSubject->*row.count)());
}

void Property(CRequest& r, const RequestRow& row) {
    std::string value;
    if ((r.m_pSubject->*row.property)(value, r.m_sText.c_str()))
        r.AnswerText(value);
}

void KnownUnanswered(CRequest& r, const RequestRow&) {
    r.AnswerStatus(status::kUnknownCode);
}

void NoSuchObject(CRequest& r, const RequestRow&) {
    r.AnswerStatus(status::kNoSuchObject);
}

void Declined(CRequest& r, const RequestRow&) {
    r.Decline();
}

}  // namespace rows
