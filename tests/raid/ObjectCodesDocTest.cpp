// The reference of object codes, docs/object-codes.md, against the request table and the
// cabinet table: every code documented is answered, every code answered is documented, and
// OE and OI have the roles that the reference gives them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "enclosure/CabinetRequest.h"
#include "raid/RequestTable.h"

namespace {

constexpr char kUnused[] = "—";

// A documented row as "<family> <code>: OE <role>, OI <role>", the family being the text of
// the "## " heading above its table.
std::string Key(const std::string& family, uint32_t code, const std::string& oe,
                const std::string& oi) {
    char number[32];
    snprintf(number, sizeof number, "%u (0x%04X)", static_cast<unsigned>(code),
             static_cast<unsigned>(code));
    return family + " " + number + ": OE " + oe + ", OI " + oi;
}

std::vector<std::string> Cells(const std::string& line) {
    std::vector<std::string> cells;
    size_t start = 1;
    for (size_t bar; (bar = line.find('|', start)) != std::string::npos; start = bar + 1) {
        std::string cell = line.substr(start, bar - start);
        cell.erase(0, cell.find_first_not_of(' '));
        cell.erase(cell.find_last_not_of(' ') + 1);
        cells.push_back(cell);
    }
    return cells;
}

// The keys of the rows of every table under the heading "## <family>". A selector of the
// server's codes is the handler's own affair and reads as unused; a cabinet's is kept with
// its number, which the cabinet table holds too.
std::multiset<std::string> Documented(const std::string& family) {
    std::ifstream doc(std::string(TLR_SOURCE_DIR) + "/docs/object-codes.md");
    EXPECT_TRUE(doc.good()) << "docs/object-codes.md is missing";
    std::multiset<std::string> keys;
    std::string line, heading;
    size_t oe = 0, oi = 0;
    while (std::getline(doc, line)) {
        if (line.rfind("## ", 0) == 0)
            heading = line.substr(3);
        if (heading != family || line.rfind("| ", 0) != 0)
            continue;
        std::vector<std::string> cells = Cells(line);
        if (!cells.empty() && cells[0] == "code") {
            for (size_t i = 0; i < cells.size(); ++i) {
                if (cells[i] == "OE")
                    oe = i;
                if (cells[i] == "OI")
                    oi = i;
            }
            continue;
        }
        if (cells.empty())
            continue;
        char* end = nullptr;
        uint32_t code = static_cast<uint32_t>(strtoul(cells[0].c_str(), &end, 0));
        if (*end != '\0' || std::max(oe, oi) >= cells.size())
            continue;
        std::string role = cells[oe];
        if (role.rfind("selector", 0) == 0)
            role = family == "Cabinet codes" ? role.substr(0, role.find(':')) : kUnused;
        keys.insert(Key(family, code, role, cells[oi]));
    }
    return keys;
}

// Both ways: what is answered and not documented, and what is documented and not answered.
void ExpectSame(const std::multiset<std::string>& answered,
                const std::multiset<std::string>& documented) {
    for (const std::string& key : answered)
        EXPECT_EQ(documented.count(key), 1u)
            << "answered, documented " << documented.count(key) << " times: " << key;
    for (const std::string& key : documented)
        EXPECT_EQ(answered.count(key), 1u) << "documented, not answered so: " << key;
}

TEST(ObjectCodesDocTest, ServerCodesAreTheRequestTable) {
    const struct {
        CRequest::ObjectGetter get;
        const char* pszRole;
    } kObjects[] = {
        {&CTLRaidData::GetPhysicalDriveData, "physical drive"},
        {&CTLRaidData::GetRaidLogicalDriveData, "logical drive"},
        {&CTLRaidData::GetBatteryData, "battery"},
        {&CTLRaidData::GetPortData, "port"},
        {&CTLRaidData::GetEnclosureData, "enclosure"},
    };
    std::multiset<std::string> answered;
    for (const RequestRow* row : AllRequestRows()) {
        std::string oe = kUnused, oi = kUnused;
        if (row->steps == Steps::kAdapterOi)
            oi = "adapter";
        if (row->steps == Steps::kAdapterOe || row->steps == Steps::kObject)
            oe = "adapter";
        for (const auto& object : kObjects) {
            if (row->steps == Steps::kObject && row->object == object.get)
                oi = object.pszRole;
        }
        answered.insert(Key("Server codes", row->nCode, oe, oi));
    }
    ExpectSame(answered, Documented("Server codes"));
}

TEST(ObjectCodesDocTest, CabinetCodesAreTheCabinetTable) {
    const struct {
        CabinetBound bound;
        const char* pszRole;
    } kBounds[] = {
        {CabinetBound::kNone, kUnused},
        {CabinetBound::kFans, "fan"},
        {CabinetBound::kTempSensors, "sensor"},
        {CabinetBound::kTempSensorsAbove, "sensor or count"},
        {CabinetBound::kPowerSupplies, "supply"},
    };
    std::multiset<std::string> answered;
    for (const CabinetRowAddress& row : CabinetRowAddresses()) {
        std::string oe = row.bBySelector ? "selector " + std::to_string(row.nOe) : kUnused;
        std::string oi = "?";
        for (const auto& bound : kBounds) {
            if (row.bound == bound.bound)
                oi = bound.pszRole;
        }
        answered.insert(Key("Cabinet codes", row.nOc, oe, oi));
    }
    ExpectSame(answered, Documented("Cabinet codes"));
}

}  // namespace
