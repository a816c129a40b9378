#pragma once

// Where the RAID manager shows on its host that it is installed and running, and the probe
// of its REST daemon among the host's sockets.
namespace raid_host {

constexpr const char* kInstallMarks[] = {
    "/usr/lib/systemd/system/tlraid.service", "/usr/lib/cim/libtlstor_provider.so",
    "/usr/lib64/cim/libtlstor_provider.so",   "/opt/BrennockTLRC/bin/tlrcd",
    "/opt/TessalineStor/bin/tlrcd",
};
constexpr const char* kPidFiles[] = {
    "/var/run/vmware/daemon-BrennockTLRC-tlrcd.pid",
    "/var/run/vmware/daemon-TessalineStor-tlrcd.pid",
};
constexpr const char kProbeCommand[] = "lsof | grep tlrcd.*SOCKET_INET 2>/dev/null";

}  // namespace raid_host
