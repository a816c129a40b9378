#include "storage/StorageExport.h"

#include <string>
#include <vector>

#include "storage/TLRaidData.h"

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
constexpr const char* kTypeElement = "Type";

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

// Adds the source's main element behind the target's positions, with its attributes by the
// table and its text.
void CopyElement(CXmlDoc& target, CXmlDoc& source) {
    const std::string sTag = source.GetTagName();
    target.IntoElem();
    target.AddElem(sTag.c_str());
    const uint32_t iSource = source.GetMainPos();
    for (int i = 0;; ++i) {
        const std::string sName = source.GetAttribName(i);
        if (sName.empty()) {
            break;
        }
        const AttribRule* pRule = FindRule(sTag, sName);
        if (!pRule) {
            continue;
        }
        const std::string sValue = source.GetAttrib(iSource, sName.c_str());
        switch (pRule->nAction) {
            case AttribAction::kNumber:
                target.SetAttrib(target.GetMainPos(), kNumberAttrib, sValue.c_str());
                break;
            case AttribAction::kKeepName:
                target.SetAttrib(target.GetMainPos(), sName.c_str(), sValue.c_str());
                break;
            case AttribAction::kTypeElement:
                target.AddChildElem(kTypeElement, sValue.c_str());
                break;
        }
    }
    // An element that took a Type child refuses the text, as its source had children anyway.
    target.SetData(target.GetMainPos(), source.GetData(iSource).c_str());
}

}  // namespace

void BuildStorageDeviceTree(CXmlDoc& target, CXmlDoc& source) {
    source.SavePos("");
    source.ResetPos();
    if (!source.FindElem(kStorageTreeRoot)) {
        source.RestorePos("");
        return;
    }
    target.SetDoc(kDeclaration);
    target.AddElem(kExportRoot);
    target.SetAttrib(target.GetMainPos(), "Version", kExportVersion);
    target.IntoElem();
    CopyStorageElements(target, source);
    target.OutOfElem();
    source.RestorePos("");
}

int CopyStorageElements(CXmlDoc& target, CXmlDoc& source) {
    // The walk keeps its place in the two documents' positions; the stack only says, for each
    // level entered, whether the target entered it too. So no depth of nesting uses up the
    // call stack.
    std::vector<bool> aCopied;
    for (;;) {
        if (!source.FindChildElem()) {
            if (aCopied.empty()) {
                return 1;
            }
            if (aCopied.back()) {
                target.OutOfElem();
            }
            aCopied.pop_back();
            source.OutOfElem();
            continue;
        }
        const bool bObject = IsObject(source, source.GetChildPos());
        const bool bProperty = !bObject && IsObject(source, source.GetMainPos()) &&
                               source.GetElemTagName(source.GetChildPos()) != kPortList;
        source.IntoElem();
        if (bObject || bProperty) {
            CopyElement(target, source);
        }
        aCopied.push_back(bObject || bProperty);
    }
}
