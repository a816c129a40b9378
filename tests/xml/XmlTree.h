#pragma once

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "xml/XmlDoc.h"

// An element tree as a reader sees it: names, attributes in order with unescaped values, and the
// text of leaves.
struct XmlTreeNode {
    std::string sName;
    std::vector<std::pair<std::string, std::string>> aAttribs;
    std::string sText;  // leaves only
    std::vector<XmlTreeNode> aChildren;

    bool operator==(const XmlTreeNode& o) const {
        return sName == o.sName && aAttribs == o.aAttribs && sText == o.sText &&
               aChildren == o.aChildren;
    }
};

inline std::ostream& operator<<(std::ostream& os, const XmlTreeNode& n) {
    os << "<" << n.sName;
    for (const auto& a : n.aAttribs) {
        os << " " << a.first << "=[" << a.second << "]";
    }
    os << ">";
    if (n.aChildren.empty()) {
        os << "[" << n.sText << "]";
    }
    for (const auto& c : n.aChildren) {
        os << c;
    }
    return os << "</" << n.sName << ">";
}

// Reads the element at the main position and everything below it through navigation alone.
inline XmlTreeNode ReadTree(CXmlDoc& doc) {
    XmlTreeNode n;
    n.sName = doc.GetTagName();
    for (int i = 0;; ++i) {
        std::string sAttrib = doc.GetAttribName(i);
        if (sAttrib.empty()) {
            break;
        }
        n.aAttribs.emplace_back(sAttrib, doc.GetAttrib(doc.GetMainPos(), sAttrib.c_str()));
    }
    if (!doc.FindChildElem()) {
        n.sText = doc.GetData(doc.GetMainPos());
        return n;
    }
    doc.SetPos(doc.GetParentPos(), doc.GetMainPos(), 0);
    doc.IntoElem();
    while (doc.FindElem()) {
        n.aChildren.push_back(ReadTree(doc));
    }
    doc.OutOfElem();
    return n;
}
