#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

// Flag bits kept in the high half of ElemPos::nLevelFlags.
enum ElemFlag : uint32_t {
    kElemDeleted = 0x020000,    // on the free list
    kElemFirst = 0x080000,      // first of its siblings
    kElemUnended = 0x100000,    // no end tag
    kElemIllFormed = 0x200000,  // something ill-formed directly under this element
    kDocIllFormed = 0x800000,   // set on record 0 only
};

// One element of the index: offsets into the document text and links to its relatives.
// Kept at 32 bytes by packing both tag lengths in one word and level and flags in another.
struct ElemPos {
    uint32_t nStart;       // offset of the element's '<'
    uint32_t nLength;      // start tag through end tag
    uint32_t nTagLengths;  // low 22 bits start tag, high 10 bits end tag (0 when self-ended)
    uint32_t nLevelFlags;  // low 16 bits nesting level, high bits ElemFlag
    uint32_t iElemParent;
    uint32_t iElemChild;  // first child, 0 = none
    uint32_t iElemNext;   // 0 = last
    uint32_t iElemPrev;   // the first child's prev holds the last child

    static constexpr uint32_t kStartTagMask = 0x3FFFFF;
    static constexpr uint32_t kEndTagMask = 0x3FF;

    uint32_t StartTagLen() const { return nTagLengths & kStartTagMask; }
    uint32_t EndTagLen() const { return nTagLengths >> 22; }
    void SetStartTagLen(uint32_t n) {
        nTagLengths = (nTagLengths & ~kStartTagMask) | (n & kStartTagMask);
    }
    void SetEndTagLen(uint32_t n) {
        nTagLengths = (nTagLengths & kStartTagMask) | ((n & kEndTagMask) << 22);
    }
    uint32_t Level() const { return nLevelFlags & 0xFFFF; }
    bool Has(uint32_t nFlag) const { return (nLevelFlags & nFlag) != 0; }
    void Set(uint32_t nFlag) { nLevelFlags |= nFlag; }
    void Clear(uint32_t nFlag) { nLevelFlags &= ~nFlag; }
};
static_assert(sizeof(ElemPos) == 32, "an element record is 32 bytes");

// The element records, in segments of 65,536. Records of full segments never move; the last,
// partly sized segment is reallocated when it grows.
class ElemPosArray {
  public:
    static constexpr uint32_t kSegBits = 16;
    static constexpr uint32_t kSegSize = 1u << kSegBits;

    ElemPos& operator[](uint32_t i) { return m_aSegs[i >> kSegBits].get()[i & (kSegSize - 1)]; }
    const ElemPos& operator[](uint32_t i) const {
        return m_aSegs[i >> kSegBits].get()[i & (kSegSize - 1)];
    }
    uint32_t Capacity() const { return m_nCapacity; }
    // Makes sure of at least n records, within the limit of one new segment per call.
    void Reserve(uint32_t n);
    // Grows by half of the capacity.
    void Grow();
    // Gives back the room beyond n records: whole segments, and the rest of the last one.
    void ShrinkTo(uint32_t n);
    // Frees every segment.
    void Free();

  private:
    struct FreeDeleter {
        void operator()(ElemPos* p) const { std::free(p); }
    };
    using Segment = std::unique_ptr<ElemPos, FreeDeleter>;

    void SetCapacity(uint32_t n);
    void ResizeSegment(uint32_t iSeg, uint32_t nRecords);

    std::vector<Segment> m_aSegs;  // table of segments; its capacity is the table's
    uint32_t m_nCapacity = 0;      // in records
};
