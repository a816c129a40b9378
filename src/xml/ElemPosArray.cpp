#include "xml/ElemPos.h"

#include <new>

void ElemPosArray::ResizeSegment(uint32_t iSeg, uint32_t nRecords) {
    // Records are plain data, so realloc may move them as a whole.
    void* p = std::realloc(m_aSegs[iSeg].get(), size_t(nRecords) * sizeof(ElemPos));
    if (!p) {
        throw std::bad_alloc();
    }
    (void)m_aSegs[iSeg].release();
    m_aSegs[iSeg].reset(static_cast<ElemPos*>(p));
}

void ElemPosArray::SetCapacity(uint32_t n) {
    if (n <= m_nCapacity) {
        return;
    }
    uint32_t nSegs = uint32_t(m_aSegs.size());
    uint32_t nFullEnd = nSegs << kSegBits;  // capacity when the last segment is full
    if (nSegs && n <= nFullEnd) {
        ResizeSegment(nSegs - 1, n - ((nSegs - 1) << kSegBits));
        m_nCapacity = n;
        return;
    }
    if (nSegs && m_nCapacity < nFullEnd) {
        ResizeSegment(nSegs - 1, kSegSize);
        m_nCapacity = nFullEnd;
    }
    if (nSegs >= (1u << (32 - kSegBits))) {
        throw std::bad_alloc();  // index full: 2^32 records
    }
    uint32_t nNew = n - nFullEnd;
    if (nNew > kSegSize) {
        nNew = kSegSize;  // no more than one new segment at a time
    }
    if (m_aSegs.size() == m_aSegs.capacity()) {
        m_aSegs.reserve(2 * m_aSegs.size() + 4);
    }
    m_aSegs.emplace_back(nullptr);
    ResizeSegment(nSegs, nNew);
    m_nCapacity = nFullEnd + nNew;
}

void ElemPosArray::Reserve(uint32_t n) {
    SetCapacity(n);
}

void ElemPosArray::Grow() {
    uint64_t n = uint64_t(m_nCapacity) + m_nCapacity / 2;
    if (n <= m_nCapacity) {
        n = m_nCapacity + 8;
    }
    SetCapacity(n > 0xFFFFFFFFu ? 0xFFFFFFFFu : uint32_t(n));
}

void ElemPosArray::ShrinkTo(uint32_t n) {
    if (n == 0 || n >= m_nCapacity) {
        return;
    }
    const uint32_t nSegs = ((n - 1) >> kSegBits) + 1;
    m_aSegs.resize(nSegs);
    ResizeSegment(nSegs - 1, n - ((nSegs - 1) << kSegBits));
    m_nCapacity = n;
}

void ElemPosArray::Free() {
    m_aSegs.clear();
    m_aSegs.shrink_to_fit();
    m_nCapacity = 0;
}
