/// \file
/// Statuses, the two ways to hear of a failure, and the environment that operations take their scratch memory from.
#ifndef JORM_CXX_ENVIRONMENT_HPP
#define JORM_CXX_ENVIRONMENT_HPP

#include "jorm/types.h"
#include "jorm/xe.h"

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <optional>
#include <utility>

namespace jorm {
inline namespace cxx {

/// How a call ended; anything but `ok` leaves the destination as it was.
enum class status : int64_t {
    ok = JORM_OK,
    invalid = JORM_EINVAL,      ///< operands that disagree, a bad view or argument
    empty = JORM_EEMPTY,        ///< no pixel is left in the region
    unsupported = JORM_ENOTSUP, ///< element types or channels that the operation does not serve
    no_memory = JORM_ENOMEM,    ///< no scratch memory
    not_implemented = JORM_ENOTIMP,
};

/// A short English text for a status.
inline const char *text(status s) { return jorm_status_str(static_cast<int64_t>(s)); }

/// What a failing call throws.
class error : public std::exception {
public:
    explicit error(jorm::status s) noexcept : status_(s) {}
    jorm::status status() const noexcept { return status_; }
    const char *what() const noexcept override { return text(status_); }

private:
    jorm::status status_;
};

namespace detail {
[[noreturn]] inline void fail(jorm::status s) {
#if defined(__cpp_exceptions)
    throw error(s);
#else
    static_cast<void>(s);
    std::abort();
#endif
}
} // namespace detail

/// What a call returns under the policy `nothrow`: a status, and when that is `ok` the value.
///
///     if (auto m = jorm::mean<jorm::nothrow>(picture)) use((*m)[0]);
///     else complain(text(m.status()));
template <class T = void> class [[nodiscard]] result {
public:
    result(jorm::status s, T &&value) : status_(s) {
        if (s == jorm::status::ok) value_.emplace(std::move(value));
    }
    explicit operator bool() const noexcept { return status_ == jorm::status::ok; }
    jorm::status status() const noexcept { return status_; }
    T &operator*() &noexcept { return *value_; }
    T &&operator*() &&noexcept { return std::move(*value_); }
    T *operator->() noexcept { return &*value_; }
    /// The value; throws `error` when there is none.
    T &value() & { return check(), *value_; }
    T value() && { return check(), std::move(*value_); }

private:
    void check() const {
        if (!*this) detail::fail(status_);
    }
    jorm::status status_;
    std::optional<T> value_;
};

template <> class [[nodiscard]] result<void> {
public:
    explicit result(jorm::status s) noexcept : status_(s) {}
    explicit operator bool() const noexcept { return status_ == jorm::status::ok; }
    jorm::status status() const noexcept { return status_; }
    /// Throws `error` unless the call went well.
    void value() const {
        if (!*this) detail::fail(status_);
    }

private:
    jorm::status status_;
};

/// Policies: the first template argument of everything that can fail. `add(...)` throws, `add<jorm::nothrow>(...)`
/// returns a `result`. In a program without exceptions a failure under `throwing` aborts.
struct throwing {
    template <class T> using type = T;
    static void report(int64_t s) {
        if (s < 0) [[unlikely]]
            detail::fail(static_cast<status>(s));
    }
    // Makes a value of the arguments and lets `fill` complete it, which returns a status.
    template <class T, class Fill, class... Initial> static T make(Fill fill, const Initial &...initial) {
        T value{initial...};
        report(fill(value));
        return value;
    }
};
struct nothrow {
    template <class T> using type = result<T>;
    static result<> report(int64_t s) { return result<>(static_cast<status>(s < 0 ? s : 0)); }
    template <class T, class Fill, class... Initial> static result<T> make(Fill fill, const Initial &...initial) {
        T value{initial...};
        const int64_t s = fill(value);
        return result<T>(static_cast<status>(s < 0 ? s : 0), std::move(value));
    }
};
/// What a function returns under a policy.
template <class Errors, class T = void> using returns = typename Errors::template type<T>;

/// An execution environment: the scratch memory of operations, one thread at a time. It keeps what it once obtained, so
/// that after the first calls of a kind no operation touches the heap.
///
/// Operations without `.env` use the one of their thread. Vectorised kernels: the first environment of a program turns
/// them on, unless the host has decided before: by setting `_G_jorm_use_simd` to 0 or 1, or by an operation of the C
/// interface, which turns an undecided switch off. A host may set the switch at any later time.
class environment {
public:
    /// \param block size in which memory is obtained, 0 for the library's choice
    explicit environment(size_t block = 0) noexcept {
        int32_t undecided = __atomic_load_n(&_G_jorm_use_simd, __ATOMIC_RELAXED);
        if (undecided < 0)
            __atomic_compare_exchange_n(&_G_jorm_use_simd, &undecided, 1, false, __ATOMIC_RELAXED, __ATOMIC_RELAXED);
        JormXEinit2(&record_, nullptr, block);
    }
    ~environment() { JormXEfini(&record_); }
    environment(const environment &) = delete;
    environment &operator=(const environment &) = delete;

    /// For calls of the C interface.
    jorm_xe *get() noexcept { return &record_; }

    /// The environment of the calling thread, made when it is first asked for and ended with the thread.
    static environment &local() noexcept {
        thread_local environment mine;
        return mine;
    }

private:
    jorm_xe record_ = {};
};

namespace detail {
inline jorm_xe *xe(environment *given) noexcept { return (given ? *given : environment::local()).get(); }
} // namespace detail

} // namespace cxx
} // namespace jorm

#endif
