// Reads and writes JSON texts of growing size, clean and faulty ones. The peer is the same text a quarter as long: a
// ratio of about 1 in the time for one character shows that nothing grows with the square of the text.
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>

#include "support/JSON.h"
#include "support/Numbers.h"

namespace {

using namespace kestrum;

constexpr int kRuns = 3;
constexpr std::size_t kSmall = 500'000;
constexpr std::size_t kLarge = 4 * kSmall;

/// The shortest of some runs, in ns of processor time for one character.
double PerCharacter(std::size_t characters, const std::function<void()>& work) {
    double shortest = 1e18;
    for (int run = 0; run < kRuns; ++run) {
        const std::clock_t begin = std::clock();
        work();
        shortest = std::min(shortest, 1e9 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
    }
    return shortest / static_cast<double>(characters);
}

struct Shape {
    const char* name;
    String head;
    /// One piece of the text; the number makes keys different.
    std::function<String(std::size_t)> piece;
    String tail;

    String Text(std::size_t size) const {
        String text = head;
        for (std::size_t i = 0; text.size() < size; ++i) text += piece(i);
        return text + tail;
    }
};

String Number(std::size_t i) {
    return ToText(static_cast<std::int64_t>(i));
}

const Shape kShapes[] = {
    {"index of slides", u"[", [](std::size_t i) { return u"{\"id\":" + Number(i) + u",\"title\":\"A wave\\n\"},"; },
     u"1]"},
    {"one object, many keys", u"{", [](std::size_t i) { return u"k" + Number(i) + u":true,"; }, u"z:1}"},
    {"one long text", u"['", [](std::size_t) { return u"講座 / "; }, u"']"},
    {"one long number", u"[", [](std::size_t) { return u"98765"; }, u"]"},
    {"comments", u"[", [](std::size_t) { return u"/* a */ // b\n"; }, u"1]"},
    {"a fault in each member", u"{", [](std::size_t i) { return u"k" + Number(i) + u":t,"; }, u"z:1}"},
    {"broken words, nested", u"{", [](std::size_t i) { return u"k" + Number(i) + u":[[[nul]]],"; }, u"z:1}"},
    {"openings only", u"", [](std::size_t) { return u"["; }, u""},
};

void Measure(const Shape& shape) {
    double read[2], write[2];
    const std::size_t sizes[] = {kSmall, kLarge};
    for (int i = 0; i < 2; ++i) {
        const String text = shape.Text(sizes[i]);
        support::State state;
        Value value;
        read[i] = PerCharacter(text.size(), [&] { value = JSON::ParseJson(state, text); });
        write[i] = PerCharacter(text.size(), [&] { JSON::ToJsonText(value); });
    }
    std::printf("%-24s read %7.1f ns, ratio %4.2f   write %7.1f ns, ratio %4.2f\n", shape.name, read[1],
                read[1] / read[0], write[1], write[0] > 0 ? write[1] / write[0] : 1.0);
}

}  // namespace

int main() {
    std::printf("Per character of %zu; the ratio to a text of %zu:\n", kLarge, kSmall);
    for (const Shape& shape : kShapes) Measure(shape);
    return 0;
}
