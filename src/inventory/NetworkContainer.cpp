#include "inventory/NetworkContainer.h"

#include <net/if.h>
#include <pthread.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "inventory/InventoryHost.h"
#include "runtime/DebugClient.h"
#include "runtime/Pipe.h"

namespace {

constexpr size_t kLineBytes = 200;
constexpr int kHeaderLines = 2;

// A socket closed with its owner.
class Socket {
  public:
    Socket() : m_nFd(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {}
    ~Socket() {
        if (m_nFd >= 0)
            close(m_nFd);
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    int Fd() const { return m_nFd; }

  private:
    int m_nFd;
};

}  // namespace

NetworkContainer& NetworkContainer::Instance() {
    static NetworkContainer container;
    return container;
}

NetworkContainer::NetworkContainer() : m_Macs(Read(inventory_host::kNicListCommand)) {}

NetworkContainer::~NetworkContainer() {
    TLR_TRACE(2, "NetworkContainer singleton destroyed in thread: %lu",
              static_cast<unsigned long>(pthread_self()));
}

std::map<PciAddress, MacAddress> NetworkContainer::Read(const char* command) {
    std::map<PciAddress, MacAddress> macs;
    PipePtr pipe(popen(command, "r"));
    if (!pipe) {
        TLR_TRACE(4, "NetworkContainer: failed to open command");
        return macs;
    }
    TLR_TRACE(4, "NetworkContainer: localcli opened");
    char line[kLineBytes];
    int lineNumber = 0;
    while (fgets(line, sizeof(line), pipe.get())) {
        TLR_TRACE(4, "NetworkContainer: parsing: %s", line);
        if (lineNumber++ < kHeaderLines) {
            TLR_TRACE(4, "NetworkContainer: skip header");
            continue;
        }
        PciAddress a;
        MacAddress m{};
        int read = sscanf(line,
                          "%*s %hx:%hhx:%hhx.%hhx %*s %*s %*s %*s %*s "
                          "%hhx:%hhx:%hhx:%hhx:%hhx:%hhx",
                          &a.nDomain, &a.nBus, &a.nSlot, &a.nFunction, &m[0], &m[1], &m[2], &m[3],
                          &m[4], &m[5]);
        // A NIC without a PCI address or MAC in its place gives no entry.
        if (read != 10)
            continue;
        TLR_TRACE(3,
                  "NetworkContainer: Parsed PCIdev %hx:%hhx:%hhx.%hhx with MacAddress "
                  "%02x:%02x:%02x:%02x:%02x:%02x",
                  a.nDomain, a.nBus, a.nSlot, a.nFunction, m[0], m[1], m[2], m[3], m[4], m[5]);
        macs[a] = m;
    }
    return macs;
}

bool NetworkContainer::Find(const PciAddress& address, MacAddress& mac) const {
    auto it = m_Macs.find(address);
    if (it == m_Macs.end())
        return false;
    mac = it->second;
    return true;
}

bool GetMACInformation(uint16_t domain, uint8_t bus, uint8_t slot, uint8_t function, char* /*name*/,
                       size_t /*nameSize*/, MacAddress& mac) {
    PciAddress address{domain, bus, slot, function};
    if (!NetworkContainer::Instance().Find(address, mac))
        mac.fill(0);
    TLR_TRACE(3,
              "GetMACInformation():   found MAC address for %hx:%hhx:%hhx.%hhx:  "
              "%02x:%02x:%02x:%02x:%02x:%02x\n",
              domain, bus, slot, function, mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
    return true;
}

bool GetHardwareMacInformation(const char* interfaceName, MacAddress& mac) {
    Socket sock;
    if (sock.Fd() < 0) {
        TLR_TRACE(2, "GetHardwareMacInformation() : ERROR # Could not open AF_INET socket.");
        return false;
    }
    struct ifreq request;
    memset(&request, 0, sizeof(request));
    strncpy(request.ifr_name, interfaceName, IFNAMSIZ - 1);
    if (ioctl(sock.Fd(), SIOCGIFHWADDR, &request) != 0) {
        TLR_TRACE(4,
                  "GetHardwareMacInformation: WARNING: Cannot get MAC-Address for Interface = %s\n",
                  interfaceName);
        return false;
    }
    memcpy(mac.data(), request.ifr_hwaddr.sa_data, mac.size());
    TLR_TRACE(3,
              "\nGetHardwareMacInformation()(): HW MAC address for %s = "
              "'%02x:%02x:%02x:%02x:%02x:%02x'",
              interfaceName, mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
    return true;
}
