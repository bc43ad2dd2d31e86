#include "PairCorrelation.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>

namespace xklink {

std::vector<PairResult> CorrelateConsecutivePairs(const std::vector<DataType::_sZK>& holes,
                                                  unsigned jobs, bool withTrees) {
  const std::size_t pairCount = holes.size() < 2 ? 0 : holes.size() - 1;
  std::vector<PairResult> results(pairCount);
  if (jobs == 0) {
    jobs = std::max(1u, std::thread::hardware_concurrency());
  }
  const std::size_t workers = std::min<std::size_t>(jobs, pairCount);
  std::atomic<std::size_t> next{0};
  std::exception_ptr failure;
  std::mutex failureMutex;
  const auto work = [&] {
    XKLinkDc::CorrelationContext context;
    for (std::size_t i = next++; i < pairCount; i = next++) {
      try {
        if (withTrees) {
          context.LinkDcTreeAndLines(holes[i], holes[i + 1], results[i].root, results[i].lines);
        } else {
          context.LinkDcLine(holes[i], holes[i + 1], results[i].lines);
        }
      } catch (...) {
        const std::lock_guard lock(failureMutex);
        if (!failure) {
          failure = std::current_exception();
        }
      }
    }
  };
  if (workers <= 1) {
    work();
  } else {
    std::vector<std::jthread> threads;
    threads.reserve(workers);
    for (std::size_t w = 0; w < workers; ++w) {
      threads.emplace_back(work);
    }
  }
  if (failure) {
    std::rethrow_exception(failure);
  }
  return results;
}

} // namespace xklink
