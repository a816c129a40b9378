#pragma once

#include <cstdint>
#include <ctime>
#include <functional>
#include <map>
#include <string>
#include <vector>

// The decisions of a polling cycle that need no module: the SMART clock, and the comparison
// of the logical drives' MDC progress with the cycle before.

// MDC progress by drive key, as CTLRaidData::GetMDCProgressMap gives it.
using MdcProgressMap = std::map<std::string, int16_t>;

// Hours of the local day at which the SMART report is due.
extern const std::vector<int32_t> SmartReportHours;
// Two SMART triggers are more than this apart.
constexpr time_t kSmartCheckSpacingSec = 3600;

// True when the clock has moved more than the spacing away from the last trigger, either
// way: a clock set back counts as well.
bool SmartCheckDue(time_t now, time_t tLastSmartCheck);
bool IsSmartReportHour(int nHour);

// The local time of a moment; the module's is localtime.
using LocalTimeFn = std::function<std::tm(time_t)>;
std::tm LocalTime(time_t when);
// The asctime text of a time, with its closing newline.
std::string AscTime(const std::tm& when);

// The polling thread's clock: the time now and the local time of a moment. The shipped
// module uses time and localtime; tests set the clock where they need it.
struct PollingClock {
    std::function<time_t()> Now = [] { return time(nullptr); };
    LocalTimeFn LocalTimeOf = LocalTime;
};

// One look at the SMART clock at now, with its trace lines. The local time is asked for only
// when a check is due. True on a trigger, which sets tLastSmartCheck to now; otherwise
// tLastSmartCheck stays, so that the check is repeated until the hour comes.
bool LookAtSmartClock(time_t now, time_t& tLastSmartCheck, const LocalTimeFn& localTime);

// Called for each drive whose progress changed.
using MdcChangeFn = std::function<void(const std::string& sKey, int16_t nOld, int16_t nNew)>;
// Holds the last cycle's entries, in key order, against the current map, with the trace
// lines of the comparison, and calls onChange for every key whose value differs. Keys that
// only one of the maps has are no change. Gives the number of changes.
int CompareMdcProgress(const MdcProgressMap& previous, const MdcProgressMap& current,
                       const MdcChangeFn& onChange);
