#include "enclosure/EnclosureTestTrees.h"

#include <gtest/gtest.h>

#include "enclosure/EnclosureSetup.h"
#include "storage/TLRaidData.h"
#include "storage/TreeText.h"

namespace {

std::string Element(const std::string& name, const std::string& text) {
    return text.empty() ? "" : "<" + name + ">" + text + "</" + name + ">";
}

}  // namespace

std::string Encl(const std::string& name, const std::string& children) {
    return "<Enclosure Name=\"" + name + "\">" + children + "</Enclosure>";
}

std::string Identity(const std::string& vendor, const std::string& product,
                     const std::string& chassis, const std::string& serial) {
    return Element("Vendor", vendor) + Element("Product", product) + Element("ChassisID", chassis) +
           Element("SerialNumber", serial);
}

std::string Port(const std::string& type, int nr, const std::string& enclosures) {
    return "<Port Type=\"" + type + "\" Nr=\"" + std::to_string(nr) + "\">" + enclosures +
           "</Port>";
}

std::string Adapter(const std::string& name, int nr, const std::string& ports, bool bare) {
    return "<Adapter Name=\"" + name + "\" Nr=\"" + std::to_string(nr) + "\"><Status>OK</Status>" +
           (bare ? ports : "<Ports>" + ports + "</Ports>") + "</Adapter>";
}

std::string Cabinets(const EnclosureMap& map) {
    std::string text;
    for (const auto& entry : map.m_Cabinets) {
        const CabinetRecord& c = entry.second;
        text += std::to_string(c.CabinetNr) + " " + std::to_string(c.CtrNr) + "/" +
                std::to_string(c.EnclosureNr) + " " + std::to_string(c.FanCount) + "/" +
                std::to_string(c.TempSensorCount) + "/" + std::to_string(c.PowerSupplyCount) + " " +
                c.CabinetModel + "|" + c.ChassisModel + "|" + c.Vendor + "|" + c.SerialNumber + ";";
    }
    return text;
}

EnclosureMap SampleCabinets() {
    EnclosureMap map;
    CTLRaidData doc;
    EXPECT_TRUE(doc.SetDoc(SampleTree("cabinets.xml")));
    EXPECT_EQ(SetupEnclosureMap(map, doc), 2);
    return map;
}
