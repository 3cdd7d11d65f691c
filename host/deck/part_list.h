/// \file
/// A list of parts.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_DECK_PART_LIST_H
#define VS_WML_HOST_DECK_PART_LIST_H

#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace vs_wml {

/// Elements that stay where they are while others are added. As opposed to a std::deque it
/// takes no memory while it is empty; as opposed to a std::vector it never holds them twice.
template <typename T>
class PartList {
  template <typename List, typename Element>
  class IteratorOf {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = Element *;
    using reference = Element &;

    IteratorOf() = default;
    IteratorOf(List *list, std::size_t index) : list_(list), index_(index) {}
    Element &operator*() const { return (*list_)[index_]; }
    Element *operator->() const { return &(*list_)[index_]; }
    IteratorOf &operator++() {
      ++index_;
      return *this;
    }
    IteratorOf operator++(int) { return {list_, index_++}; }
    bool operator==(const IteratorOf &other) const { return index_ == other.index_; }

   private:
    List *list_ = nullptr;
    std::size_t index_ = 0;
  };

 public:
  using iterator = IteratorOf<PartList, T>;
  using const_iterator = IteratorOf<const PartList, const T>;

  bool empty() const { return blocks_.empty(); }
  std::size_t size() const {
    return empty() ? 0 : (blocks_.size() - 1) * kBlock + blocks_.back().size();
  }
  T &operator[](std::size_t index) { return blocks_[index / kBlock][index % kBlock]; }
  const T &operator[](std::size_t index) const { return blocks_[index / kBlock][index % kBlock]; }
  T &back() { return blocks_.back().back(); }

  template <typename... Arguments>
  T &emplace_back(Arguments &&...arguments) {
    if (empty() || blocks_.back().size() == kBlock) blocks_.emplace_back().reserve(kBlock);
    return blocks_.back().emplace_back(std::forward<Arguments>(arguments)...);
  }
  void push_back(T element) { emplace_back(std::move(element)); }

  iterator begin() { return {this, 0}; }
  iterator end() { return {this, size()}; }
  const_iterator begin() const { return {this, 0}; }
  const_iterator end() const { return {this, size()}; }

 private:
  static constexpr std::size_t kBlock = 16;
  std::vector<std::vector<T>> blocks_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_DECK_PART_LIST_H
