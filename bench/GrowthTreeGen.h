#pragma once

#include <string>

// Storage trees that grow in one direction at a time: drives per adapter (width), objects
// nested in each other (depth) and attributes per drive. Every drive carries a text and an
// attribute that the cleaning must change, and the multiplexer gives no total for the disks,
// so that the requests over all drives read each one.
struct GrowthShape {
    int nDrives = 1;   // per adapter
    int nDepth = 1;    // nested Array objects under each adapter
    int nAttribs = 1;  // extra attributes per drive
};

class GrowthTreeGen {
  public:
    static std::string Make(const GrowthShape& shape) {
        GrowthTreeGen gen;
        gen.m_s = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<amEMTL Version=\"2\">\n";
        gen.m_s += "<System NrOfProperties=\"2\">\n<Multiplexer NrOfProperties=\"2\">\n";
        gen.Text("Status", "Operational");
        gen.Text("StatusOverall", "OK");
        gen.m_s += "</Multiplexer>\n";
        for (int nAdapter = 0; nAdapter < 2; ++nAdapter) {
            gen.Adapter(shape, nAdapter);
        }
        gen.m_s += "</System>\n</amEMTL>\n";
        return gen.m_s;
    }

  private:
    void Text(const char* pszName, const std::string& sValue) {
        m_s += std::string("<") + pszName + ">" + sValue + "</" + pszName + ">\n";
    }

    void Drive(const GrowthShape& shape, int nDrive, bool bLast) {
        static const char* const kWords[] = {"Operational", "Rebuilding", "Failed", "Available"};
        const std::string sNr = std::to_string(nDrive);
        m_s += "<PhysicalDrive DeviceNumber=\"" + sNr + "\" NrOfProperties=\"4\" Note=\"t\x01" +
               sNr + "\"";
        for (int i = 0; i < shape.nAttribs; ++i) {
            m_s += " A" + std::to_string(i) + "=\"" + (i % 3 ? "v" : "M\xFCller ") + sNr + "\"";
        }
        m_s += ">\n";
        Text("Status", bLast ? "Operational SMART Error" : kWords[nDrive % 4]);
        Text("Name", "Disk\x02 " + sNr);
        Text("SerialNumber", "SN" + sNr);
        Text("PhysicalSize", std::to_string(1000 + nDrive));
        m_s += "</PhysicalDrive>\n";
    }

    void Adapter(const GrowthShape& shape, int nAdapter) {
        const std::string sNr = std::to_string(nAdapter);
        m_s += "<Adapter Type=\"RAID\" Nr=\"" + sNr + "\" NrOfProperties=\"3\">\n";
        Text("Status", "OK");
        Text("Name", "Ctrl " + sNr);
        m_s += "<Ports>\n<Port Type=\"SAS\" Nr=\"0\" NrOfProperties=\"1\">\n";
        for (int i = 0; i < shape.nDrives; ++i) {
            Drive(shape, i, nAdapter == 1 && i == shape.nDrives - 1);
        }
        m_s += "</Port>\n</Ports>\n";
        for (int i = 0; i < shape.nDepth; ++i) {
            m_s += "<Array Nr=\"" + std::to_string(i) + "\" NrOfProperties=\"1\">\n";
        }
        Text("Name", "Inner\x03");
        for (int i = 0; i < shape.nDepth; ++i) {
            m_s += "</Array>\n";
        }
        m_s += "<Battery ComponentStatus=\"" + std::to_string(nAdapter + 1) +
               "\" NrOfProperties=\"1\">\n";
        Text("Status", "OK");
        m_s += "</Battery>\n</Adapter>\n";
    }

    std::string m_s;
};
