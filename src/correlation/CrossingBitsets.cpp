// Settling crossing pairs when there are a few hundred at most, as in ordinary logs: every set of
// pairs is a bitset over the positions in the pair list, so that "the live pairs after a that
// cross it" is a handful of word operations.
//
// The pairs are in collection order, sorted by borehole-1 index (row) and then borehole-2 index
// (column). A later pair b crosses a exactly when b lies in a later row and in an earlier column;
// an earlier pair crosses a when it lies in an earlier row and a later column.
#include "correlation/CrossingResolution.h"

#include <algorithm>
#include <array>
#include <bit>

namespace xkl {

namespace {

constexpr std::size_t kWordBits = 64;

template <std::size_t W> struct Bits {
  std::array<uint64_t, W> word{};

  // The positions [from, to).
  static Bits Range(std::size_t from, std::size_t to) {
    Bits bits;
    for (std::size_t w = 0; w < W; ++w) {
      bits.word[w] = Below(w, to) & ~Below(w, from);
    }
    return bits;
  }
  static Bits Load(const uint64_t* words) {
    Bits bits;
    std::copy_n(words, W, bits.word.begin());
    return bits;
  }
  Bits operator&(const Bits& other) const {
    Bits bits;
    for (std::size_t w = 0; w < W; ++w) {
      bits.word[w] = word[w] & other.word[w];
    }
    return bits;
  }
  Bits operator|(const Bits& other) const {
    Bits bits;
    for (std::size_t w = 0; w < W; ++w) {
      bits.word[w] = word[w] | other.word[w];
    }
    return bits;
  }
  Bits operator~() const {
    Bits bits;
    for (std::size_t w = 0; w < W; ++w) {
      bits.word[w] = ~word[w];
    }
    return bits;
  }
  bool Any() const {
    uint64_t any = 0;
    for (const uint64_t w : word) {
      any |= w;
    }
    return any != 0;
  }
  bool Test(std::size_t p) const { return ((word[p / kWordBits] >> (p % kWordBits)) & 1u) != 0; }
  void Set(std::size_t p) { word[p / kWordBits] |= uint64_t{1} << (p % kWordBits); }
  void Reset(std::size_t p) { word[p / kWordBits] &= ~(uint64_t{1} << (p % kWordBits)); }
  // Calls f(position) for every position in the set, in increasing order.
  template <class F> void ForEach(F&& f) const {
    for (std::size_t w = 0; w < W; ++w) {
      for (uint64_t bits = word[w]; bits != 0; bits &= bits - 1) {
        f(w * kWordBits + static_cast<std::size_t>(std::countr_zero(bits)));
      }
    }
  }

private:
  // The bits of word w at positions below `to`.
  static uint64_t Below(std::size_t w, std::size_t to) {
    const std::size_t first = w * kWordBits;
    if (to <= first) {
      return 0;
    }
    if (to >= first + kWordBits) {
      return ~uint64_t{0};
    }
    return ~(~uint64_t{0} << (to - first));
  }
};

// The rows and columns of the pairs as sets.
template <std::size_t W> class PairLayout {
public:
  PairLayout(const std::vector<DcPair>& pairs, BitsetBuffers& buffers)
      : m_count(pairs.size()), m(buffers) {
    m.rowBegin.resize(m_count);
    m.rowEnd.resize(m_count);
    for (std::size_t p = 0; p < m_count;) {
      std::size_t end = p;
      while (end < m_count && pairs[end].nDC1 == pairs[p].nDC1) {
        ++end;
      }
      for (std::size_t q = p; q < end; ++q) {
        m.rowBegin[q] = static_cast<int32_t>(p);
        m.rowEnd[q] = static_cast<int32_t>(end);
      }
      p = end;
    }
    int32_t lowest = pairs.front().nDC2;
    int32_t highest = lowest;
    for (const DcPair& pair : pairs) {
      lowest = std::min(lowest, pair.nDC2);
      highest = std::max(highest, pair.nDC2);
    }
    // earlierColumns[c]: the pairs whose column lies before column lowest + c, for c up to one
    // past the highest column.
    const auto columns = static_cast<std::size_t>(highest - lowest) + 1;
    m.column.resize(m_count);
    m.earlierColumns.assign((columns + 1) * W, 0);
    for (std::size_t p = 0; p < m_count; ++p) {
      const auto c = static_cast<std::size_t>(pairs[p].nDC2 - lowest);
      m.column[p] = static_cast<int32_t>(c);
      m.earlierColumns[(c + 1) * W + p / kWordBits] |= uint64_t{1} << (p % kWordBits);
    }
    for (std::size_t c = 1; c <= columns; ++c) {
      for (std::size_t w = 0; w < W; ++w) {
        m.earlierColumns[c * W + w] |= m.earlierColumns[(c - 1) * W + w];
      }
    }
  }

  Bits<W> All() const { return Bits<W>::Range(0, m_count); }
  Bits<W> SameRow(std::size_t p) const { return Bits<W>::Range(RowBegin(p), RowEnd(p)); }
  Bits<W> LaterRows(std::size_t p) const { return Bits<W>::Range(RowEnd(p), m_count); }
  Bits<W> EarlierRows(std::size_t p) const { return Bits<W>::Range(0, RowBegin(p)); }
  Bits<W> EarlierColumns(std::size_t p) const { return EarlierColumnsThan(Column(p)); }
  Bits<W> SameColumn(std::size_t p) const {
    return EarlierColumnsThan(Column(p) + 1) & ~EarlierColumnsThan(Column(p));
  }
  Bits<W> LaterColumns(std::size_t p) const { return ~EarlierColumnsThan(Column(p) + 1); }
  // Every pair that crosses p, before or after it in the list.
  Bits<W> Crossing(std::size_t p) const {
    return (LaterRows(p) & EarlierColumns(p)) | (EarlierRows(p) & LaterColumns(p));
  }

private:
  std::size_t RowBegin(std::size_t p) const { return static_cast<std::size_t>(m.rowBegin[p]); }
  std::size_t RowEnd(std::size_t p) const { return static_cast<std::size_t>(m.rowEnd[p]); }
  std::size_t Column(std::size_t p) const { return static_cast<std::size_t>(m.column[p]); }
  Bits<W> EarlierColumnsThan(std::size_t c) const {
    return Bits<W>::Load(&m.earlierColumns[c * W]);
  }

  std::size_t m_count;
  BitsetBuffers& m;
};

template <std::size_t W> void Resolve(std::vector<DcPair>& pairs, BitsetBuffers& buffers) {
  const PairLayout<W> layout(pairs, buffers);
  const std::size_t count = pairs.size();

  // The first sweep. Every live later pair that crosses a meets it: the one whose mid elevations
  // differ more is dropped, the later one on equal keys (and the later one when a key is not a
  // number). a goes on meeting the others after it has lost.
  Bits<W> live = layout.All();
  for (std::size_t a = 0; a < count; ++a) {
    if (!live.Test(a)) {
      continue;
    }
    bool lost = false;
    (live & layout.LaterRows(a) & layout.EarlierColumns(a)).ForEach([&](std::size_t b) {
      if (pairs[a].dDiffGC > pairs[b].dDiffGC) {
        lost = true;
      } else {
        live.Reset(b);
      }
    });
    if (lost) {
      live.Reset(a);
    }
  }

  // The second chance for the dropped pairs that cross no kept pair.
  const Bits<W> kept = live;
  std::vector<DcPair*>& candidates = buffers.candidates;
  candidates.clear();
  (~kept & layout.All()).ForEach([&](std::size_t p) {
    if ((layout.Crossing(p) & kept).Any()) {
      return; // dropped for good
    }
    if (!(layout.SameRow(p) & kept).Any() && !(layout.SameColumn(p) & kept).Any()) {
      pairs[p].dDiffGC = 0.0;
    }
    candidates.push_back(&pairs[p]);
  });
  StableSortByKey(candidates);
  Bits<W> readmitted;
  for (DcPair* candidate : candidates) {
    const auto p = static_cast<std::size_t>(candidate - pairs.data());
    if (!(layout.Crossing(p) & readmitted).Any()) {
      readmitted.Set(p);
    }
  }
  const Bits<W> remaining = kept | readmitted;
  for (std::size_t p = 0; p < count; ++p) {
    pairs[p].bDrop = !remaining.Test(p);
  }
}

} // namespace

bool ResolveCrossingsByBitsets(std::vector<DcPair>& pairs, BitsetBuffers& buffers) {
  if (pairs.size() < 2) {
    return true;
  }
  if (pairs.size() <= kWordBits) {
    Resolve<1>(pairs, buffers);
  } else if (pairs.size() <= 2 * kWordBits) {
    Resolve<2>(pairs, buffers);
  } else if (pairs.size() <= kMaxBitsetPairs) {
    Resolve<kMaxBitsetPairs / kWordBits>(pairs, buffers);
  } else {
    return false;
  }
  return true;
}

} // namespace xkl
