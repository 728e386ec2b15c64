#pragma once

#include "Base/Fields.h"
#include "TamberlinKit/Quotes/Paper.h"

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace Tamberlin {

// A label and its value in the block at the right of the address: "Date", "2 Feb 2026".
struct PrintedFact {
    std::string label;
    std::string value;

    bool operator==(const PrintedFact&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("label", &PrintedFact::label),
            Base::field("value", &PrintedFact::value),
        };
    }
};
static_assert(Base::listsEveryMember<PrintedFact>);

// One row of the table; cells that stay empty are empty texts.
struct PrintedRow {
    std::string title;
    std::string detail; // A smaller second line.
    std::string quantity;
    std::string unit;
    std::string price;
    std::string amount;
    std::string sumSoFar; // What is carried forward when the page ends below this row.

    bool operator==(const PrintedRow&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("title", &PrintedRow::title),
            Base::field("detail", &PrintedRow::detail),
            Base::field("quantity", &PrintedRow::quantity),
            Base::field("unit", &PrintedRow::unit),
            Base::field("price", &PrintedRow::price),
            Base::field("amount", &PrintedRow::amount),
            Base::field("sumSoFar", &PrintedRow::sumSoFar),
        };
    }
};
static_assert(Base::listsEveryMember<PrintedRow>);

// The heads of the table's columns.
struct PrintedHeads {
    std::string description;
    std::string quantity;
    std::string unit;
    std::string price;
    std::string amount;

    bool operator==(const PrintedHeads&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("description", &PrintedHeads::description),
            Base::field("quantity", &PrintedHeads::quantity),
            Base::field("unit", &PrintedHeads::unit),
            Base::field("price", &PrintedHeads::price),
            Base::field("amount", &PrintedHeads::amount),
        };
    }
};
static_assert(Base::listsEveryMember<PrintedHeads>);

// One line below the table; the last is the total and stands out.
struct PrintedTotal {
    std::string label;
    std::string amount;

    bool operator==(const PrintedTotal&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("label", &PrintedTotal::label),
            Base::field("amount", &PrintedTotal::amount),
        };
    }
};
static_assert(Base::listsEveryMember<PrintedTotal>);

// What stands where on a quote, invoice or credit note: every text worded and every figure formatted, so that
// drawing it needs to know nothing of languages, money or records.
struct PrintedDocument {
    std::string language = "en"; // BCP 47; chooses the face for Chinese, Japanese and Korean characters.
    Paper paper = Paper::a4;
    std::string metadataTitle; // "Invoice INV-2026-007"
    std::optional<std::string> logo; // A PNG or JPEG image in Base64.
    std::string senderName;
    std::vector<std::string> senderDetails; // Lines below the name.
    std::string senderLine; // The return address in one line above the recipient.
    std::vector<std::string> recipient; // Lines of the address block.
    std::vector<PrintedFact> facts;
    std::string title; // "Invoice"
    std::string subtitle; // "Corrects invoice …", or the mark of a draft; may be empty.
    PrintedHeads heads;
    std::vector<PrintedRow> rows;
    std::string carriedForward; // Labels for tables of several pages.
    std::string broughtForward;
    std::vector<PrintedTotal> totals;
    std::vector<std::string> remarks; // Paragraphs below the totals; a text may hold line breaks.
    std::string footerLeft;
    std::string footerRight; // Before the page number; may be empty.
    std::string pageLabel = "Page {n} of {m}";

    bool operator==(const PrintedDocument&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("language", &PrintedDocument::language),
            Base::field("paper", &PrintedDocument::paper),
            Base::field("metadataTitle", &PrintedDocument::metadataTitle),
            Base::field("logo", &PrintedDocument::logo),
            Base::field("senderName", &PrintedDocument::senderName),
            Base::field("senderDetails", &PrintedDocument::senderDetails),
            Base::field("senderLine", &PrintedDocument::senderLine),
            Base::field("recipient", &PrintedDocument::recipient),
            Base::field("facts", &PrintedDocument::facts),
            Base::field("title", &PrintedDocument::title),
            Base::field("subtitle", &PrintedDocument::subtitle),
            Base::field("heads", &PrintedDocument::heads),
            Base::field("rows", &PrintedDocument::rows),
            Base::field("carriedForward", &PrintedDocument::carriedForward),
            Base::field("broughtForward", &PrintedDocument::broughtForward),
            Base::field("totals", &PrintedDocument::totals),
            Base::field("remarks", &PrintedDocument::remarks),
            Base::field("footerLeft", &PrintedDocument::footerLeft),
            Base::field("footerRight", &PrintedDocument::footerRight),
            Base::field("pageLabel", &PrintedDocument::pageLabel),
        };
    }
};
static_assert(Base::listsEveryMember<PrintedDocument>);

} // namespace Tamberlin
