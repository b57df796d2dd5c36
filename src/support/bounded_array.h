// Arrays that keep the lower bounds the model uses (stations 1..n, rows 1..10, vertices 0..n), so
// formulas index them as written and no index is shifted by hand.
//
//   array1<float> residuals(1, n);          residuals(1) is the first entry
//   array2<float> channels(1, 10, 1, n);    channels(6, i) is row 6 at station i
//
// Storage of array2 is row by row, the columns of one row contiguous (stations within a row), so
// row(r) hands a plain pointer to a whole row for the tight loops. Index checks are on in Debug and
// sanitizer builds (TRENSIL_BOUNDS_CHECK) and free in Release.
#pragma once

#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

namespace trensil {

namespace detail {
[[noreturn]] inline void bounds_failure(const char* what, long index, long lo, long hi) {
    std::fprintf(stderr, "bounded array: %s index %ld outside %ld..%ld\n", what, index, lo, hi);
    std::abort();
}
}  // namespace detail

#ifdef TRENSIL_BOUNDS_CHECK
#define TRENSIL_CHECK_INDEX(what, i, lo, hi) \
    ((i) < (lo) || (i) > (hi) ? detail::bounds_failure(what, (i), (lo), (hi)) : (void)0)
#else
#define TRENSIL_CHECK_INDEX(what, i, lo, hi) ((void)0)
#endif

// Storage of the arrays: small blocks from the usual allocator; blocks of several megabytes (the
// station arrays of a long line: 2.4 million stations take 300 MB) aligned to 2 MB and offered to
// the kernel as huge pages, which makes first touching them about ten times faster.
template <class T>
struct array_allocator {
    using value_type = T;
    static constexpr std::size_t huge_page = std::size_t{2} << 20;
    static constexpr std::size_t large_block = std::size_t{4} << 20;

    array_allocator() = default;
    template <class U>
    array_allocator(const array_allocator<U>&) noexcept {}

    T* allocate(std::size_t n) {
        const std::size_t bytes = n * sizeof(T);
        if (bytes < large_block) return std::allocator<T>{}.allocate(n);
        const std::size_t rounded = (bytes + huge_page - 1) / huge_page * huge_page;
        void* p = std::aligned_alloc(huge_page, rounded);
        if (!p) throw std::bad_alloc();
        ::madvise(p, rounded, MADV_HUGEPAGE);  // a hint: refused, the pages are ordinary
        return static_cast<T*>(p);
    }
    void deallocate(T* p, std::size_t n) noexcept {
        if (n * sizeof(T) < large_block) {
            std::allocator<T>{}.deallocate(p, n);
        } else {
            std::free(p);
        }
    }
    template <class U>
    bool operator==(const array_allocator<U>&) const noexcept {
        return true;
    }
};

template <class T>
using array_storage = std::vector<T, array_allocator<T>>;

template <class T>
class array1 {
public:
    array1() = default;
    array1(int lo, int hi) { resize(lo, hi); }
    array1(int lo, int hi, const T& fill) { resize(lo, hi, fill); }

    // Re-dimensions to lo..hi; contents are not kept: every entry is value-initialised, or
    // `fill`.
    void resize(int lo, int hi) {
        lo_ = lo;
        hi_ = std::max(hi, lo - 1);
        data_.clear();
        data_.resize(static_cast<std::size_t>(hi_ - lo_ + 1));
    }
    void resize(int lo, int hi, const T& fill) {
        lo_ = lo;
        hi_ = std::max(hi, lo - 1);
        data_.assign(static_cast<std::size_t>(hi_ - lo_ + 1), fill);
    }
    // Re-dimensions the upper bound, keeping the entries that remain in range.
    void resize_keep(int hi, const T& fill = T{}) {
        hi_ = std::max(hi, lo_ - 1);
        data_.resize(static_cast<std::size_t>(hi_ - lo_ + 1), fill);
    }
    void clear() { resize(lo_, lo_ - 1); }
    void fill(const T& value) { std::fill(data_.begin(), data_.end(), value); }

    T& operator()(int i) {
        TRENSIL_CHECK_INDEX("array1", i, lo_, hi_);
        return data_[static_cast<std::size_t>(i - lo_)];
    }
    const T& operator()(int i) const {
        TRENSIL_CHECK_INDEX("array1", i, lo_, hi_);
        return data_[static_cast<std::size_t>(i - lo_)];
    }
    T& operator[](int i) { return (*this)(i); }
    const T& operator[](int i) const { return (*this)(i); }

    int lo() const { return lo_; }
    int hi() const { return hi_; }
    int size() const { return hi_ - lo_ + 1; }
    bool empty() const { return data_.empty(); }
    T* data() { return data_.data(); }
    const T* data() const { return data_.data(); }
    auto begin() { return data_.begin(); }
    auto end() { return data_.end(); }
    auto begin() const { return data_.begin(); }
    auto end() const { return data_.end(); }
    bool operator==(const array1& o) const = default;

private:
    int lo_ = 1;
    int hi_ = 0;
    array_storage<T> data_;
};

template <class T>
class array2 {
public:
    array2() = default;
    array2(int row_lo, int row_hi, int col_lo, int col_hi, const T& fill = T{}) {
        resize(row_lo, row_hi, col_lo, col_hi, fill);
    }

    // Re-dimensions; contents are not kept.
    void resize(int row_lo, int row_hi, int col_lo, int col_hi, const T& fill = T{}) {
        row_lo_ = row_lo;
        row_hi_ = std::max(row_hi, row_lo - 1);
        col_lo_ = col_lo;
        col_hi_ = std::max(col_hi, col_lo - 1);
        data_.assign(static_cast<std::size_t>(rows()) * static_cast<std::size_t>(cols()), fill);
    }
    // Re-dimensions the column bound, keeping what stays in range (a "preserve" re-dimension).
    void resize_cols_keep(int col_hi, const T& fill = T{}) {
        array2 grown(row_lo_, row_hi_, col_lo_, col_hi, fill);
        const int keep_hi = std::min(col_hi_, grown.col_hi_);
        for (int r = row_lo_; r <= row_hi_; ++r)
            for (int c = col_lo_; c <= keep_hi; ++c) grown(r, c) = (*this)(r, c);
        *this = std::move(grown);
    }
    void clear() { resize(row_lo_, row_lo_ - 1, col_lo_, col_lo_ - 1); }
    void fill(const T& value) { std::fill(data_.begin(), data_.end(), value); }

    T& operator()(int r, int c) {
        TRENSIL_CHECK_INDEX("array2 row", r, row_lo_, row_hi_);
        TRENSIL_CHECK_INDEX("array2 column", c, col_lo_, col_hi_);
        return data_[offset(r, c)];
    }
    const T& operator()(int r, int c) const {
        TRENSIL_CHECK_INDEX("array2 row", r, row_lo_, row_hi_);
        TRENSIL_CHECK_INDEX("array2 column", c, col_lo_, col_hi_);
        return data_[offset(r, c)];
    }
    // Pointer to the element (r, col_lo()): the whole row is contiguous from there.
    T* row(int r) {
        TRENSIL_CHECK_INDEX("array2 row", r, row_lo_, row_hi_);
        return data_.data() + offset(r, col_lo_);
    }
    const T* row(int r) const {
        TRENSIL_CHECK_INDEX("array2 row", r, row_lo_, row_hi_);
        return data_.data() + offset(r, col_lo_);
    }

    int row_lo() const { return row_lo_; }
    int row_hi() const { return row_hi_; }
    int col_lo() const { return col_lo_; }
    int col_hi() const { return col_hi_; }
    int rows() const { return row_hi_ - row_lo_ + 1; }
    int cols() const { return col_hi_ - col_lo_ + 1; }
    bool empty() const { return data_.empty(); }
    bool operator==(const array2& o) const = default;

private:
    std::size_t offset(int r, int c) const {
        return static_cast<std::size_t>(r - row_lo_) * static_cast<std::size_t>(cols()) +
               static_cast<std::size_t>(c - col_lo_);
    }
    int row_lo_ = 1;
    int row_hi_ = 0;
    int col_lo_ = 1;
    int col_hi_ = 0;
    array_storage<T> data_;
};

}  // namespace trensil
