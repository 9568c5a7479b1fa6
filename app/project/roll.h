// Roll: the frames of a project in their order. A value whose copies share the frames: a copy costs a
// pointer a frame, an edit replaces one frame, and frames that two rolls share are equal without a look.
#pragma once

#include "app/project/frame.h"

#include <cstddef>
#include <iterator>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace tamlo {

/// A frame that stays as it is, whatever becomes of the roll.
using FrameRef = std::shared_ptr<const Frame>;

class Roll {
public:
    class Iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Frame;
        using difference_type = std::ptrdiff_t;
        using pointer = const Frame*;
        using reference = const Frame&;

        Iterator() = default;
        explicit Iterator(const FrameRef* at) : at_(at) {}
        reference operator*() const { return **at_; }
        pointer operator->() const { return at_->get(); }
        Iterator& operator++()
        {
            ++at_;
            return *this;
        }
        Iterator operator++(int)
        {
            Iterator before = *this;
            ++at_;
            return before;
        }
        bool operator==(const Iterator&) const = default;

    private:
        const FrameRef* at_ = nullptr;
    };

    std::size_t size() const { return frames_.size(); }
    bool empty() const { return frames_.empty(); }
    const Frame& operator[](std::size_t i) const { return *frames_[i]; }
    const FrameRef& ref(std::size_t i) const { return frames_[i]; }
    const std::vector<FrameRef>& refs() const { return frames_; }
    Iterator begin() const { return Iterator(frames_.data()); }
    Iterator end() const { return Iterator(frames_.data() + frames_.size()); }

    void reserve(std::size_t n) { frames_.reserve(n); }
    void append(Frame frame);
    void append(FrameRef frame) { frames_.push_back(std::move(frame)); }
    /// The frame to be changed, now of this roll alone. Valid until the roll is changed again.
    Frame& edit(std::size_t i);
    void replace(std::size_t i, FrameRef frame) { frames_[i] = std::move(frame); }
    /// Places in their new order: each place of the roll once, or fewer to leave frames out.
    void arrange(const std::vector<std::size_t>& places);

    std::optional<std::size_t> find(const FrameID& id) const;
    /// Places of all frames by id, for work on many.
    std::unordered_map<FrameID, std::size_t> places() const;

    friend bool operator==(const Roll& a, const Roll& b);

private:
    std::vector<FrameRef> frames_;
};

} // namespace tamlo
