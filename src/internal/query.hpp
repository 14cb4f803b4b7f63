#pragma once

// The reads behind every query. They check each size that the implementation reports and throw
// `common::bad_implementation` if it is wrong. Nothing is cached.

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn::mero::internal {

/// Refers to an info entry point, complete except for the three arguments that a read chooses. A call makes one
/// capability call and throws what failed.
class info_query {
public:
    template <class Query>
    requires(!std::is_same_v<Query, info_query>) info_query(Query& query)
        : query_(std::addressof(query)), ask_([](void* self, std::size_t size, void* value, std::size_t* size_ret) {
              (*static_cast<Query*>(self))(size, value, size_ret);
          }) {}

    void operator()(std::size_t size, void* value, std::size_t* size_ret) const { ask_(query_, size, value, size_ret); }

private:
    void* query_;
    void (*ask_)(void*, std::size_t, void*, std::size_t*);
};

/// Reads one value of `size` bytes into a buffer of twice that size. An implementation that reports no size may write
/// to the whole buffer.
void read_value(info_query query, void* doubled_buffer, std::size_t size);

/// The same for `count` elements in a row.
void read_elements(info_query query, void* doubled_buffer, std::size_t count, std::size_t element_size);

/// Reads a text without its last byte, the terminating zero.
std::string read_text(info_query query);

/// Storage for an array read: it can be resized to a number of elements; new elements are zero.
class growable_array {
public:
    virtual void* resize(std::size_t count) = 0;

protected:
    ~growable_array() = default;
};

/// Reads an array of unknown length.
void read_array(info_query query, std::size_t element_size, growable_array& array);

template <class T>
T read_scalar(info_query query) {
    std::array<T, 2> values{};
    read_value(query, values.data(), sizeof(T));
    return values[0];
}

template <class T, std::size_t N>
std::array<T, N> read_fixed(info_query query) {
    std::array<std::array<T, N>, 2> values{};
    read_elements(query, values.data(), N, sizeof(T));
    return values[0];
}

template <class T>
std::vector<T> read_vector(info_query query) {
    struct vector_array final : growable_array {
        std::vector<T> elements;
        void* resize(std::size_t count) override {
            elements.resize(count);
            return elements.data();
        }
    } array;
    read_array(query, sizeof(T), array);
    return std::move(array.elements);
}

/// An array that uses the heap only for more than `N` elements; for lists that are converted right after the read.
template <class T, std::size_t N = 16>
class short_array final : public growable_array {
public:
    void* resize(std::size_t count) override {
        if (count > N) {
            elsewhere_.resize(count);
        }
        size_ = count;
        return data();
    }

    T* data() noexcept { return elsewhere_.empty() ? inside_.data() : elsewhere_.data(); }
    std::size_t size() const noexcept { return size_; }
    T* begin() noexcept { return data(); }
    T* end() noexcept { return data() + size_; }

private:
    std::array<T, N> inside_{};
    std::vector<T> elsewhere_;
    std::size_t size_ = 0;
};

} // namespace vorn::mero::internal
