#pragma once

#include <string>

// Generated storage trees of about a given size, laid out as the RAID manager writes them: root
// amEMTL, a System with a Multiplexer, adapters with ports, drives, enclosures, logical drives
// and a battery, one element a line, indented.
class StorageDocGen {
  public:
    static std::string Make(size_t nTargetBytes) {
        StorageDocGen gen;
        gen.m_s.reserve(nTargetBytes + 64 * 1024);
        gen.Line(0, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
        gen.Line(0, "<amEMTL Version=\"2\">");
        gen.Line(1, "<System NrOfProperties=\"2\">");
        gen.Line(2, "<Multiplexer NrOfProperties=\"5\">");
        gen.Text(3, "Status", "Operational");
        gen.Text(3, "StatusOverall", "OK");
        gen.Text(3, "StatusAdapters", "OK");
        gen.Text(3, "StatusDisks", "OK");
        gen.Text(3, "StatusLogicalDrives", "OK");
        gen.Line(2, "</Multiplexer>");
        for (int nAdapter = 0; !gen.Full(nTargetBytes); ++nAdapter) {
            gen.Adapter(nAdapter, nTargetBytes);
        }
        gen.Line(1, "</System>");
        gen.Line(0, "</amEMTL>");
        return gen.m_s;
    }

  private:
    bool Full(size_t nTargetBytes) const { return m_s.size() >= nTargetBytes; }

    void Line(int nIndent, const std::string& s) {
        m_s.append(size_t(nIndent) * 2, ' ');
        m_s += s;
        m_s += '\n';
    }
    void Text(int nIndent, const char* pszName, const std::string& sValue) {
        Line(nIndent, std::string("<") + pszName + ">" + sValue + "</" + pszName + ">");
    }

    void Drive(int nIndent, int nDevice) {
        std::string sDev = std::to_string(nDevice);
        Line(nIndent, "<PhysicalDrive DeviceNumber=\"" + sDev + "\" NrOfProperties=\"9\">");
        Text(nIndent + 1, "Status", nDevice % 17 ? "Operational" : "Rebuilding");
        Text(nIndent + 1, "Type", nDevice % 3 ? "SAS" : "SATA");
        Text(nIndent + 1, "SerialNumber", "SN0K" + std::to_string(400000 + nDevice * 7));
        Text(nIndent + 1, "EnclosureNumber", std::to_string(nDevice / 8));
        Text(nIndent + 1, "Name", "Disk &amp; Slot " + sDev);
        Text(nIndent + 1, "PhysicalSize", std::to_string(3815447ull + nDevice * 17ull));
        Text(nIndent + 1, "Vendor", "VENDOR");
        Text(nIndent + 1, "Temperature", std::to_string(28 + nDevice % 9));
        Line(nIndent + 1, "<Layout>");
        Line(nIndent + 2, "<LogicalDrive LogDriveNumber=\"" + std::to_string(nDevice % 4) + "\"/>");
        Line(nIndent + 1, "</Layout>");
        Line(nIndent, "</PhysicalDrive>");
    }

    void Adapter(int nAdapter, size_t nTargetBytes) {
        std::string sNr = std::to_string(nAdapter);
        Line(2, "<Adapter Type=\"RAID\" Nr=\"" + sNr + "\" Name=\"RAID Ctrl SAS 6G " + sNr +
                    "\" NrOfProperties=\"12\">");
        Text(3, "Status", "OK");
        Text(3, "Name", "RAID Ctrl SAS 6G 512MB");
        Text(3, "PCIBus", std::to_string(3 + nAdapter));
        Text(3, "PCIDevice", "0");
        Text(3, "PCIFunction", "0");
        Text(3, "PCISegment", "0");
        Text(3, "FirmwareVersion", "2.130.403-4660");
        Line(3, "<Ports>");
        int nDevice = 0;
        for (int nPort = 0; nPort < 8 && !Full(nTargetBytes); ++nPort) {
            Line(4, "<Port Type=\"SAS\" Nr=\"" + std::to_string(nPort) + "\" DeviceNumber=\"" +
                        std::to_string(nPort) + "\" NrOfProperties=\"3\">");
            for (int i = 0; i < 4 && (i == 0 || !Full(nTargetBytes)); ++i) {
                Drive(5, nDevice++);
            }
            Line(5, "<Enclosure Name=\"Enclosure " + std::to_string(nPort) +
                        "\" NrOfProperties=\"6\">");
            Text(6, "EnclosureNumber", std::to_string(nPort / 2));
            Text(6, "Status", "OK");
            Text(6, "FanStatus", "OK");
            Text(6, "TemperatureSensor", "31");
            Text(6, "PowerSupply", "OK");
            for (int i = 0; i < 4 && (i == 0 || !Full(nTargetBytes)); ++i) {
                Drive(6, nDevice++);
            }
            Line(5, "</Enclosure>");
            Line(4, "</Port>");
        }
        Line(3, "</Ports>");
        for (int nLd = 0; nLd < 4 && (nLd == 0 || !Full(nTargetBytes)); ++nLd) {
            Line(3, "<LogicalDrive LogDriveNumber=\"" + std::to_string(nLd) +
                        "\" NrOfProperties=\"6\">");
            Text(4, "Status", "Operational");
            Text(4, "Name", "LogicalDrive_" + std::to_string(nLd));
            Text(4, "RAIDLevel", "RAID-5");
            Text(4, "LogicalSize", std::to_string(7630885ull * (nLd + 1)));
            Text(4, "MDCProgress", std::to_string(nLd * 10));
            Line(4, "<Layout>");
            Line(5, "<Container Nr=\"0\" Name=\"Span 0\">");
            for (int i = 0; i < 3; ++i) {
                Line(6, "<PhysicalDrive DeviceNumber=\"" + std::to_string(i) + "\"/>");
            }
            Line(5, "</Container>");
            Line(4, "</Layout>");
            Line(3, "</LogicalDrive>");
        }
        Line(3, "<Battery ComponentStatus=\"1\" NrOfProperties=\"3\">");
        Text(4, "Status", "OK");
        Text(4, "AdditionalStatus", "Charging");
        Text(4, "Name", "BBU");
        Line(3, "</Battery>");
        Line(2, "</Adapter>");
    }

    std::string m_s;
};
