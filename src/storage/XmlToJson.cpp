// The JSON writer. Each element's decisions depend on its siblings of the same name (is it an
// array, the first of one, which elements follow in it) and on its path. Instead of searching
// the siblings anew for each element, each list of siblings is gone through once, and the
// answers kept for all its members; paths are carried down from the parent, and only as far
// as an entry of the array list could still match. The walk keeps its own stack, so that no
// depth of nesting uses up the call stack.
#include "storage/XmlToJson.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "xml/XmlAttribScan.h"

namespace {

constexpr size_t kNone = SIZE_MAX;

// One element among its siblings.
struct Sibling {
    uint32_t iPos = 0;
    std::string_view sName;    // in the document's text, which the writer leaves unchanged
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

    // Back to a new frame's state; the lists keep their memory for the next use.
    void Reset() {
        aKids.clear();
        iParent = 0;
        nNext = nEnd = nFirst = 0;
        nIndexBase = 0;
        nDepth = 1;
        sPath.clear();
        bPathKnown = bClose = bInArray = false;
        aArray.clear();
        nArrayStep = 0;
    }
};

// A name with brackets, "*" or no name at all means more than itself to a search by name,
// which the writer does for later siblings; for these the document's own search is asked.
bool IsPathName(std::string_view sName) {
    return sName.empty() || sName == "*" ||
           std::any_of(sName.begin(), sName.end(), [](char c) { return c == '[' || c == ']'; });
}

// Sibling lists up to this long find the earlier ones of a name by looking through them.
constexpr size_t kShortList = 16;

bool IsNumber(std::string_view s) {
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
        Frame& frame = PushFrame();
        TopLevel(frame.aKids);
        frame.nEnd = frame.aKids.size();
        frame.nDepth = nDepth;
        frame.bPathKnown = !m_ArrayList.empty();
        bool bAny = !frame.aKids.empty();
        Run();
        return bAny;
    }

    // The member of one element, which stands among the children of iParent.
    void WriteMember(uint32_t iParent, uint32_t iPos, uint64_t nIndex, int nDepth) {
        Frame& frame = PushFrame();
        if (iParent) {
            Children(iParent, frame.aKids);
        } else {
            TopLevel(frame.aKids);
        }
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
        Run();
    }

    // The value of one element.
    void WriteValueOf(uint32_t iPos, int nDepth) {
        std::string sPath;
        if (!m_ArrayList.empty()) {
            m_Doc.SetPos(0, iPos, 0);
            sPath = m_Doc.GetElemPath();
        }
        WriteValue(iPos, m_Doc.TagNameView(iPos), sPath, !m_ArrayList.empty(), nDepth);
        Run();
    }

  private:
    // The frames in use are the first m_nFrames; each stays at its address while others are
    // pushed, and keeps its memory when popped.
    Frame& PushFrame() {
        if (m_nFrames == m_aFrames.size()) {
            m_aFrames.push_back(std::make_unique<Frame>());
        }
        Frame& frame = *m_aFrames[m_nFrames++];
        frame.Reset();
        return frame;
    }

    void TopLevel(std::vector<Sibling>& aKids) {
        m_Doc.ResetPos();
        while (m_Doc.FindElem()) {
            aKids.emplace_back();
            aKids.back().iPos = m_Doc.GetMainPos();
        }
        Siblings(aKids);
    }

    void Children(uint32_t iPos, std::vector<Sibling>& aKids) {
        for (uint32_t iKid = m_Doc.GetRecord(iPos).iElemChild; iKid;
             iKid = m_Doc.GetRecord(iKid).iElemNext) {
            aKids.emplace_back();
            aKids.back().iPos = iKid;
        }
        Siblings(aKids);
    }

    // What each sibling needs to know about the others of its name.
    void Siblings(std::vector<Sibling>& aKids) {
        for (Sibling& kid : aKids) {
            kid.sName = m_Doc.TagNameView(kid.iPos);
            kid.bPathName = IsPathName(kid.sName);
        }
        if (aKids.size() <= kShortList) {
            for (size_t k = 0; k < aKids.size(); ++k) {
                size_t j = k;
                while (j-- > 0 && aKids[j].sName != aKids[k].sName) {
                }
                if (j != kNone) {
                    aKids[j].nNextSame = k;
                    aKids[k].nNth = aKids[j].nNth + 1;
                } else {
                    aKids[k].nNth = 1;
                }
            }
            return;
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
    }

    // The path of a sibling, from its parent's, while an entry could still match.
    bool ChildPath(const Frame& frame, const Sibling& kid, std::string& sPath) const {
        if (!frame.bPathKnown || frame.sPath.size() + 1 + kid.sName.size() > m_nLongestEntry) {
            return false;
        }
        sPath = frame.sPath;
        sPath += '/';
        sPath += kid.sName;
        if (kid.nNth > 1) {
            sPath += "[" + std::to_string(kid.nNth) + "]";
        }
        return LeadsToEntry(sPath);
    }

    // Whether the path is an entry of the array list or the path of one of its ancestors:
    // below any other path no entry can match.
    bool LeadsToEntry(const std::string& sPath) const {
        for (const std::string& sEntry : m_ArrayList) {
            if (sEntry.size() >= sPath.size() && sEntry.compare(0, sPath.size(), sPath) == 0 &&
                (sEntry.size() == sPath.size() || sEntry[sPath.size()] == '/')) {
                return true;
            }
        }
        return false;
    }

    bool OnList(const Frame& frame, const Sibling& kid) {
        return ChildPath(frame, kid, m_sPath) &&
               std::find(m_ArrayList.begin(), m_ArrayList.end(), m_sPath) != m_ArrayList.end();
    }

    // The siblings behind aKids[k] that belong to its array.
    void LaterOfName(const Frame& frame, size_t k, std::vector<size_t>& aLater) {
        aLater.clear();
        const Sibling& kid = frame.aKids[k];
        if (!kid.bPathName) {
            for (size_t j = kid.nNextSame; j != kNone; j = frame.aKids[j].nNextSame) {
                aLater.push_back(j);
            }
            return;
        }
        m_Doc.SetPos(frame.iParent, kid.iPos, 0);
        size_t j = k + 1;
        const std::string sName(kid.sName);
        while (m_Doc.FindElem(sName.c_str())) {
            while (j < frame.aKids.size() && frame.aKids[j].iPos != m_Doc.GetMainPos()) {
                ++j;
            }
            if (j == frame.aKids.size()) {
                break;
            }
            aLater.push_back(j++);
        }
    }

    void Run() {
        while (m_nFrames > 0) {
            Frame& frame = *m_aFrames[m_nFrames - 1];
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
                --m_nFrames;
                if (bClose) {
                    NewLine(nDepth - 1);
                    m_sOut += '}';
                }
                continue;
            }
            WriteKidMember(frame, frame.nNext++);
        }
    }

    // A member; its value may push a frame for its children.
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
        LaterOfName(frame, k, m_aLater);
        const bool bArray = !m_aLater.empty() || (!m_ArrayList.empty() && OnList(frame, kid));
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
        frame.aArray.swap(m_aLater);
        frame.nArrayStep = 0;
        WriteKidValue(frame, k, frame.nDepth + 1);
    }

    void WriteKidValue(const Frame& frame, size_t k, int nDepth) {
        bool bKnown = ChildPath(frame, frame.aKids[k], m_sPath);
        WriteValue(frame.aKids[k].iPos, frame.aKids[k].sName, m_sPath, bKnown, nDepth);
    }

    // Writes a leaf whole; for an element with children, its attributes, and a frame for the
    // children.
    // A start tag that is its name alone, "<name>" or "<name/>", has no attribute to scan for.
    bool HasBareStartTag(uint32_t iPos, std::string_view sName) const {
        const ElemPos& elem = m_Doc.GetRecord(iPos);
        const std::string& sText = m_Doc.GetDocText();
        const size_t nLength = elem.StartTagLen();
        if (nLength < sName.size() + 2 || nLength > sName.size() + 3 ||
            uint64_t(elem.nStart) + nLength > sText.size()) {
            return false;
        }
        const char* p = sText.data() + elem.nStart + 1;
        return std::string_view(p, sName.size()) == sName &&
               (nLength == sName.size() + 2 ? p[sName.size()] == '>'
                                            : p[sName.size()] == '/' && p[sName.size() + 1] == '>');
    }

    // sName is the element's name as TagNameView reads it.
    void WriteValue(uint32_t iPos, std::string_view sName, const std::string& sPath,
                    bool bPathKnown, int nDepth) {
        const bool bChildren = m_Doc.GetRecord(iPos).iElemChild != 0;
        int nInner = nDepth;
        if (bChildren) {
            m_sOut += '{';
            ++nInner;
        }
        uint64_t nAttribs = 0;
        const bool bScan = m_bAttributes && !HasBareStartTag(iPos, sName);
        XmlAttribScan scan(m_Doc, bScan ? iPos : 0);
        XmlAttribScan::Item item;
        m_aFirstValues.clear();
        while (bScan && scan.Next(item)) {
            if (nAttribs) {
                m_sOut += ',';
            } else if (!bChildren) {
                m_sOut += '{';
                ++nInner;
            }
            NewLine(nInner);
            m_sOut += "\"@";
            m_sOut += scan.Name(item);
            m_sOut += "\":";
            WriteAttribValue(FirstValue(iPos, scan, item));
            ++nAttribs;
        }
        if (!bChildren) {
            if (nAttribs) {
                m_sOut += ',';
                NewLine(nInner);
                m_sOut += "\"#text\":";
            }
            WriteLeafText(iPos);
            if (nAttribs) {
                m_sOut += '}';
            }
            return;
        }
        Frame& frame = PushFrame();
        Children(iPos, frame.aKids);
        frame.iParent = iPos;
        frame.nEnd = frame.aKids.size();
        frame.nIndexBase = nAttribs;
        frame.nDepth = nInner;
        if (bPathKnown) {
            frame.sPath = sPath;
        }
        frame.bPathKnown = bPathKnown;
        frame.bClose = true;
    }

    // The value of the first attribute of the item's name, as a search by name finds it (the
    // name as a C string reads it).
    const std::string& FirstValue(uint32_t iPos, const XmlAttribScan& scan,
                                  const XmlAttribScan::Item& item) {
        const std::string_view sName = scan.Name(item);
        if (sName.find('\0') != std::string_view::npos) {
            m_sValue = m_Doc.GetAttrib(iPos, std::string(sName).c_str());
            return m_sValue;
        }
        for (const auto& [sEarlier, sValue] : m_aFirstValues) {
            if (sEarlier == sName) {
                return sValue;
            }
        }
        m_aFirstValues.emplace_back(sName, scan.Value(item));
        return m_aFirstValues.back().second;
    }

    // A leaf's text, unescaped; text without references or markup reads as it stands.
    void WriteLeafText(uint32_t iPos) {
        const ElemPos& elem = m_Doc.GetRecord(iPos);
        uint32_t nStart, nEnd;
        if (!elem.iElemChild && elem.nLength != elem.StartTagLen() &&
            m_Doc.ContentRange(iPos, nStart, nEnd)) {
            const std::string_view sRaw(m_Doc.GetDocText().data() + nStart, nEnd - nStart);
            if (!std::memchr(sRaw.data(), '&', sRaw.size()) &&
                !std::memchr(sRaw.data(), '<', sRaw.size())) {
                WriteText(sRaw);
                return;
            }
        }
        WriteText(m_Doc.GetData(iPos));
    }

    void WriteAttribValue(std::string_view sValue) {
        if (m_bNumbers && IsNumber(sValue)) {
            m_sOut += sValue;  // an empty value leaves nothing behind the colon
            return;
        }
        m_sOut += '"';
        m_sOut += sValue;
        m_sOut += '"';
    }

    void WriteText(std::string_view sText) {
        if (sText.empty()) {
            m_sOut += "\"\"";
            return;
        }
        if (m_bNumbers && IsNumber(sText)) {
            m_sOut += sText;
            return;
        }
        m_sOut += '"';
        size_t nRun = 0;  // start of the bytes not yet written
        for (size_t nQuote; (nQuote = sText.find('"', nRun)) != std::string_view::npos;) {
            m_sOut.append(sText.data() + nRun, nQuote - nRun);
            m_sOut += "\\\"";
            nRun = nQuote + 1;
        }
        m_sOut.append(sText.data() + nRun, sText.size() - nRun);
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
    std::vector<std::unique_ptr<Frame>> m_aFrames;
    size_t m_nFrames = 0;
    std::vector<size_t> m_aLater;  // scratch of WriteKidMember, swapped into a frame
    std::string m_sPath;           // scratch of the paths of children
    // Scratch space of WriteValue: the first value of each attribute name of one element.
    std::vector<std::pair<std::string_view, std::string>> m_aFirstValues;
    std::string m_sValue;
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
