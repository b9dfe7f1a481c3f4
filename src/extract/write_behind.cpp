#include "extract/write_behind.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace tarvex {

WriteBehind::WriteBehind(std::size_t block_size, std::size_t blocks)
    : block_size_(std::max<std::size_t>(block_size, 1)),
      blocks_(std::max<std::size_t>(blocks, 2)),
      burst_(blocks_ / 2) {}

WriteBehind::~WriteBehind() {
  if (!thread_.joinable()) return;
  {
    std::lock_guard lock(mutex_);
    stop_ = true;
  }
  work_.notify_one();
  thread_.join();
}

WriteBehind::Block WriteBehind::Take() {
  std::unique_lock lock(mutex_);
  if (free_.empty() && in_flight_ >= blocks_) {
    taker_waiting_ = true;
    work_.notify_one();  // the writer may still be waiting for a whole burst
    done_.wait(lock, [&] { return free_.size() >= burst_ || in_flight_ == 0; });
    taker_waiting_ = false;
  }
  if (free_.empty()) return std::make_unique_for_overwrite<std::uint8_t[]>(block_size_);
  Block block = std::move(free_.back());
  free_.pop_back();
  return block;
}

bool WriteBehind::StartThread() {
  if (thread_.joinable() || no_thread_) return !no_thread_;
  try {
    thread_ = std::thread([this] { Run(); });
  } catch (const std::system_error&) {
    no_thread_ = true;
  }
  return !no_thread_;
}

void WriteBehind::Write(File& file, Block block, std::size_t size) {
  std::unique_lock lock(mutex_);
  if (!StartThread()) {
    file.Write(block.get(), size);
    free_.push_back(std::move(block));
    return;
  }
  jobs_.push_back({&file, std::move(block), size});
  ++in_flight_;
  if (writer_waiting_ && jobs_.size() >= burst_) work_.notify_one();
}

void WriteBehind::Drain() {
  std::unique_lock lock(mutex_);
  if (in_flight_ == 0) return;
  draining_ = true;
  work_.notify_one();
  done_.wait(lock, [&] { return in_flight_ == 0; });
  draining_ = false;
}

void WriteBehind::Run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    if (jobs_.empty() && !stop_) {
      writer_waiting_ = true;
      work_.wait(lock, [&] {
        return stop_ || (!jobs_.empty() && (draining_ || taker_waiting_ || jobs_.size() >= burst_));
      });
      writer_waiting_ = false;
    }
    if (jobs_.empty()) {
      if (stop_) return;
      continue;
    }
    Job job = std::move(jobs_.front());
    jobs_.pop_front();
    lock.unlock();
    job.file->Write(job.block.get(), job.size);
    lock.lock();
    free_.push_back(std::move(job.block));
    --in_flight_;
    if ((taker_waiting_ && free_.size() >= burst_) || in_flight_ == 0) done_.notify_one();
  }
}

}  // namespace tarvex
