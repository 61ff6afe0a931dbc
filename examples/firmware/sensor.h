#pragma once

#include <stdint.h>

namespace sensor {

struct Reading {
    int32_t value;
    uint16_t channel;
};

// Hundredths of a degree from a raw conversion result, or from a whole reading.
int32_t scale(uint16_t raw);
int32_t scale(const Reading& reading);

template <typename Value, int Size>
class History {
public:
    void push(Value value) {
        values_[next_] = value;
        next_ = (next_ + 1) % Size;
    }
    Value average() const;

private:
    Value values_[Size];
    int next_;
};

} // namespace sensor
