"""Recomputes with Python's own decimal arithmetic what TestDecimal.cpp has written to a file.

Every line holds five words: an operation, its two operands, a whole number, and the result to be checked. Prints the
first lines that differ and fails if there are any.
"""

import sys
from decimal import MAX_EMAX, MIN_EMIN, ROUND_DOWN, ROUND_HALF_UP, Context, Decimal, Inexact, InvalidOperation

DIGITS = 38
SMALLEST = -128
LARGEST = Decimal((0, (9,) * DIGITS, 127))

# 2,000 digits hold every sum and product exactly; the trap would tell. Half up is away from zero in this module.
EXACT = Context(prec=2000, Emin=MIN_EMIN, Emax=MAX_EMAX, traps=[InvalidOperation, Inexact])
ROUNDING = Context(prec=2000, Emin=MIN_EMIN, Emax=MAX_EMAX, rounding=ROUND_HALF_UP, traps=[InvalidOperation])
# A quotient cut off far below the last digit that anyone asks for rounds as the endless one does.
CUTTING = Context(prec=700, Emin=MIN_EMIN, Emax=MAX_EMAX, rounding=ROUND_DOWN, traps=[InvalidOperation])


def held(value, coarsest=SMALLEST):
    """The number that stands for the exact `value`."""
    if not value:
        return value
    position = max(value.adjusted() - (DIGITS - 1), SMALLEST, coarsest)
    if value.as_tuple().exponent < position:
        value = value.quantize(Decimal((0, (1,), position)), context=ROUNDING)
    return min(max(value, LARGEST.copy_negate()), LARGEST)  # A plain minus would round to 28 digits.


def plain(value):
    return format(value.normalize(EXACT), "f") if value else "0"


def padded(value, places):
    text = plain(value)
    units, _, fraction = text.partition(".")
    return text if len(fraction) >= places else units + "." + fraction.ljust(places, "0")


def whole(value):
    if value != value.to_integral_value(context=ROUNDING) or not -(2**63) <= value < 2**63:
        return "none"
    return str(int(value))


def order(left, right):
    return "<" if left < right else ">" if left > right else "="


def parsed(value):
    return plain(value) if held(value) == value else "none"


OPERATIONS = {
    "add": lambda left, right, number: plain(held(EXACT.add(left, right))),
    "subtract": lambda left, right, number: plain(held(EXACT.subtract(left, right))),
    "multiply": lambda left, right, number: plain(held(EXACT.multiply(left, right))),
    "divide": lambda left, right, number: plain(held(CUTTING.divide(left, right), -number)),
    "round": lambda left, right, number: plain(held(left, -number)),
    "shift": lambda left, right, number: plain(held(left.scaleb(number, context=EXACT))),
    "compare": lambda left, right, number: order(left, right),
    "parse": lambda left, right, number: parsed(left),
    "pad": lambda left, right, number: padded(left, number),
    "places": lambda left, right, number: str(len(plain(left).partition(".")[2])),
    "whole": lambda left, right, number: whole(left),
}


def main():
    differences = 0
    lines = 0
    with open(sys.argv[1], encoding="ascii") as file:
        for lines, line in enumerate(file, 1):
            operation, left, right, number, result = line.split()
            expected = OPERATIONS[operation](Decimal(left), Decimal(right), int(number))
            if result != expected:
                differences += 1
                if differences <= 10:
                    print(f"Line {lines}: {operation} {left} {right} {number}\n  is   {result}\n  not  {expected}")
    print(f"{lines} operations, {differences} differences")
    return 0 if lines > 0 and differences == 0 else 1


sys.exit(main())
