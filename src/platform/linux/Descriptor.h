// An open file descriptor that is closed when its owner goes; closing leaves errno as it was.
#pragma once

#include <utility>

#include <errno.h>
#include <unistd.h>

namespace kinsort {

class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.Release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            Close();
            number_ = other.Release();
        }
        return *this;
    }
    ~Descriptor() { Close(); }

    bool isOpen() const { return number_ >= 0; }
    int get() const { return number_; }
    int Release() { return std::exchange(number_, -1); }
    void Close() {
        if (number_ < 0) return;
        const int saved = errno;
        close(Release());
        errno = saved;
    }

  private:
    int number_ = -1;
};

}  // namespace kinsort
