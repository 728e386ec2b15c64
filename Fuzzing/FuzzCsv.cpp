#include "Fuzzing/Imported.h"

using namespace Pallisande;

// A report as a table: of a known tool, or read by the guess at its columns. No cell may be lost on the way.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const auto text = textOf(data, size);
    const DelimitedTable table(text);
    for (std::size_t row = 0; row < table.size(); ++row) {
        const auto cells = table[row];
        std::size_t held = 0;
        for (std::size_t column = 0; column < cells.size(); ++column)
            held += cells[column].size();
        expect(held <= cells.text().size(), "Cells hold more than their line.");
        expect(cells[cells.size()].empty(), "A line goes on behind its end.");
    }
    const auto result = Importer::import(text, "report.csv", Base::Instant());
    expectSound(result);
    if (const auto* const needed = std::get_if<NeedsMapping>(&result))
        expectSound(Importer::importMapped(text, "report.csv", needed->table.guess, Base::Instant()));
    return 0;
}
