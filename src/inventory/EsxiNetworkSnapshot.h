#pragma once

#include <ctime>
#include <string>
#include <vector>

// One NIC as the host's NIC list reports it, its ten columns in order.
struct CEsxiNicSnapshot {
    std::string sName;       // vmnicN
    std::string sPciDevice;  // "%04x:%02x:%02x.%d"
    std::string sColumn3;
    std::string sColumn4;
    std::string sColumn5;
    long nColumn6 = 0;
    std::string sColumn7;
    std::string sMacAddress;  // 17 characters when well formed
    long nColumn9 = 0;
    std::string sDescription;  // the rest of the line, with its newline
};

// The host's NICs, read once by Populate through one shell pipeline, for turning PCI
// addresses into MAC addresses during one scan of system adapters.
class CEsxiNetworkSnapshot {
  public:
    static constexpr int kDefaultInterval = 60;

    // The host's pipeline.
    CEsxiNetworkSnapshot();
    // Another command printing the same comma-separated lines, for tests.
    explicit CEsxiNetworkSnapshot(std::string command);

    void Populate();
    // The last record whose PCI device equals the text, case aside; false if none.
    bool FindByPciDevice(const char* pciDevice, CEsxiNicSnapshot& out) const;

    const std::vector<CEsxiNicSnapshot>& Records() const { return m_Records; }
    int Interval() const { return m_nInterval; }
    time_t LastPopulate() const { return m_tLastPopulate; }

  private:
    int m_nInterval = kDefaultInterval;  // kept; no operation looks at it
    time_t m_tLastPopulate = 0;
    std::vector<CEsxiNicSnapshot> m_Records;
    std::string m_sCommand;
};
