// array.h -- Array<T>, an array that owns its memory, and TRY, which passes on error codes
#pragma once
#include "runtime/memory.h"
#include <cassert>
#include <cstdint>
#include <cstring>
#include <type_traits>

static constexpr int OUT_OF_MEMORY = 10001; // error code of a failed allocation

// TRY(step) is short for: if (int error = step) return error;   the only control flow hidden in a macro
#define TRY(call)                                                                          \
    do {                                                                                   \
        if (const int error_ = (call)) return error_;                                      \
    } while (0)

// Owns its memory; can be moved, not copied. All zero is a valid empty array.
template<class T> struct Array {
    static_assert(std::is_trivially_copyable_v<T>);
    T *data = nullptr;
    int64_t size = 0; // entries in use
    int64_t room = 0; // entries allocated, size <= room

    Array() = default;
    Array(const Array &) = delete;
    Array &operator=(const Array &) = delete;
    Array(Array &&other) noexcept : data(other.data), size(other.size), room(other.room)
    {
        other.data = nullptr;
        other.size = other.room = 0;
    }
    Array &operator=(Array &&other) noexcept
    {
        if (this != &other) {
            MemFree(data);
            data = other.data;
            size = other.size;
            room = other.room;
            other.data = nullptr;
            other.size = other.room = 0;
        }
        return *this;
    }
    ~Array() { MemFree(data); }

    T &operator[](int64_t k)
    {
        assert(0 <= k && k < size);
        return data[k];
    }
    const T &operator[](int64_t k) const
    {
        assert(0 <= k && k < size);
        return data[k];
    }
    T *begin() { return data; }
    T *end() { return data + size; }
    const T *begin() const { return data; }
    const T *end() const { return data + size; }
};

template<class T> void array_free(Array<T> *a)
{
    *a = Array<T>{};
}

// Room for at least `room` entries; size and content stay. 0 or OUT_OF_MEMORY; *a is unchanged on failure.
template<class T> [[nodiscard]] int array_reserve(Array<T> *a, int64_t room)
{
    if (room <= a->room) return 0;
    if (room > INT64_MAX / static_cast<int64_t>(sizeof(T))) return OUT_OF_MEMORY;
    void *block = MemRealloc(a->data, static_cast<size_t>(room) * sizeof(T));
    if (!block) return OUT_OF_MEMORY;
    a->data = static_cast<T *>(block);
    a->room = room;
    return 0;
}

// Size n; entries beyond the old size are uninitialised. Never shrinks the room.
template<class T> [[nodiscard]] int array_resize(Array<T> *a, int64_t n)
{
    TRY(array_reserve(a, n));
    a->size = n;
    return 0;
}

// Size n with every entry set to `value`.
template<class T> [[nodiscard]] int array_assign(Array<T> *a, int64_t n, T value)
{
    TRY(array_resize(a, n));
    for (int64_t k = 0; k < n; k++) a->data[k] = value;
    return 0;
}

// Size n with a copy of source[0..n-1]; a null source leaves the entries uninitialised.
template<class T> [[nodiscard]] int array_copy(Array<T> *a, const T *source, int64_t n)
{
    TRY(array_resize(a, n));
    if (source && n > 0) memcpy(a->data, source, static_cast<size_t>(n) * sizeof(T));
    return 0;
}

// Appends; cannot fail, there must be room.
template<class T> void array_push(Array<T> *a, T value)
{
    assert(a->size < a->room);
    a->data[a->size++] = value;
}

// Appends, growing by half when full.
template<class T> [[nodiscard]] int array_append(Array<T> *a, T value)
{
    if (a->size == a->room) TRY(array_reserve(a, a->room + a->room / 2 + 16));
    a->data[a->size++] = value;
    return 0;
}

// ---- Growth ----
// Room for `need` entries, at least half as much again when it must grow, so that n appends
// cost O(n). 0 or OUT_OF_MEMORY; unchanged on failure.
template<class T> [[nodiscard]] int array_grow(Array<T> *a, int64_t need)
{
    if (need <= a->room) return 0;
    const int64_t ample = a->room + a->room / 2 + 16;
    return array_reserve(a, need > ample ? need : ample);
}
// Size at least n; new entries are `value`.
template<class T> [[nodiscard]] int array_extend(Array<T> *a, int64_t n, T value)
{
    if (n <= a->size) return 0;
    TRY(array_grow(a, n));
    while (a->size < n) array_push(a, value);
    return 0;
}
// Appends n entries of source, or n times `value` if source is null; there must be room.
template<class T> void array_append_n(Array<T> *a, const T *source, int64_t n, T value)
{
    assert(a->size + n <= a->room);
    if (source && n > 0) {
        memcpy(a->data + a->size, source, static_cast<size_t>(n) * sizeof(T));
        a->size += n;
    } else {
        for (int64_t k = 0; k < n; k++) array_push(a, value);
    }
}
