// Fusing the repeated codes of a long run list without searching it again after every fuse.
//
// The plain loop (StratumRuns.cpp) searches the whole list for the code to fuse and fuses one code
// per search. A log whose codes nest like envelopes (A B C ... C B A, a sequence that repeats
// upwards as it came down) needs half as many searches as it has runs, and every envelope it
// fuses is closed again as a named region one level further in: 4,000 such strata took 11.6 s,
// 10,000 took 205 s. Here the list keeps what the search needs up to date as runs are swallowed:
// - the runs, and per code its runs, as linked lists in hole order;
// - the eligible codes ordered by their first run: the last two decide which is fused;
// - for a code that is not eligible, the run of the region's own code that blocks it, so that the
//   code is looked at again only when that run is swallowed;
// - per code, the summed thickness of its runs, summed again in hole order only after its runs
//   changed, so that the comparison adds exactly what the plain loop adds.
// Both paths fuse the same codes in the same order (CrossingPathsTest holds every region of seeded
// boreholes to the same tree). Lists of more than Correlator::kPlainRunLimit (64) runs come here:
// with that threshold the typical pairs and the long logs of six codes, whose lists fuse in a few
// steps, cost what they did within the noise of the benchmarks, and the nested log of 4,000
// strata takes 0.20 s instead of 11.6 s.
#include "correlation/Correlation.h"
#include "records/CompareDouble.h"

namespace xkl {

namespace {

std::size_t Index(int32_t i) {
  return static_cast<std::size_t>(i);
}

class LongRunFusion {
public:
  LongRunFusion(const _sZK& zk, int32_t regionCode, LongFusionBuffers& work,
                std::vector<StratumRun>& runs)
      : m_zk(zk), m_regionCode(regionCode), m_work(work), m_runs(runs) {}

  void Run(std::size_t codeCount) {
    Link(codeCount);
    for (const int32_t code : m_work.codesPresent) {
      Evaluate(code);
    }
    while (!m_work.eligible.empty()) {
      const auto last = std::prev(m_work.eligible.end());
      const int32_t lastCode = m_runs[Index(*last)].code;
      int32_t chosen = lastCode;
      if (last != m_work.eligible.begin()) {
        const int32_t beforeLastCode = m_runs[Index(*std::prev(last))].code;
        if (CompareThickness(beforeLastCode, lastCode) > 0) {
          chosen = beforeLastCode;
        }
      }
      Fuse(chosen);
    }
    Collect();
  }

private:
  static constexpr int32_t kNone = -1;

  void Link(std::size_t codeCount) {
    LongFusionBuffers& w = m_work;
    const std::size_t m = m_runs.size();
    if (w.head.size() < codeCount) {
      w.head.resize(codeCount, kNone);
      w.tail.resize(codeCount, kNone);
      w.count.resize(codeCount, 0);
      w.eligibleAt.resize(codeCount, kNone);
      w.blocker.resize(codeCount, kNone);
      w.blockedNext.resize(codeCount, kNone);
      w.blockedPrev.resize(codeCount, kNone);
      w.sum.resize(codeCount, 0.0);
      w.sumValid.resize(codeCount, 0);
      w.touched.resize(codeCount, 0);
    }
    w.next.assign(m, kNone);
    w.prev.assign(m, kNone);
    w.nextSame.assign(m, kNone);
    w.prevSame.assign(m, kNone);
    w.blockedFirst.assign(m, kNone);
    w.regionAtOrAfter.resize(m + 1);
    w.codesPresent.clear();
    w.eligible.clear();
    for (std::size_t k = 0; k < m; ++k) {
      const int32_t run = static_cast<int32_t>(k);
      w.prev[k] = run - 1;
      w.next[k] = k + 1 < m ? run + 1 : kNone;
      const int32_t code = m_runs[k].code;
      if (w.count[Index(code)] == 0) {
        w.codesPresent.push_back(code);
        w.head[Index(code)] = run;
      } else {
        w.nextSame[Index(w.tail[Index(code)])] = run;
        w.prevSame[k] = w.tail[Index(code)];
      }
      w.tail[Index(code)] = run;
      ++w.count[Index(code)];
      w.regionAtOrAfter[k] = code == m_regionCode ? run : run + 1;
    }
    w.regionAtOrAfter[m] = static_cast<int32_t>(m);
  }

  // The first run of the region's own code at or after run k that is still in the list; the size
  // of the list when there is none. Swallowed runs point past themselves (path halving keeps the
  // chains short).
  int32_t RegionRunAtOrAfter(int32_t k) {
    std::vector<int32_t>& up = m_work.regionAtOrAfter;
    while (up[Index(k)] != k) {
      up[Index(k)] = up[Index(up[Index(k)])];
      k = up[Index(k)];
    }
    return k;
  }

  // A code is eligible when it occurs twice and no run of the region's own code lies from its
  // first run up to its second. The region's own code never is: when the region is named it is
  // skipped, and otherwise its first run is such a run.
  void Evaluate(int32_t code) {
    LongFusionBuffers& w = m_work;
    Forget(code);
    if (code == m_regionCode || w.count[Index(code)] < 2) {
      return;
    }
    const int32_t first = w.head[Index(code)];
    const int32_t second = w.nextSame[Index(first)];
    const int32_t region = RegionRunAtOrAfter(first);
    if (region < second) {
      Block(code, region);
    } else {
      w.eligibleAt[Index(code)] = first;
      w.eligible.insert(first);
    }
  }

  void Forget(int32_t code) {
    LongFusionBuffers& w = m_work;
    if (w.eligibleAt[Index(code)] != kNone) {
      w.eligible.erase(w.eligibleAt[Index(code)]);
      w.eligibleAt[Index(code)] = kNone;
    }
    const int32_t region = w.blocker[Index(code)];
    if (region != kNone) {
      const int32_t before = w.blockedPrev[Index(code)];
      const int32_t after = w.blockedNext[Index(code)];
      (before != kNone ? w.blockedNext[Index(before)] : w.blockedFirst[Index(region)]) = after;
      if (after != kNone) {
        w.blockedPrev[Index(after)] = before;
      }
      w.blocker[Index(code)] = kNone;
    }
  }

  void Block(int32_t code, int32_t region) {
    LongFusionBuffers& w = m_work;
    w.blocker[Index(code)] = region;
    w.blockedPrev[Index(code)] = kNone;
    w.blockedNext[Index(code)] = w.blockedFirst[Index(region)];
    if (w.blockedFirst[Index(region)] != kNone) {
      w.blockedPrev[Index(w.blockedFirst[Index(region)])] = code;
    }
    w.blockedFirst[Index(region)] = code;
  }

  double Thickness(const StratumRun& run) const {
    return m_zk.vecDC[Index(run.begin)].dTopGC - m_zk.vecDC[Index(run.end - 1)].dBotGC;
  }

  double SummedThickness(int32_t code) {
    LongFusionBuffers& w = m_work;
    if (!w.sumValid[Index(code)]) {
      double sum = 0.0;
      for (int32_t k = w.head[Index(code)]; k != kNone; k = w.nextSame[Index(k)]) {
        sum += Thickness(m_runs[Index(k)]);
      }
      w.sum[Index(code)] = sum;
      w.sumValid[Index(code)] = 1;
    }
    return w.sum[Index(code)];
  }

  // As the plain comparison: both codes are eligible, so each occurs at least twice.
  int32_t CompareThickness(int32_t codeA, int32_t codeB) {
    return CompareDouble(SummedThickness(codeA), SummedThickness(codeB));
  }

  // The first run of the code takes over everything down to the end of its last run.
  void Fuse(int32_t code) {
    LongFusionBuffers& w = m_work;
    const int32_t first = w.head[Index(code)];
    const int32_t last = w.tail[Index(code)];
    m_runs[Index(first)].end = m_runs[Index(last)].end;
    m_runs[Index(first)].merged = true;
    const int32_t after = w.next[Index(last)];
    w.changed.clear();
    for (int32_t k = w.next[Index(first)]; k != after; k = w.next[Index(k)]) {
      Swallow(k);
    }
    w.next[Index(first)] = after;
    if (after != kNone) {
      w.prev[Index(after)] = first;
    }
    for (const int32_t changed : w.changed) {
      w.touched[Index(changed)] = 0;
      Evaluate(changed);
    }
  }

  void Swallow(int32_t k) {
    LongFusionBuffers& w = m_work;
    const int32_t code = m_runs[Index(k)].code;
    const int32_t before = w.prevSame[Index(k)];
    const int32_t after = w.nextSame[Index(k)];
    (before != kNone ? w.nextSame[Index(before)] : w.head[Index(code)]) = after;
    (after != kNone ? w.prevSame[Index(after)] : w.tail[Index(code)]) = before;
    --w.count[Index(code)];
    w.sumValid[Index(code)] = 0;
    MarkChanged(code);
    if (code == m_regionCode) {
      w.regionAtOrAfter[Index(k)] = k + 1;
      for (int32_t blocked = w.blockedFirst[Index(k)]; blocked != kNone;
           blocked = w.blockedNext[Index(blocked)]) {
        MarkChanged(blocked);
      }
    }
  }

  void MarkChanged(int32_t code) {
    if (!m_work.touched[Index(code)]) {
      m_work.touched[Index(code)] = 1;
      m_work.changed.push_back(code);
    }
  }

  // The runs left, in hole order; the per-code state back to empty for the next list.
  void Collect() {
    LongFusionBuffers& w = m_work;
    std::size_t kept = 0;
    for (int32_t k = m_runs.empty() ? kNone : 0; k != kNone; k = w.next[Index(k)]) {
      m_runs[kept++] = m_runs[Index(k)];
    }
    m_runs.resize(kept);
    for (const int32_t code : w.codesPresent) {
      Forget(code);
      w.head[Index(code)] = kNone;
      w.tail[Index(code)] = kNone;
      w.count[Index(code)] = 0;
      w.sumValid[Index(code)] = 0;
    }
  }

  const _sZK& m_zk;
  int32_t m_regionCode;
  LongFusionBuffers& m_work;
  std::vector<StratumRun>& m_runs;
};

} // namespace

void FuseLongRunList(const _sZK& zk, int32_t regionCode, std::size_t codeCount,
                     LongFusionBuffers& work, std::vector<StratumRun>& runs) {
  LongRunFusion(zk, regionCode, work, runs).Run(codeCount);
}

} // namespace xkl
