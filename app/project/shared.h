// Shared: an optional constant value that its copies hold in common. Copying costs a pointer, and comparing
// two copies of the same value costs a look at it, so that a roll of thousands of frames can be copied into
// every undo step.
#pragma once

#include <memory>
#include <optional>
#include <utility>

namespace tamlo {

template <typename T>
class Shared {
public:
    Shared() = default;
    Shared(std::nullopt_t) {}
    Shared(T value) : value_(std::make_shared<const T>(std::move(value))) {}

    explicit operator bool() const { return value_ != nullptr; }
    const T& operator*() const { return *value_; }
    const T* operator->() const { return value_.get(); }
    void reset() { value_.reset(); }

    /// Absent values are equal; present ones by value, the same block without a look inside.
    friend bool operator==(const Shared& a, const Shared& b)
    {
        return a.value_ == b.value_ || (a.value_ && b.value_ && *a.value_ == *b.value_);
    }

private:
    std::shared_ptr<const T> value_;
};

} // namespace tamlo
