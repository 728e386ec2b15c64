#include "Base/Decimal.h"
#include "Fuzzing/Expect.h"

using Base::Decimal;

// Two numbers on two lines: what is read is written back, and arithmetic keeps its laws wherever nothing is
// rounded.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const auto text = textOf(data, size);
    const auto line = text.find('\n');
    const auto left = Decimal::parse(text.substr(0, line));
    if (!left)
        return 0;
    expect(Decimal::parse(left->toString()) == left, "A number isn't read back as it was.");
    expect(left->rounded(left->places()) == *left, "Rounding to the places that are there changes a number.");

    const auto right = line == text.npos ? std::nullopt : Decimal::parse(text.substr(line + 1));
    if (!right)
        return 0;
    expect(*left + *right == *right + *left && *left * *right == *right * *left, "Order matters.");
    expect((*left <=> *right) == (0 <=> (*right <=> *left)), "Two numbers are each before the other.");
    expect(*left != *right || left->hash() == right->hash(), "Equal numbers have different hashes.");
    expect((*left - *right).isZero() == (*left == *right), "A difference is zero, or isn't, wrongly.");
    if (!right->isZero())
        static_cast<void>(left->dividedBy(*right, static_cast<int>(size % 40)));
    return 0;
}
