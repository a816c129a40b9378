#pragma once

#include <cstdint>
#include <string>

#include "frame/CommandRecord.h"

class EM_TLRAID;
class CTLRaidData;
class CXmlDoc;

// One request for a storage object of this server, answered from the client's snapshot.
// Every path that gives no answer leaves the status the dispatcher preset.
class CStorageRequest {
  public:
    CStorageRequest(EM_TLRAID& module, CommandRecord& record);

    // Answers the request if its object code has a row here; false if it has none.
    bool Answer(uint32_t oc);

  private:
    using ObjectGetter = bool (CTLRaidData::*)(CXmlDoc&, uint32_t);
    using PropertyGetter = bool (CTLRaidData::*)(std::string&, const char*);

    // The steps the rows are made of: adapter, snapshot, object, data present, text given.
    bool Adapter(CTLRaidData& adapter, uint32_t index);
    bool Snapshot(CTLRaidData& tree);
    bool Object(CTLRaidData& adapter, CTLRaidData& object, ObjectGetter get);
    bool DataPresent();
    bool TextGiven(std::string& text);

    void AdapterRow(uint32_t oc);
    void OverallStatusRow(uint32_t oc);
    void SmartStatusRow();
    void CustomerReplaceableRow();
    bool DriveRow(uint32_t oc);
    bool LogicalDriveRow(uint32_t oc);
    bool BatteryRow(uint32_t oc);
    bool PortRow(uint32_t oc);
    bool EnclosureRow(uint32_t oc);

    // Answers the text of the root's child Name (any root when null), empty if none.
    void AnswerChildText(CTLRaidData& doc, const char* root);
    // Answers a child's decimal number; nothing when the child is missing.
    void AnswerChildNumber(CTLRaidData& doc, const char* root, const char* child, bool wide);
    // Answers how many children of that name the adapter OE has, inside a container if given.
    void AnswerChildCount(const char* child, const char* container);
    // Answers the property that the request's text names.
    void AnswerProperty(CTLRaidData& doc, PropertyGetter get);

    EM_TLRAID& m_Module;
    CommandRecord& m_Record;
    uint32_t m_nClient;
    uint32_t m_nSelector;  // OE
    uint32_t m_nObject;    // OI
};
