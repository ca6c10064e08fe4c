// How deep a routine that can be re-entered stands inside itself. Each
// routine that counts its nesting owns one Depth; a Level holds one step of
// it for the length of a scope, also when a failure leaves the scope.
#pragma once

#include <climits>

namespace kelpa {

class Depth {
public:
    constexpr Depth() = default;
    explicit constexpr Depth(int limit) : limit_(limit) {}

    class [[nodiscard]] Level {
    public:
        explicit Level(Depth& d) : d_(d) { ++d_.current_; }
        ~Level() { --d_.current_; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        Depth& d_;
    };

    Level enter() { return Level(*this); }

    int current() const { return current_; }
    int limit() const { return limit_; }
    // One more level would pass the limit.
    bool full() const { return current_ >= limit_; }

private:
    int limit_ = INT_MAX;
    int current_ = 0;
};

}  // namespace kelpa
