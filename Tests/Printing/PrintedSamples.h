#pragma once

#include "TamberlinKit/Quotes/PrintedDocument.h"

#include <string>

// An invoice with this many rows, of one to three lines each.
inline Tamberlin::PrintedDocument invoiceOf(int rowCount)
{
    Tamberlin::PrintedDocument document {
        .metadataTitle = "Invoice INV-2026-007",
        .senderName = "Maria Harrow",
        .senderDetails = { "14 Mill Lane", "Bath BA1 2QF" },
        .senderLine = "Maria Harrow · 14 Mill Lane · Bath BA1 2QF",
        .recipient = { "Nordlicht Verlag GmbH", "Speicherstraße 12", "20457 Hamburg" },
        .facts = { { "Invoice", "INV-2026-007" }, { "Date", "2 February 2026" } },
        .title = "Invoice",
        .heads = { "Description", "Quantity", "Unit", "Price", "Amount (EUR)" },
        .carriedForward = "Carried forward",
        .broughtForward = "Brought forward",
        .totals = { { "Subtotal", "513.60" }, { "VAT 21%", "107.86" }, { "Total EUR", "621.46" } },
        .remarks = { "Payable within 30 days.", "IBAN GB33 BUKB 2020 1555 5555 55\nBIC BUKBGB22" },
        .footerLeft = "Maria Harrow · Tax no. GB 123 4567 89",
        .footerRight = "INV-2026-007",
    };
    for (int index = 1; index <= rowCount; ++index) {
        const auto number = std::to_string(index);
        Tamberlin::PrintedRow row { .title = "Chapter " + number,
            .quantity = "1,000",
            .unit = "words",
            .price = "0.12",
            .amount = "120." + number,
            .sumSoFar = "sum " + number };
        if (index % 2 == 0)
            row.detail = "en → de, detail " + number;
        if (index % 5 == 0)
            row.title
                += ": maintenance, cleaning and the replacement of worn parts by authorised personnel only";
        document.rows.push_back(std::move(row));
    }
    return document;
}
