#include "PairCorrelation.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>

namespace xklink {

void ForEachPair(std::size_t count, unsigned jobs, const CorrelateOne& correlate) {
  if (jobs == 0) {
    jobs = std::max(1u, std::thread::hardware_concurrency());
  }
  const std::size_t workers = std::min<std::size_t>(jobs, count);
  std::atomic<std::size_t> next{0};
  std::vector<char> done(count, 0); // each written by the one worker that took the pair
  std::exception_ptr failure;
  std::mutex failureMutex;
  const auto work = [&] {
    try {
      XKLinkDc::CorrelationContext context;
      for (std::size_t i = next++; i < count; i = next++) {
        try {
          correlate(context, i);
          done[i] = 1;
        } catch (const std::bad_alloc&) {
          // left for the retry alone
        }
      }
    } catch (const std::bad_alloc&) {
      // no memory for a context: the other workers take the pairs, the retry what is left
    } catch (...) {
      const std::lock_guard lock(failureMutex);
      if (!failure) {
        failure = std::current_exception();
      }
      next = count; // the run is lost: no worker takes another pair
    }
  };
  std::size_t started = 0;
  {
    std::vector<std::jthread> threads;
    for (std::size_t w = 1; w < workers; ++w) {
      try {
        threads.emplace_back(work);
        ++started;
      } catch (const std::system_error&) {
        break; // no more threads to be had: the ones running share the pairs
      }
    }
    work(); // this thread is a worker too
  }
  if (failure) {
    std::rethrow_exception(failure);
  }
  const bool anyLeft = std::find(done.begin(), done.end(), 0) != done.end();
  if (anyLeft && started == 0) {
    throw std::bad_alloc(); // out of memory alone already
  }
  if (anyLeft) {
    XKLinkDc::CorrelationContext context;
    for (std::size_t i = 0; i < count; ++i) {
      if (done[i] == 0) {
        correlate(context, i);
      }
    }
  }
}

std::vector<PairResult> CorrelateConsecutivePairs(const std::vector<DataType::_sZK>& holes,
                                                  unsigned jobs, bool withTrees) {
  const std::size_t pairCount = holes.size() < 2 ? 0 : holes.size() - 1;
  std::vector<PairResult> results(pairCount);
  ForEachPair(pairCount, jobs, [&](XKLinkDc::CorrelationContext& context, std::size_t i) {
    results[i] = {};
    if (withTrees) {
      context.LinkDcTreeAndLines(holes[i], holes[i + 1], results[i].root, results[i].lines);
    } else {
      context.LinkDcLine(holes[i], holes[i + 1], results[i].lines);
    }
  });
  return results;
}

} // namespace xklink
