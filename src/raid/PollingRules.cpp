#include "raid/PollingRules.h"

#include <algorithm>

#include "runtime/DebugClient.h"

const std::vector<int32_t> SmartReportHours = {11, 23};

bool SmartCheckDue(time_t now, time_t tLastSmartCheck) {
    const time_t d = now >= tLastSmartCheck ? now - tLastSmartCheck : tLastSmartCheck - now;
    return d > kSmartCheckSpacingSec;
}

bool IsSmartReportHour(int nHour) {
    return std::find(SmartReportHours.begin(), SmartReportHours.end(), nHour) !=
           SmartReportHours.end();
}

std::tm LocalTime(time_t when) {
    std::tm local{};
    localtime_r(&when, &local);
    return local;
}

std::string AscTime(const std::tm& when) {
    char szText[64] = "";
    if (!asctime_r(&when, szText)) {
        return std::string();
    }
    return szText;
}

bool LookAtSmartClock(time_t now, time_t& tLastSmartCheck, const LocalTimeFn& localTime) {
    if (!SmartCheckDue(now, tLastSmartCheck)) {
        TLR_TRACE(5,
                  "\nEM_TLRAID::StorageDeviceTreePolling - [SMART Logs] Errors reported "
                  "recently, ignore...");
        return false;
    }
    const std::tm local = localTime(now);
    TLR_TRACE(5, "\nEM_TLRAID::StorageDeviceTreePolling - [SMART Logs] Check current time '%s'",
              AscTime(local).c_str());
    if (!IsSmartReportHour(local.tm_hour)) {
        return false;
    }
    TLR_TRACE(2,
              "\nEM_TLRAID::StorageDeviceTreePolling - [SMART Logs] Trigger SMART error report "
              "at hour %d",
              local.tm_hour);
    tLastSmartCheck = now;
    return true;
}

int CompareMdcProgress(const MdcProgressMap& previous, const MdcProgressMap& current,
                       const MdcChangeFn& onChange) {
    int nChanges = 0;
    for (const auto& [sKey, nOld] : previous) {
        TLR_TRACE(5, "\nEM_TLRAID::StorageDeviceTreePolling - [MDC] Previous status - [%d] '%s'",
                  nOld, sKey.c_str());
        const auto found = current.find(sKey);
        if (found == current.end()) {
            continue;
        }
        const int16_t nNew = found->second;
        TLR_TRACE(5, "\nEM_TLRAID::StorageDeviceTreePolling - [MDC] Current status - [%d] '%s'",
                  nNew, sKey.c_str());
        if (nNew != nOld) {
            TLR_TRACE(3,
                      "\nEM_TLRAID::StorageDeviceTreePolling - [MDC] Status changed! [%d -> %d] "
                      "'%s'",
                      nOld, nNew, sKey.c_str());
            ++nChanges;
            onChange(sKey, nOld, nNew);
        }
    }
    return nChanges;
}
