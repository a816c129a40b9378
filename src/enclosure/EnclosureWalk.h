#pragma once

#include <cstdint>
#include <string>

class CXmlDoc;

// The walk over a whole storage tree that set-up and the reading of states share: a ready
// multiplexer, then every adapter, its SAS ports (SASPort elements in tree version 1, Port
// elements of type SAS up to the first other type in later versions) and the enclosures
// behind them. A subclass says what an adapter and an enclosure mean to it; the walk moves
// the document and traces, under the subclass's name, what it passes and where it stops.
class EnclosureWalk {
  public:
    enum class Result {
        NoTree,    // no root, System, Multiplexer or Multiplexer Status
        NotReady,  // the multiplexer is not ready
        Broken,    // an adapter was refused: the walk stopped there
        Done,      // every adapter was walked
    };

    virtual ~EnclosureWalk() = default;

    Result Run();

  protected:
    // pszTraceName is the walk's name as traces show it, padded to the column: "ReadX   ".
    EnclosureWalk(CXmlDoc& doc, const char* pszTraceName) : m_Doc(doc), m_pszName(pszTraceName) {}

    // The adapter is the child: false refuses it as broken data and ends the walk.
    virtual bool Adapter() = 0;
    // A SAS port's enclosures come next.
    virtual void BeginPort() {}
    // Inside the enclosure named sName; the child position is reset.
    virtual void Enclosure(const std::string& sName) = 0;
    // Inside the processor, the index-th element of its kind is the child. The defaults
    // pass it by.
    virtual void Fan(uint32_t /*nIndex*/) {}
    virtual void TempSensor(uint32_t /*nIndex*/) {}
    virtual void PowerSupply(uint32_t /*nIndex*/) {}

    // What WalkProcessor met.
    struct ProcessorCounts {
        std::string sName;
        int nFans = 0;
        int nSensors = 0;
        int nSupplies = 0;
    };
    // Inside an enclosure: finds the next Processor child and hands each of its fans, then
    // sensors, then supplies to the hooks above. False, and counts untouched, without one.
    bool WalkProcessor(ProcessorCounts& counts);

    // The text of a child of main into sText; false, and sText untouched, if there is none.
    bool ChildText(const char* pszName, std::string& sText);
    // The next child search starts at the first child again.
    void ResetChild();
    std::string ChildAttrib(const char* pszName) const;

    CXmlDoc& m_Doc;

  private:
    void Ports();

    const char* m_pszName;
    std::string m_sVersion;
};
