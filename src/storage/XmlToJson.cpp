// The JSON writer. Each element's decisions depend on its siblings of the same name (is it an
// array, the first of one, which elements follow in it) and on its path. Instead of searching
// the siblings anew for each element, each list of siblings is gone through once, and the
// answers kept for all its members; paths are carried down from the parent, and only as far
// as an entry of the array list could still match. The walk keeps its own stack, so that no
// depth of nesting uses up the call stack.
#include "storage/XmlToJson.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace {

constexpr size_t kNone = SIZE_MAX;

// One element among its siblings.
struct Sibling {
    uint32_t iPos = 0;
    std::string sName;
    uint32_t nNth = 0;         // elements of this name up to and including this one
    size_t nNextSame = kNone;  // the next sibling of the same name
    bool bPathName = false;    // the name reads as a path of its own, see IsPathName
};

// The siblings whose members are being written: the children of one element, or the
// top-level elements.
struct Frame {
    std::vector<Sibling> aKids;
    uint32_t iParent = 0;
    size_t nNext = 0;  // next sibling to write
    size_t nEnd = 0;
    size_t nFirst = 0;
    uint64_t nIndexBase = 0;  // the index of aKids[nFirst]; a comma goes before any other
    int nDepth = 1;           // depth of the members
    std::string sPath;        // path of the element whose children these are
    bool bPathKnown = false;  // false once no entry of the array list can match below
    bool bClose = false;      // an element's object, closed when its children are done
    // An array being written: the siblings that follow its first element.
    bool bInArray = false;
    std::vector<size_t> aArray;
    size_t nArrayStep = 0;
};

// A name with brackets, "*" or no name at all means more than itself to a search by name,
// which the writer does for later siblings; for these the document's own search is asked.
bool IsPathName(const std::string& sName) {
    return sName.empty() || sName == "*" || sName.find_first_of("[]") != std::string::npos;
}

bool IsNumber(const std::string& s) {
    return std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; }) &&
           (s.size() < 2 || s[0] != '0');
}

class JsonWriter {
  public:
    JsonWriter(std::string& sOut, CXmlDoc& doc, const ArrayList& arrayList, bool bNumbers,
               bool bAttributes, bool bPretty)
        : m_sOut(sOut),
          m_Doc(doc),
          m_ArrayList(arrayList),
          m_bNumbers(bNumbers),
          m_bAttributes(bAttributes),
          m_bPretty(bPretty) {
        for (const std::string& sEntry : arrayList) {
            m_nLongestEntry = std::max(m_nLongestEntry, sEntry.size());
        }
    }

    // The members of the top-level elements; false if there is none.
    bool WriteDocument(int nDepth) {
        Frame frame;
        frame.aKids = Siblings(TopLevel());
        frame.nEnd = frame.aKids.size();
        frame.nDepth = nDepth;
        frame.bPathKnown = !m_ArrayList.empty();
        bool bAny = !frame.aKids.empty();
        m_aFrames.push_back(std::move(frame));
        Run();
        return bAny;
    }

    // The member of one element, which stands among the children of iParent.
    void WriteMember(uint32_t iParent, uint32_t iPos, uint64_t nIndex, int nDepth) {
        Frame frame;
        frame.aKids = Siblings(iParent ? Children(iParent) : TopLevel());
        frame.iParent = iParent;
        for (size_t k = 0; k < frame.aKids.size(); ++k) {
            if (frame.aKids[k].iPos == iPos) {
                frame.nFirst = frame.nNext = k;
                frame.nEnd = k + 1;
            }
        }
        frame.nIndexBase = nIndex;
        frame.nDepth = nDepth;
        frame.bPathKnown = !m_ArrayList.empty();
        if (frame.bPathKnown && iParent) {
            m_Doc.SetPos(0, iParent, 0);
            frame.sPath = m_Doc.GetElemPath();
        }
        m_aFrames.push_back(std::move(frame));
        Run();
    }

    // The value of one element.
    void WriteValueOf(uint32_t iPos, int nDepth) {
        std::string sPath;
        if (!m_ArrayList.empty()) {
            m_Doc.SetPos(0, iPos, 0);
            sPath = m_Doc.GetElemPath();
        }
        WriteValue(iPos, std::move(sPath), !m_ArrayList.empty(), nDepth);
        Run();
    }

  private:
    std::vector<uint32_t> TopLevel() {
        std::vector<uint32_t> aPos;
        m_Doc.ResetPos();
        while (m_Doc.FindElem()) {
            aPos.push_back(m_Doc.GetMainPos());
        }
        return aPos;
    }

    std::vector<uint32_t> Children(uint32_t iPos) {
        std::vector<uint32_t> aPos;
        m_Doc.SetPos(0, iPos, 0);
        while (m_Doc.FindChildElem()) {
            aPos.push_back(m_Doc.GetChildPos());
        }
        return aPos;
    }

    // The siblings with what each one needs to know about the others of its name.
    std::vector<Sibling> Siblings(const std::vector<uint32_t>& aPos) {
        std::vector<Sibling> aKids(aPos.size());
        for (size_t k = 0; k < aPos.size(); ++k) {
            aKids[k].iPos = aPos[k];
            aKids[k].sName = m_Doc.GetElemTagName(aPos[k]);
            aKids[k].bPathName = IsPathName(aKids[k].sName);
        }
        // By name: how many so far, and the last one seen.
        std::unordered_map<std::string_view, std::pair<uint32_t, size_t>> names;
        for (size_t k = 0; k < aKids.size(); ++k) {
            auto [it, bNew] = names.try_emplace(aKids[k].sName, 0, k);
            if (!bNew) {
                aKids[it->second.second].nNextSame = k;
                it->second.second = k;
            }
            aKids[k].nNth = ++it->second.first;
        }
        return aKids;
    }

    // The path of a sibling, from its parent's, while an entry could still match.
    bool ChildPath(const Frame& frame, const Sibling& kid, std::string& sPath) const {
        if (!frame.bPathKnown) {
            return false;
        }
        sPath = frame.sPath;
        sPath += '/';
        sPath += kid.sName;
        if (kid.nNth > 1) {
            sPath += "[" + std::to_string(kid.nNth) + "]";
        }
        return sPath.size() <= m_nLongestEntry;
    }

    bool OnList(const Frame& frame, const Sibling& kid) const {
        std::string sPath;
        return ChildPath(frame, kid, sPath) &&
               std::find(m_ArrayList.begin(), m_ArrayList.end(), sPath) != m_ArrayList.end();
    }

    // The siblings behind aKids[k] that belong to its array.
    std::vector<size_t> LaterOfName(const Frame& frame, size_t k) {
        std::vector<size_t> aLater;
        const Sibling& kid = frame.aKids[k];
        if (!kid.bPathName) {
            for (size_t j = kid.nNextSame; j != kNone; j = frame.aKids[j].nNextSame) {
                aLater.push_back(j);
            }
            return aLater;
        }
        m_Doc.SetPos(frame.iParent, kid.iPos, 0);
        size_t j = k + 1;
        while (m_Doc.FindElem(kid.sName.c_str())) {
            while (j < frame.aKids.size() && frame.aKids[j].iPos != m_Doc.GetMainPos()) {
                ++j;
            }
            if (j == frame.aKids.size()) {
                break;
            }
            aLater.push_back(j++);
        }
        return aLater;
    }

    void Run() {
        while (!m_aFrames.empty()) {
            Frame& frame = m_aFrames.back();
            if (frame.bInArray) {
                if (frame.nArrayStep < frame.aArray.size()) {
                    size_t k = frame.aArray[frame.nArrayStep++];
                    m_sOut += ',';
                    NewLine(frame.nDepth + 1);
                    WriteKidValue(frame, k, frame.nDepth + 1);
                } else {
                    NewLine(frame.nDepth);
                    m_sOut += ']';
                    frame.bInArray = false;
                }
                continue;
            }
            if (frame.nNext == frame.nEnd) {
                const bool bClose = frame.bClose;
                const int nDepth = frame.nDepth;
                m_aFrames.pop_back();
                if (bClose) {
                    NewLine(nDepth - 1);
                    m_sOut += '}';
                }
                continue;
            }
            WriteKidMember(frame, frame.nNext++);
        }
    }

    // A member; the frame may be gone afterwards, as the value may push one.
    void WriteKidMember(Frame& frame, size_t k) {
        const Sibling& kid = frame.aKids[k];
        const uint64_t nIndex = frame.nIndexBase + (k - frame.nFirst);
        bool bHasPrev = kid.nNth > 1;
        if (kid.bPathName && kid.sName.empty()) {
            bHasPrev = k > 0;  // no name: any earlier sibling is one of it
        }
        if (bHasPrev) {
            return;  // written with the first of its name
        }
        std::vector<size_t> aLater = LaterOfName(frame, k);
        const bool bArray = !aLater.empty() || (!m_ArrayList.empty() && OnList(frame, kid));
        if (nIndex != 0) {
            m_sOut += ',';
        }
        NewLine(frame.nDepth);
        m_sOut += '"';
        m_sOut += kid.sName;
        m_sOut += "\":";
        if (!bArray) {
            WriteKidValue(frame, k, frame.nDepth);
            return;
        }
        m_sOut += '[';
        frame.bInArray = true;
        frame.aArray = std::move(aLater);
        frame.nArrayStep = 0;
        WriteKidValue(frame, k, frame.nDepth + 1);
    }

    void WriteKidValue(const Frame& frame, size_t k, int nDepth) {
        std::string sPath;
        bool bKnown = ChildPath(frame, frame.aKids[k], sPath);
        WriteValue(frame.aKids[k].iPos, std::move(sPath), bKnown, nDepth);
    }

    // Writes a leaf whole; for an element with children, its attributes, and a frame for the
    // children.
    void WriteValue(uint32_t iPos, std::string sPath, bool bPathKnown, int nDepth) {
        m_Doc.SetPos(0, iPos, 0);
        const bool bChildren = m_Doc.FindChildElem();
        int nInner = nDepth;
        if (bChildren) {
            m_sOut += '{';
            ++nInner;
        }
        uint64_t nAttribs = 0;
        for (int i = 0; m_bAttributes; ++i) {
            const std::string sName = m_Doc.GetAttribName(i);
            if (sName.empty()) {
                break;
            }
            if (nAttribs) {
                m_sOut += ',';
            } else if (!bChildren) {
                m_sOut += '{';
                ++nInner;
            }
            NewLine(nInner);
            m_sOut += "\"@";
            m_sOut += sName;
            m_sOut += "\":";
            WriteAttribValue(m_Doc.GetAttrib(iPos, sName.c_str()));
            ++nAttribs;
        }
        if (!bChildren) {
            if (nAttribs) {
                m_sOut += ',';
                NewLine(nInner);
                m_sOut += "\"#text\":";
            }
            WriteText(m_Doc.GetData(iPos));
            if (nAttribs) {
                m_sOut += '}';
            }
            return;
        }
        Frame frame;
        frame.aKids = Siblings(Children(iPos));
        frame.iParent = iPos;
        frame.nEnd = frame.aKids.size();
        frame.nIndexBase = nAttribs;
        frame.nDepth = nInner;
        frame.sPath = std::move(sPath);
        frame.bPathKnown = bPathKnown;
        frame.bClose = true;
        m_aFrames.push_back(std::move(frame));
    }

    void WriteAttribValue(const std::string& sValue) {
        if (m_bNumbers && IsNumber(sValue)) {
            m_sOut += sValue;  // an empty value leaves nothing behind the colon
            return;
        }
        m_sOut += '"';
        m_sOut += sValue;
        m_sOut += '"';
    }

    void WriteText(const std::string& sText) {
        if (sText.empty()) {
            m_sOut += "\"\"";
            return;
        }
        if (m_bNumbers && IsNumber(sText)) {
            m_sOut += sText;
            return;
        }
        m_sOut += '"';
        for (char c : sText) {
            if (c == '"') {
                m_sOut += '\\';
            }
            m_sOut += c;
        }
        m_sOut += '"';
    }

    void NewLine(int nDepth) {
        if (m_bPretty) {
            m_sOut += '\n';
            m_sOut.append(size_t(std::max(nDepth, 0)), '\t');
        }
    }

    std::string& m_sOut;
    CXmlDoc& m_Doc;
    const ArrayList& m_ArrayList;
    const bool m_bNumbers;
    const bool m_bAttributes;
    const bool m_bPretty;
    size_t m_nLongestEntry = 0;
    std::vector<Frame> m_aFrames;
};

// Puts the three positions back as they were.
class KeepPositions {
  public:
    explicit KeepPositions(CXmlDoc& doc)
        : m_Doc(doc),
          m_iParent(doc.GetParentPos()),
          m_iMain(doc.GetMainPos()),
          m_iChild(doc.GetChildPos()) {}
    ~KeepPositions() { m_Doc.SetPos(m_iParent, m_iMain, m_iChild); }
    KeepPositions(const KeepPositions&) = delete;
    KeepPositions& operator=(const KeepPositions&) = delete;

  private:
    CXmlDoc& m_Doc;
    uint32_t m_iParent, m_iMain, m_iChild;
};

}  // namespace

bool XmlToJSON(std::string& sOut, CXmlDoc& doc, const ArrayList& arrayList, bool bNumbers,
               bool bAttributes, bool bPretty) {
    sOut = "{";
    doc.SavePos("XmlToJSON");
    doc.ResetPos();
    bool bAny = JsonWriter(sOut, doc, arrayList, bNumbers, bAttributes, bPretty).WriteDocument(1);
    doc.RestorePos("XmlToJSON");
    if (bPretty) {
        sOut += "\n\t\n";
    }
    sOut += '}';
    return bAny;
}

int ElementToJSON(std::string& sOut, CXmlDoc& doc, const ArrayList& arrayList, bool bNumbers,
                  bool bAttributes, bool bPretty, int nIndex, int nDepth) {
    if (!doc.GetMainPos()) {
        return 1;
    }
    KeepPositions keep(doc);
    JsonWriter(sOut, doc, arrayList, bNumbers, bAttributes, bPretty)
        .WriteMember(doc.GetParentPos(), doc.GetMainPos(), uint64_t(std::max(nIndex, 0)), nDepth);
    return 1;
}

int ValueToJSON(std::string& sOut, CXmlDoc& doc, const ArrayList& arrayList, bool bNumbers,
                bool bAttributes, bool bPretty, int /*nIndex*/, int nDepth) {
    if (!doc.GetMainPos()) {
        return 1;
    }
    KeepPositions keep(doc);
    JsonWriter(sOut, doc, arrayList, bNumbers, bAttributes, bPretty)
        .WriteValueOf(doc.GetMainPos(), nDepth);
    return 1;
}
