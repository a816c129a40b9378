#pragma once

// Where the host tells its PCI devices and network adapters. The shipped module reads
// these; tests hand other commands and paths to the internal constructors and functions.
namespace inventory_host {

constexpr const char kPciListCommand[] = "localcli hardware pci list";
constexpr const char kNicListCommand[] = "localcli network nic list";
// The NIC list as comma-separated fields, sorted by the number of vmnicN: the first sed
// makes the number a sort field of its own, the last one takes it back.
constexpr const char kNicSnapshotCommand[] =
    "localcli network nic list | tail -n +3 | awk "
    "'{print $1\",\"$2\",\"$3\",\"$4\",\"$5\",\"$6\",\"$7\",\"$8\",\"$9\",\"substr($0, "
    "index($0, $10))}' | sed 's/vmnic/vmnic,/g' | sort -t , -k 2 -n | sed 's/vmnic,/vmnic/g'";
constexpr const char kAdapterIni[] = "/opt/TessalineHost/vital/etc/tlmagt/Adapter.ini";
constexpr const char kPciDevices[] = "/proc/bus/pci/devices";

}  // namespace inventory_host
