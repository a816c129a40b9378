#pragma once

#include "xml/XmlDoc.h"

// Keeps a document's positions across one operation: saves them under the empty name and
// resets them on entry, and goes back to them however the operation leaves.
class CKeepPos {
  public:
    explicit CKeepPos(CXmlDoc& doc) : m_Doc(doc) {
        m_Doc.SavePos("");
        m_Doc.ResetPos();
    }
    ~CKeepPos() { m_Doc.RestorePos(""); }
    CKeepPos(const CKeepPos&) = delete;
    CKeepPos& operator=(const CKeepPos&) = delete;

  private:
    CXmlDoc& m_Doc;
};
