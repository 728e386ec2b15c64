#include "Base/Json.h"
#include "Fuzzing/Imported.h"

using namespace Pallisande;

// A mapping, a line "===", and the table that it is used for, as if it had been made for its headings.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    constexpr std::string_view divider = "\n===\n";
    const auto text = textOf(data, size);
    const auto at = text.find(divider);
    if (at == text.npos)
        return 0;
    const auto table = text.substr(at + divider.size());
    try {
        auto mapping = Base::fromJson<ColumnMapping>(text.substr(0, at), {});
        expect(Base::fromJson<ColumnMapping>(Base::toJson(mapping), {}) == mapping,
            "A mapping isn't read back as it was.");
        const auto guess = Importer::guess(table, "report.csv", mapping.reading).guess;
        mapping.fingerprint = guess.fingerprint;
        mapping.columns.resize(guess.columns.size());
        expectSound(Importer::importMapped(table, "report.csv", mapping, Base::Instant()));
    } catch (const Base::DecodingError& error) {
        expect(*error.what() != 0, "A refusal has no reason.");
    } catch (const ImportError& error) {
        expect(*error.what() != 0, "A refusal has no sentence.");
    }
    return 0;
}
