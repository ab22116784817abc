// A value of a JSON tree: one of the kinds below. A container inside a value is shared, everything else is copied.
#pragma once

#include <cstdint>
#include <memory>
#include <variant>
#include <vector>

#include "host/IEventLoop.h"
#include "support/Decimal.h"

namespace kestrum {

class Collection;
class Dictionary;
struct Array;

struct Empty {
    bool operator==(const Empty&) const = default;
};
struct Null {
    bool operator==(const Null&) const = default;
};
/// An amount with four decimal places, in ten-thousandths.
struct Currency {
    std::int64_t tenThousandths = 0;
    bool operator==(const Currency&) const = default;
};
/// An object of a type that the writer does not know.
struct OtherObject {
    bool operator==(const OtherObject&) const = default;
};

using Value = std::variant<Empty, Null, bool, std::uint8_t, std::int16_t, std::int32_t, float, double, Currency,
                           Decimal, String, host::DateTime, std::shared_ptr<Dictionary>, std::shared_ptr<Collection>,
                           std::shared_ptr<Array>, OtherObject>;

/// An array of one or more dimensions, the last one running fastest.
struct Array {
    struct Bounds {
        std::int32_t lower = 0;
        std::int32_t upper = -1;
    };
    std::vector<Bounds> dimensions;
    std::vector<Value> elements;
};

}  // namespace kestrum
