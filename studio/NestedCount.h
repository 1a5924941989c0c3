// A count of nested activities (a project being read, a write under way) that cannot be left
// raised.
#pragma once

namespace zerbin::studio {

// Counts one level of a nested activity for as long as it lives, also when an exception ends
// it: a count left raised would silence the project's notifications for good.
class Nested {
public:
    explicit Nested(int& count) : count_(count) { ++count_; }
    ~Nested() { --count_; }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;

private:
    int& count_;
};

}  // namespace zerbin::studio
