// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// What worker processes do with numbered items, and what becomes of the results.
class WorkerTask {
 public:
  virtual ~WorkerTask() = default;

  // In each worker process, first of all. Throws CommandError when no item could be worked on.
  virtual void Begin() = 0;
  // In a worker process: the item's result, any bytes.
  virtual std::string Work(std::size_t item) = 0;

  // In the main process: a result has arrived; the bytes are valid during the call.
  virtual void Take(std::size_t item, std::string_view result) = 0;
  // In the main process: the worker was lost while it held this item; `reason` is one clause.
  virtual void Lose(std::size_t item, const std::string& reason) = 0;
  // In the main process, from time to time: may show what was taken so far.
  virtual void Flush() = 0;
};
