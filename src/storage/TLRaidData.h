#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "xml/XmlDoc.h"

// The root element of a whole storage tree.
constexpr char kStorageTreeRoot[] = "amEMTL";

// The PCI address of an adapter, as the tree gives it.
struct AdapterPciAddress {
    uint16_t nSegment = 0;
    uint8_t nBus = 0;
    uint8_t nDevice = 0;
    uint8_t nFunction = 0;
};

// The reader of the RAID manager's storage tree. One object holds the whole tree (root
// amEMTL) or a sub-document cut out of it (root Multiplexer, Adapter, a port, PhysicalDrive,
// LogicalDrive, Battery or Enclosure). Nothing is turned into objects: each answer walks
// the text anew. Every operation leaves the document's positions as it found them.
// Out documents are set only on success, out values only where said.
class CTLRaidData : public CXmlDoc {
  public:
    // Whole tree.
    static bool IsValid(CXmlDoc& doc);  // the tree is usable; traces why not
    bool IsValid() { return IsValid(*this); }
    bool GetMultiplexerData(CXmlDoc& out);                         // cuts out the Multiplexer
    uint32_t GetAdapterCount();                                    // Adapter children of System
    bool GetAdapterData(CXmlDoc& out, uint32_t nIndex);            // cuts out the nIndex-th Adapter
    bool GetPhysicalDiskOverallComponentStatus(int32_t& nStatus);  // 0, or 1 to 3
    bool GetBbuOverallComponentStatus(uint32_t& nStatus);          // highest ComponentStatus
    // The SMART flag of all drives of all adapters: kSmartYes at the first drive that has a
    // SMART error, else kSmartNo if any drive says so, else kNotMapped.
    int32_t GetSmartFlagOfAllDrives();
    std::map<std::string, int16_t> GetMDCProgressMap();  // "<name> A0L1" -> MDCProgress, or -1

    // Adapter document: the first Adapter in it is meant.
    bool GetAdapterPciAddress(AdapterPciAddress& address);
    bool GetPortData(CXmlDoc& out, uint32_t nIndex);  // Port or Channel; false for the others
    uint32_t GetPhysicalDriveCount();                 // drives of all six layouts
    bool GetPhysicalDriveData(CXmlDoc& out, uint32_t nIndex);      // in the order of the count
    bool GetPhysicalDriveIndex(uint32_t& nIndex, CXmlDoc& drive);  // by serial, port list only
    bool GetRaidLogicalDriveData(CXmlDoc& out, uint32_t nIndex);
    bool GetBatteryData(CXmlDoc& out, uint32_t nIndex);  // index 0 only
    uint32_t GetEnclosureCount();                        // different enclosure numbers
    bool GetEnclosureData(CXmlDoc& out, uint32_t nIndex);
    bool GetEnclosureIndexOfDrive(uint32_t& nIndex, CXmlDoc& drive);
    bool GetEnclosureIndex(uint32_t& nIndex, CXmlDoc& enclosure);
    uint32_t GetLogicalDriveCount();  // LogicalDrive children of Adapter
    uint32_t GetBatteryCount();       // Battery children of Adapter
    uint32_t GetPortCount();          // Port children of Ports; 0 without Ports

    // Any sub-document: the text of the root's child Name, whatever the root is.
    bool GetName(std::string& sName);
    // Numbers read in base 10; false when the root or the child is missing.
    bool GetPhysicalDriveSize(uint64_t& nSize);         // PhysicalSize
    bool GetLogicalDriveSize(uint64_t& nSize);          // LogicalSize
    bool GetLogicalDrivePhysicalSize(uint64_t& nSize);  // PhysicalSize
    bool GetLogicalDriveRaidLevel(std::string& sLevel);

    // Property reads: the text of the root's first child of that name.
    bool GetAdapterProperty(std::string& sValue, const char* pszName);
    bool GetPhysicalDriveProperty(std::string& sValue, const char* pszName);
    bool GetPortProperty(std::string& sValue, const char* pszName);
    bool GetLogicalDriveProperty(std::string& sValue, const char* pszName);
    bool GetBatteryProperty(std::string& sValue, const char* pszName);
    bool GetEnclosureProperty(std::string& sValue, const char* pszName);

    // Words as numbers, on the sub-document of their root; -1 (kNotMapped) when the root or
    // the element is missing, unless the table says otherwise. See StatusTables.h.
    int32_t GetPhysicalDriveStatusIndex();
    int32_t GetPhysicalDriveStatus();  // the code, with kSmartErrorBit for SMART errors
    int32_t GetPhysicalDriveSmartFlag();
    int32_t GetPhysicalDriveType();
    int32_t GetLogicalDriveStatus();
    int32_t GetBatteryStatus();
    int32_t GetBatteryLearnCycleStatus();  // by priority over all AdditionalStatus children
    int32_t GetEnclosureStatus();
    int32_t GetAdapterStatus();
    int32_t GetAdapterType();  // from the attribute Type
    int32_t GetOverallStatus();
    int32_t GetAdaptersStatus();
    int32_t GetDisksStatus();
    int32_t GetLogicalDrivesStatus();
    // The status index of a drive's Status word; 0xFFFFFFFF for none.
    static void PhysicalDriveStatusToIndex(const char* pszStatus, uint32_t& nIndex);

  private:
    // A visitor of a drive walk, given the drive's position; true ends the walk.
    using Visitor = std::function<bool(uint32_t iPos)>;

    // Parts that other operations use on this same document. They start from reset
    // positions and leave the positions wherever they end.
    bool CutMultiplexer(CXmlDoc& out);
    uint32_t CountAdapters();
    bool CutAdapter(CXmlDoc& out, uint32_t nIndex);

    // Visits the drives of the first Adapter in the order of GetPhysicalDriveCount: at the
    // child position, or in the flat layout at the main position. With bPortListOnly, only
    // the port list layout is walked (where a drive is always at the child position).
    void WalkDrives(const Visitor& visit, bool bPortListOnly);
    // WalkDrives over every Adapter of System in a whole tree, in place: each adapter's drives
    // are the ones its cut-out document would give. True from the visitor ends the walk.
    void WalkDrivesOfAllAdapters(const Visitor& visit);
    // The text of the first Status child of a drive; false without one. Positions stay.
    bool ReadDriveStatus(uint32_t iDrive, std::string& sWord);
    // Visits each enclosure number of the port list at its first appearance, with the
    // Enclosure at the main position; gives the number of enclosures visited.
    uint32_t WalkEnclosures(const std::function<bool(uint32_t nIndex, long nNumber)>& visit);
    // The index of the enclosure with that number.
    bool IndexOfEnclosureNumber(uint32_t& nIndex, unsigned long nWanted);

    // The text of the first child of the root; false if either is missing.
    bool ReadChildText(const char* pszRoot, const char* pszChild, std::string& sText);
    int32_t ReadThreeWay(const char* pszRoot, const char* pszChild);
};
