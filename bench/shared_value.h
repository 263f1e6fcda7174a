#pragma once

#include <sys/mman.h>

#include <cstdlib>

namespace kestrel::bench {

// A zero that this process and the children that it forks share.
template <typename Value>
class SharedValue {
 public:
  SharedValue()
      : value_(static_cast<Value*>(mmap(nullptr, sizeof(Value), PROT_READ | PROT_WRITE,
                                        MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
    if (value_ == MAP_FAILED) {
      std::abort();
    }
  }
  SharedValue(const SharedValue&) = delete;
  SharedValue& operator=(const SharedValue&) = delete;
  ~SharedValue() { munmap(value_, sizeof(Value)); }

  Value& operator*() const { return *value_; }

 private:
  Value* value_;
};

}  // namespace kestrel::bench
