"""What Python takes for work that Pallisande does too; `library-benchmark` runs this and compares.

    python_references.py price          one job: nine bands, a surcharge, one extra, tax, in exact decimals
    python_references.py json FILE      the document of a library, read into dictionaries and lists
    python_references.py xml FILE       a report, gone through element by element

Prints the median processor time of one price, or of one reading, in milliseconds.
"""

import json
import statistics
import sys
import time
import xml.etree.ElementTree as ElementTree
from decimal import ROUND_HALF_UP, Decimal

BANDS = ("perfect", "context", "repetitions", "exact", "fuzzy95", "fuzzy85", "fuzzy75", "fuzzy50", "noMatch")
CENT = Decimal("0.01")
HUNDRED = Decimal(100)


def rounded(amount):
    return amount.quantize(CENT, rounding=ROUND_HALF_UP)


def price(words, weights, rate, surcharge_percent, extras, minimum, tax_percent):
    lines = []
    weighted = Decimal(0)
    for band in BANDS:
        line = words[band] * weights[band] / HUNDRED
        lines.append((band, words[band], weights[band], line))
        weighted += line
    translation = rounded(weighted * rate)
    surcharge = rounded(translation * surcharge_percent / HUNDRED)
    amounts = [rounded(quantity * unit_price) for quantity, unit_price in extras]
    subtotal = translation + surcharge + sum(amounts)
    net = subtotal + max(Decimal(0), minimum - subtotal)
    tax = rounded(net * tax_percent / HUNDRED)
    return lines, translation, surcharge, amounts, subtotal, tax, net + tax


def price_many(count=20_000):
    words = {band: 317 * (place + 1) for place, band in enumerate(BANDS)}
    weights = dict(zip(BANDS, map(Decimal, (10, 20, 25, 30, 60, 70, 80, 100, 100))))
    extras = [(Decimal("2.5"), Decimal("45.50"))]
    rate, surcharge, minimum, tax = Decimal("0.125"), Decimal(25), Decimal(30), Decimal(20)
    for _ in range(count):
        price(words, weights, rate, surcharge, extras, minimum, tax)
    return count


def read_json(path):
    with open(path, encoding="utf-8") as file:
        json.load(file)
    return 1


def read_xml(path):
    for _, element in ElementTree.iterparse(path):
        element.clear()
    return 1


def main(arguments):
    work = {"price": price_many, "json": read_json, "xml": read_xml}[arguments[0]]
    times = []
    for _ in range(5):
        begin = time.process_time()
        done = work(*arguments[1:])
        times.append((time.process_time() - begin) / done)
    print(statistics.median(times) * 1000)


main(sys.argv[1:])
