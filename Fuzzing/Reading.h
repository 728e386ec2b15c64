#pragma once

#include "Base/Text.h"
#include "Fuzzing/Expect.h"
#include "TamberlinKit/Readers/Readers.h"

// What every reader keeps to: it gives text and notes in UTF-8, or refuses with a sentence.
template <typename Reader> int readAny(Reader reader, std::string_view file)
{
    try {
        const Tamberlin::Extracted extracted = reader(file, "name", std::stop_token());
        expect(extracted.name == "name", "A document has another name.");
        for (const auto& segment : extracted.segments)
            expect(Base::validUtf8(segment.text) == segment.text, "A text isn't UTF-8.");
        for (const auto& note : extracted.notes)
            expect(!note.empty() && Base::validUtf8(note) == note, "A note is empty or isn't UTF-8.");
    } catch (const Tamberlin::ReadError& error) {
        const std::string_view sentence = error.what();
        expect(!sentence.empty() && Base::validUtf8(sentence) == sentence, "A refusal has no sentence.");
    }
    return 0;
}
