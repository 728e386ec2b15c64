#pragma once

#include "Base/ChildProcess.h"
#include "Base/Json.h"
#include "PallisandeKit/Library/LibraryStore.h"
#include "Tests/Support/Folders.h"
#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Test {

using Words = std::vector<std::string>;

// What a run of the program left behind.
struct Run {
    int code = -1; // Or -1 when it didn't come to an end of its own.
    std::string output;
    std::string errors;
};

inline Run runProgram(const std::filesystem::path& program, const Words& arguments, std::string_view input)
{
    auto result = Base::runChild(program, arguments, input);
    const bool hasExited = result.end == Base::ChildResult::End::exited;
    return { hasExited ? result.code : -1, std::move(result.output), std::move(result.errors) };
}

// Runs of blanks as one, so that tables can be compared without their padding.
inline std::string squeezed(std::string_view text)
{
    std::string shown;
    for (const char c : text) {
        if (c != ' ' || !shown.ends_with(' '))
            shown += c;
    }
    return shown;
}

// The real program, with a library folder that is gone with the object. It runs where numbers are written
// with a comma and days begin an hour or two before those of the stored times.
class Program {
    TemporaryFolder m_place;

public:
    std::filesystem::path folder = m_place / "library";
    std::filesystem::path program = PALLISANDE_PROGRAMS "/pallisande-cli";
    Words variables { "LC_ALL=de_DE.UTF-8", "LOCPATH=" PALLISANDE_LOCALES, "TZ=Europe/Berlin" };

    std::string document() const { return folder / Pallisande::LibraryStore::documentName; }
    std::string place(std::string_view name) const { return m_place / name; } // Beside the library.

    Run run(const Words& arguments, std::string_view input = "") const
    {
        Words words { "-i", "PALLISANDE_LIBRARY=" + folder.string() };
        words.insert(words.end(), variables.begin(), variables.end());
        words.push_back(program.string());
        words.insert(words.end(), arguments.begin(), arguments.end());
        return runProgram("/usr/bin/env", words, input);
    }

    // What it prints when all goes well, which it does without a remark.
    std::string output(const Words& arguments, std::string_view input = "") const
    {
        const auto [code, output, errors] = run(arguments, input);
        EXPECT_EQ(code, 0) << testing::PrintToString(arguments);
        EXPECT_EQ(errors, "") << testing::PrintToString(arguments);
        return output;
    }

    // What it remarks while it does what it was asked.
    std::string remark(const Words& arguments, std::string_view input = "") const
    {
        const auto [code, output, errors] = run(arguments, input);
        EXPECT_EQ(code, 0) << testing::PrintToString(arguments) << errors;
        return errors.substr(0, errors.find_last_not_of('\n') + 1);
    }

    // The sentence of a refusal, which changes nothing in the library folder and prints nothing else.
    std::string refusal(const Words& arguments, std::string_view input = "") const
    {
        const auto before = contents();
        const auto [code, output, errors] = run(arguments, input);
        EXPECT_EQ(code, 1) << testing::PrintToString(arguments);
        EXPECT_EQ(output, "") << testing::PrintToString(arguments);
        EXPECT_TRUE(contents() == before) << testing::PrintToString(arguments);
        EXPECT_TRUE(errors.ends_with('\n')) << testing::PrintToString(arguments);
        return errors.substr(0, errors.size() - 1);
    }

    // A record as scripts get it, in the one form in which it is stored.
    template <typename Record> Record record(Words arguments, std::string_view input = "") const
    {
        arguments.insert(arguments.begin(), "--json");
        const auto text = output(arguments, input);
        try {
            auto record = Base::fromJson<Record>(text, {});
            EXPECT_EQ(Base::toJson(record), text);
            return record;
        } catch (const Base::DecodingError& error) {
            ADD_FAILURE() << testing::PrintToString(arguments) << error.what() << text;
            return {};
        }
    }

    Pallisande::Library library() const
    {
        return Pallisande::LibraryStore::decode(fileText(document()), moment());
    }
    void store(const Pallisande::Library& library) const
    {
        const Pallisande::LibraryStore store(folder);
        store.save(library);
        store.dailyBackup(library, { Base::Instant::now(), calendar() }); // As a run of the program would.
    }

    // Every file of the library folder but the log of issuing, which notes attempts too.
    std::map<std::string, std::string> contents() const
    {
        std::map<std::string, std::string> files;
        if (!std::filesystem::is_directory(folder))
            return files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            if (entry.is_regular_file() && entry.path().filename() != "Issue Log.jsonl")
                files[entry.path().string()] = fileText(entry.path());
        }
        return files;
    }
};

inline void expectShows(std::string_view text, const Words& lines)
{
    const auto shown = squeezed(text);
    for (const auto& line : lines)
        EXPECT_NE(("\n" + shown).find("\n" + line + "\n"), std::string::npos) << line << "\nin\n" << text;
}

} // namespace Test
