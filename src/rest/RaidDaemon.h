#pragma once

#include <cstdint>
#include <string>

#include "rest/DaemonHost.h"
#include "rest/TLRAIDRestClient.h"

// Everything the module asks of the RAID manager on its host: is it installed, is its
// service running, does its REST daemon answer, the storage tree, and the Redfish
// pass-through. The module holds one; tests give it one that lives in memory.
class CIRaidDaemon {
  public:
    virtual ~CIRaidDaemon() = default;

    // One of the manager's install marks is there.
    virtual bool IsInstalled() = 0;
    // One of the pid files of its service is there.
    virtual bool IsServiceRunning() = 0;
    // The daemon holds a socket on its port and gives a tree within the time-out (the tree
    // itself is thrown away).
    virtual bool ProbeRestServer(uint32_t timeoutSec) = 0;
    // True when xml now holds the storage tree; false with xml untouched otherwise.
    virtual bool FetchTree(std::string& xml, uint32_t timeoutSec) = 0;
    // Posts a Redfish request; true unless the POST itself failed or no daemon was found.
    virtual bool PostRedfish(const std::string& body, std::string& reply, uint32_t timeoutSec) = 0;
};

// What the real daemon is found with. The defaults are the host's; tests give others.
struct RaidDaemonSettings {
    TLRAIDRestClientSettings rest;
    std::string sProbeCommand = raid_host::kProbeCommand;
};

// The real daemon on the host, through lsof and HTTPS. Tree requests go through one client;
// the probe and the pass-through through another, each client with a JWT of its own.
class CRaidDaemon : public CIRaidDaemon {
  public:
    explicit CRaidDaemon(const RaidDaemonSettings& settings = RaidDaemonSettings());

    bool IsInstalled() override;
    bool IsServiceRunning() override;
    bool ProbeRestServer(uint32_t timeoutSec) override;
    bool FetchTree(std::string& xml, uint32_t timeoutSec) override;
    bool PostRedfish(const std::string& body, std::string& reply, uint32_t timeoutSec) override;

  private:
    TLRAIDRestClient m_TreeClient;
    TLRAIDRestClient m_ProbeClient;
    const std::string m_sProbeCommand;
};
