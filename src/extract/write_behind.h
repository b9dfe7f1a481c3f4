// Writes full output blocks on a second thread, so that classifying and copying the next
// packs overlaps with the system's copying of the previous blocks into the files. One writer
// serves every output file of an extraction run and writes the blocks in the order they were
// handed over.
//
// The blocks come from a pool: at most `blocks` of them wait or are being written at a time
// (plus the one each output file is filling), so memory stays flat. Either side sleeps only
// when the other has half the pool to get through, so they hand over work in bursts and
// neither waits on the other's every block.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/file_io.h"

namespace tarvex {

class WriteBehind {
 public:
  using Block = std::unique_ptr<std::uint8_t[]>;
  static constexpr std::size_t kDefaultBlocks = 8;

  // Blocks of block_size bytes (at least 1), at most `blocks` (at least 2) in flight.
  explicit WriteBehind(std::size_t block_size, std::size_t blocks = kDefaultBlocks);
  ~WriteBehind();  // writes out everything handed over, then stops the thread
  WriteBehind(const WriteBehind&) = delete;
  WriteBehind& operator=(const WriteBehind&) = delete;

  std::size_t block_size() const { return block_size_; }
  // An empty block to fill: a written one back from the pool, or a new one.
  Block Take();
  // Hands over the first size bytes of block, to be written to file at its current
  // position. The file must stay open until Drain() (or the destructor) returns.
  void Write(File& file, Block block, std::size_t size);
  // Returns once every block handed over is written.
  void Drain();

 private:
  struct Job {
    File* file;
    Block block;
    std::size_t size;
  };
  void Run();
  bool StartThread();

  const std::size_t block_size_;
  const std::size_t blocks_;
  const std::size_t burst_;  // half the pool: what either side gets through before waking
  std::mutex mutex_;
  std::condition_variable work_;  // jobs arrived, or stop
  std::condition_variable done_;  // blocks came back to the pool
  std::deque<Job> jobs_;
  std::vector<Block> free_;
  std::size_t in_flight_ = 0;  // blocks waiting or being written
  bool writer_waiting_ = false;
  bool taker_waiting_ = false;
  bool draining_ = false;
  bool stop_ = false;
  bool no_thread_ = false;  // the thread could not be started: blocks are written at once
  std::thread thread_;      // started by the first Write()
};

}  // namespace tarvex
