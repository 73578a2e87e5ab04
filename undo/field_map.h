#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "platform/database.h"

namespace quillon {

/// Values of fields, in the order of their names. There may be some hundred thousand of these, with
/// twenty fields each, so they are held as bytes and made anew where somebody asks for them.
class FieldMap {
  public:
    /// The name is the map's own, and valid as long as that does not change.
    using Entry = std::pair<std::string_view, Value>;

    /// What it gives is valid until it goes on.
    class Iterator {
      public:
        using value_type = Entry;
        using difference_type = std::ptrdiff_t;
        using iterator_category = std::input_iterator_tag;
        using pointer = const Entry*;
        using reference = const Entry&;

        Iterator() = default;
        /// `rest` begins with an entry, or is the end of all.
        explicit Iterator(std::string_view rest) : rest_(rest) { Read(); }
        const Entry& operator*() const { return entry_; }
        const Entry* operator->() const { return &entry_; }
        Iterator& operator++();
        void operator++(int) { ++*this; }
        bool operator==(const Iterator& other) const { return rest_.size() == other.rest_.size(); }

      private:
        void Read();

        std::string_view rest_;
        Entry entry_;
    };

    Iterator begin() const { return Iterator(bytes_); }
    Iterator end() const { return {}; }
    bool empty() const { return bytes_.empty(); }
    std::size_t size() const;
    Iterator find(std::string_view name) const;
    /// The field is there.
    Value at(std::string_view name) const { return find(name)->second; }
    void Set(std::string_view name, const Value& value);
    /// Leaves a field that is there already as it is.
    void SetIfNew(std::string_view name, const Value& value);
    void clear() { std::string().swap(bytes_); }
    /// Gives back what room is left over.
    void ShrinkToFit() { bytes_.shrink_to_fit(); }
    bool operator==(const FieldMap&) const = default;

  private:
    /// Where an entry of that name begins, or belongs, and how many bytes it has there.
    std::pair<std::size_t, std::size_t> PlaceOf(std::string_view name) const;

    std::string bytes_;
};

}  // namespace quillon
