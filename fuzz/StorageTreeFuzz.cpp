// Any document as a storage tree: exported and converted to XML and JSON, written as JSON
// by every set of options, cleaned, and walked by path.
#include "FuzzKit.h"
#include "storage/StorageTreeConvert.h"
#include "storage/XmlValidator.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    DropTrace();
    const std::string text(AsText(data, size));
    CXmlDoc doc;
    doc.SetDoc(text);
    std::string out;
    for (int format : {int(kStorageTreeXml), int(kStorageTreeJson), 0}) {
        ConvertStorageTree(doc, out, format);
        ExportStorageTree(doc, format, out);
    }
    for (int options = 0; options < 8; ++options) {
        doc.ResetPos();
        XmlToJSON(out, doc, StorageTreeArrayList(), options & 1, options & 2, options & 4);
    }
    for (const char* path : {"System/Adapter[1]", "System/Adapter[0x1]/LogicalDrive", ""}) {
        std::string value;
        GetValueByPath(doc, value, path, kPathMustExist);
    }
    CleanStorageTreeText(text);
    CXmlDoc raw;
    raw.SetDoc(text);
    raw.FindElem();
    CXmlValidator validator(raw);
    return 0;
}
