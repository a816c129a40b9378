#include "storage/StorageExport.h"

#include <string>
#include <string_view>
#include <vector>

#include "storage/TLRaidData.h"
#include "xml/XmlAttribScan.h"

namespace {

constexpr const char* kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr const char* kExportRoot = "TLRaidStorageDeviceTree";
constexpr int kExportVersion = 2;
constexpr const char* kObjectMark = "NrOfProperties";
// A list of ports under an object is no property: its ports belong to the object itself.
constexpr const char* kPortList = "Ports";

// What becomes of a source attribute in the exported element.
enum class AttribAction { kNumber, kKeepName, kTypeElement };

struct AttribRule {
    const char* pszTag;
    const char* pszAttrib;
    AttribAction nAction;
};

// Every object's identity ends up in Nr; attributes not named here are dropped.
const AttribRule kAttribRules[] = {
    {"Adapter", "Nr", AttribAction::kNumber},
    {"Adapter", "Type", AttribAction::kTypeElement},
    {"Port", "Nr", AttribAction::kNumber},
    {"Port", "DeviceNumber", AttribAction::kNumber},
    {"Port", "Type", AttribAction::kTypeElement},
    {"Array", "Nr", AttribAction::kNumber},
    {"PhysicalDrive", "DeviceNumber", AttribAction::kNumber},
    {"LogicalDrive", "LogDriveNumber", AttribAction::kNumber},
    {"Container", "Nr", AttribAction::kNumber},
    {"Container", "Name", AttribAction::kKeepName},
};

constexpr const char* kNumberAttrib = "Nr";

const AttribRule* FindRule(const std::string& sTag, const std::string& sAttrib) {
    for (const AttribRule& rule : kAttribRules) {
        if (sTag == rule.pszTag && sAttrib == rule.pszAttrib) {
            return &rule;
        }
    }
    return nullptr;
}

bool IsObject(const CXmlDoc& doc, uint32_t iPos) {
    return !doc.GetAttrib(iPos, kObjectMark).empty();
}

// A value as a C string reads it: up to its first NUL.
std::string_view AsCString(const std::string& s) {
    return std::string_view(s.c_str());
}

// Writes the exported tree's text in one pass, in the form that adding each element behind
// the last one, then its attributes and its text, gives: an element with children opens with
// a line break, each child ends with one, and the text of a leaf sits between its tags.
class ExportWriter {
  public:
    // The root is written with its attributes; it stays open until Close.
    ExportWriter(std::string& sOut, const std::string& sRoot, const std::string& sAttribs)
        : m_sOut(sOut) {
        m_sOut += '<' + sRoot + sAttribs;
        m_aOpen.push_back({sRoot, false, true});
    }

    // The element at the source's main position, with its attributes by the table and its
    // text; it stays open for its children until Close.
    void Open(CXmlDoc& source) {
        BeforeChild();
        // The rules see the whole name; the element is named as a C string reads it.
        const std::string sTag = source.GetTagName();
        const std::string sName(AsCString(sTag));
        m_aOpen.push_back({sName, false, false});
        std::vector<std::pair<std::string, std::string>> aAttribs;  // name, escaped value
        std::vector<std::string> aTypes;
        // A start tag stays within what its record can hold: a longer attribute is dropped.
        size_t nTagLength = sName.size() + 3;
        XmlAttribScan scan(source, source.GetMainPos());
        XmlAttribScan::Item item;
        std::vector<std::pair<std::string_view, std::string>> aFirst;  // first value of a name
        while (scan.Next(item)) {
            const std::string_view sAttribName = scan.Name(item);
            const AttribRule* pRule = FindRule(sTag, std::string(sAttribName));
            if (!pRule) {
                continue;
            }
            const std::string& sValue = FirstValue(aFirst, scan, item);
            if (pRule->nAction == AttribAction::kTypeElement) {
                if (aTypes.empty()) {
                    --nTagLength;  // "/>" becomes ">"
                }
                aTypes.push_back(CXmlDoc::EscapeText(AsCString(sValue), 0));
                continue;
            }
            const std::string sAttrib =
                pRule->nAction == AttribAction::kNumber ? kNumberAttrib : std::string(sAttribName);
            std::string sEscaped = CXmlDoc::EscapeText(AsCString(sValue), XmlAttribText);
            auto it = aAttribs.begin();
            while (it != aAttribs.end() && it->first != sAttrib) {
                ++it;
            }
            size_t nOld = it == aAttribs.end() ? 0 : it->second.size() + 2;
            size_t nNew = sEscaped.size() + 2 + (nOld ? 0 : sAttrib.size() + 2);
            if (nTagLength - nOld + nNew > ElemPos::kStartTagMask) {
                continue;
            }
            nTagLength = nTagLength - nOld + nNew;
            if (it == aAttribs.end()) {
                aAttribs.emplace_back(sAttrib, std::move(sEscaped));
            } else {
                it->second = std::move(sEscaped);
            }
        }
        m_sOut += '<';
        m_sOut += sName;
        for (const auto& [sAttribName, sValue] : aAttribs) {
            m_sOut += ' ' + sAttribName + "=\"" + sValue + '"';
        }
        m_sOut += '>';
        for (const std::string& sType : aTypes) {
            BeforeChild();
            m_sOut += sType.empty() ? "<Type/>" : "<Type>" + sType + "</Type>";
            m_sOut += '\n';
        }
        // An element that took a Type child takes no text, as its source had children anyway.
        if (aTypes.empty()) {
            m_sOut += CXmlDoc::EscapeText(AsCString(source.GetData(source.GetMainPos())), 0);
        }
    }

    // An element without children keeps the short form of its start tag.
    void Close() {
        const OpenElement& open = m_aOpen.back();
        m_sOut += open.bShortTag && !open.bChildren ? "/>\n" : "</" + open.sTag + ">\n";
        m_aOpen.pop_back();
    }

  private:
    struct OpenElement {
        std::string sTag;
        bool bChildren;
        bool bShortTag;  // the start tag is not closed yet: "/>" without children
    };

    // The first child of an open element starts on a line of its own.
    void BeforeChild() {
        if (!m_aOpen.empty() && !m_aOpen.back().bChildren) {
            m_aOpen.back().bChildren = true;
            m_sOut += m_aOpen.back().bShortTag ? ">\n" : "\n";
        }
    }

    // The value of the first attribute of the item's name, as a search by name finds it.
    static const std::string& FirstValue(std::vector<std::pair<std::string_view, std::string>>& a,
                                         const XmlAttribScan& scan,
                                         const XmlAttribScan::Item& item) {
        for (const auto& [sName, sValue] : a) {
            if (sName == scan.Name(item)) {
                return sValue;
            }
        }
        a.emplace_back(scan.Name(item), scan.Value(item));
        return a.back().second;
    }

    std::string& m_sOut;
    std::vector<OpenElement> m_aOpen;
};

// The copied elements below the source's main element, in document order. The walk keeps its
// place in the source's positions and a stack of the levels entered, so no depth of nesting
// uses up the call stack.
void WriteStorageElements(ExportWriter& writer, CXmlDoc& source) {
    struct Level {
        bool bCopied;
        bool bObject;
    };
    std::vector<Level> aLevels;
    bool bMainObject = IsObject(source, source.GetMainPos());
    for (;;) {
        if (!source.FindChildElem()) {
            if (aLevels.empty()) {
                return;
            }
            if (aLevels.back().bCopied) {
                writer.Close();
            }
            aLevels.pop_back();
            source.OutOfElem();
            bMainObject =
                aLevels.empty() ? IsObject(source, source.GetMainPos()) : aLevels.back().bObject;
            continue;
        }
        // Objects (with NrOfProperties) and their properties are copied; a list of ports
        // is no property, its ports belong to the object itself.
        const bool bObject = IsObject(source, source.GetChildPos());
        const bool bCopied =
            bObject || (bMainObject && source.GetElemTagName(source.GetChildPos()) != kPortList);
        source.IntoElem();
        if (bCopied) {
            writer.Open(source);
        }
        aLevels.push_back({bCopied, bObject});
        bMainObject = bObject;
    }
}

}  // namespace

bool WriteStorageDeviceTree(CXmlDoc& source, std::string& sOut) {
    source.SavePos("");
    source.ResetPos();
    if (!source.FindElem(kStorageTreeRoot)) {
        source.RestorePos("");
        return false;
    }
    sOut = kDeclaration;
    ExportWriter writer(sOut, kExportRoot, " Version=\"" + std::to_string(kExportVersion) + '"');
    WriteStorageElements(writer, source);
    writer.Close();
    source.RestorePos("");
    return true;
}

void BuildStorageDeviceTree(CXmlDoc& target, CXmlDoc& source) {
    std::string sText;
    if (!WriteStorageDeviceTree(source, sText)) {
        return;
    }
    target.SetDoc(sText);
    // The positions that adding the elements one by one leaves: the root at main, its last
    // child at the child position.
    const uint32_t iRoot = target.GetRecord(0).iElemChild;
    const uint32_t iFirst = target.GetRecord(iRoot).iElemChild;
    target.SetPos(0, iRoot, iFirst ? target.GetRecord(iFirst).iElemPrev : 0);
}
