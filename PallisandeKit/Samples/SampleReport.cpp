#include "PallisandeKit/Samples/SampleReport.h"

#include <fmt/format.h>

#include <numeric>

namespace Pallisande {

// clang-format off
const std::string_view sampleTradosReport = R"xml(<task name="analyse">
  <taskInfo taskId="6f0b9c1e-52c8-4f0e-9a51-0c6a3a2f7d10" runAt="09/03/2026 10:12:44" runTime="6 seconds">
    <project name="Nordwind annual report" number="0d6d0c3a-9f0e-4a5b-8a36-3c1f8a7e21b4" />
    <language lcid="2057" name="English (United Kingdom)" />
    <tm name="Nordwind de-en.sdltm" />
    <settings reportInternalFuzzyLeverage="yes" reportLockedSegmentsSeparately="yes" reportCrossFileRepetitions="yes" minimumMatchScore="70" searchMode="bestWins" />
  </taskInfo>
  <file name="Geschäftsbericht Teil 2.docx.sdlxliff" guid="00000000-0000-0000-0000-000000000001">
    <analyse>
      <perfect segments="0" words="0" characters="0" placeables="0" tags="0" />
      <inContextExact segments="15" words="214" characters="1219" placeables="3" tags="5" />
      <exact segments="27" words="388" characters="2211" placeables="6" tags="9" />
      <locked segments="6" words="96" characters="547" placeables="1" tags="2" />
      <crossFileRepeated segments="0" words="0" characters="0" placeables="0" tags="0" />
      <repeated segments="12" words="173" characters="986" placeables="2" tags="4" />
      <total segments="302" words="4298" characters="24493" placeables="66" tags="102" />
      <new segments="176" words="2465" characters="14050" placeables="41" tags="61" />
      <fuzzy min="50" max="74" segments="10" words="142" characters="809" placeables="2" tags="3" />
      <fuzzy min="75" max="84" segments="16" words="231" characters="1316" placeables="3" tags="5" />
      <fuzzy min="85" max="94" segments="21" words="304" characters="1732" placeables="5" tags="7" />
      <fuzzy min="95" max="99" segments="13" words="187" characters="1065" placeables="3" tags="4" />
      <internalFuzzy min="50" max="74" segments="0" words="0" characters="0" placeables="0" tags="0" />
      <internalFuzzy min="75" max="84" segments="4" words="58" characters="330" placeables="0" tags="1" />
      <internalFuzzy min="85" max="94" segments="2" words="40" characters="228" placeables="0" tags="1" />
      <internalFuzzy min="95" max="99" segments="0" words="0" characters="0" placeables="0" tags="0" />
    </analyse>
  </file>
  <file name="Anhang Tabellen.xlsx.sdlxliff" guid="00000000-0000-0000-0000-000000000002">
    <analyse>
      <perfect segments="0" words="0" characters="0" placeables="0" tags="0" />
      <inContextExact segments="0" words="0" characters="0" placeables="0" tags="0" />
      <exact segments="4" words="61" characters="347" placeables="1" tags="1" />
      <locked segments="0" words="0" characters="0" placeables="0" tags="0" />
      <crossFileRepeated segments="5" words="77" characters="438" placeables="1" tags="1" />
      <repeated segments="9" words="129" characters="735" placeables="2" tags="3" />
      <total segments="53" words="780" characters="4443" placeables="10" tags="16" />
      <new segments="29" words="410" characters="2337" placeables="6" tags="10" />
      <fuzzy min="50" max="74" segments="2" words="33" characters="188" placeables="0" tags="0" />
      <fuzzy min="75" max="84" segments="0" words="0" characters="0" placeables="0" tags="0" />
      <fuzzy min="85" max="94" segments="3" words="52" characters="296" placeables="0" tags="1" />
      <fuzzy min="95" max="99" segments="1" words="18" characters="102" placeables="0" tags="0" />
      <internalFuzzy min="50" max="74" segments="0" words="0" characters="0" placeables="0" tags="0" />
      <internalFuzzy min="75" max="84" segments="0" words="0" characters="0" placeables="0" tags="0" />
      <internalFuzzy min="85" max="94" segments="0" words="0" characters="0" placeables="0" tags="0" />
      <internalFuzzy min="95" max="99" segments="0" words="0" characters="0" placeables="0" tags="0" />
    </analyse>
  </file>
  <batchTotal>
    <analyse>
      <perfect segments="0" words="0" characters="0" placeables="0" tags="0" />
      <inContextExact segments="15" words="214" characters="1219" placeables="3" tags="5" />
      <exact segments="31" words="449" characters="2558" placeables="7" tags="10" />
      <locked segments="6" words="96" characters="547" placeables="1" tags="2" />
      <crossFileRepeated segments="5" words="77" characters="438" placeables="1" tags="1" />
      <repeated segments="21" words="302" characters="1721" placeables="4" tags="7" />
      <total segments="355" words="5078" characters="28936" placeables="76" tags="118" />
      <new segments="205" words="2875" characters="16387" placeables="47" tags="71" />
      <fuzzy min="50" max="74" segments="12" words="175" characters="997" placeables="2" tags="3" />
      <fuzzy min="75" max="84" segments="16" words="231" characters="1316" placeables="3" tags="5" />
      <fuzzy min="85" max="94" segments="24" words="356" characters="2028" placeables="5" tags="8" />
      <fuzzy min="95" max="99" segments="14" words="205" characters="1167" placeables="3" tags="4" />
      <internalFuzzy min="50" max="74" segments="0" words="0" characters="0" placeables="0" tags="0" />
      <internalFuzzy min="75" max="84" segments="4" words="58" characters="330" placeables="0" tags="1" />
      <internalFuzzy min="85" max="94" segments="2" words="40" characters="228" placeables="0" tags="1" />
      <internalFuzzy min="95" max="99" segments="0" words="0" characters="0" placeables="0" tags="0" />
    </analyse>
  </batchTotal>
</task>
)xml";
// clang-format on


namespace {

// Every band's counts follow from its words.
std::int64_t segments(std::int64_t words) { return (words + 13) / 14; }
std::int64_t characters(std::int64_t words) { return words * 6; }

std::int64_t total(const SampleFile& file)
{
    return std::accumulate(file.words.begin(), file.words.end(), file.misstated);
}

} // namespace

std::string samplePhraseCSV(const std::vector<SampleFile>& files)
{
    constexpr std::array bands { "Context TM", "Repetitions", "100% Matches", "95% - 99%", "85% - 94%",
        "75% - 84%", "50% - 74%", "No Match" };
    std::string text = ";;";
    for (const auto* band : bands)
        text += fmt::format(";{};;;", band);
    text += ";Total\nFile;Tagging Errors;Chars/Word";
    for (std::size_t band = 0; band < bands.size(); ++band)
        text += ";Segments;Words;Placeables;Percent";
    text += ";Segments;Words;Placeables;Characters\n";
    for (const auto& file : files) {
        text += fmt::format("\"{}\";0;6", file.name);
        for (std::size_t band = 1; band < file.words.size(); ++band)
            text += fmt::format(";{};{};0;0", segments(file.words[band]), file.words[band]);
        text += fmt::format(";{};{};0;{}\n", segments(total(file)), total(file), characters(total(file)));
    }
    return text;
}

std::string samplePhraseJSON(const SampleFile& file)
{
    constexpr std::array keys { "", "contextMatch", "repetitions", "match100", "match95", "match85",
        "match75", "match50", "match0" };
    const auto counts = [](std::int64_t words) {
        return fmt::format(R"({{"segments": {}, "words": {}, "characters": {}}})", segments(words), words,
            characters(words));
    };
    std::string data;
    for (std::size_t band = 1; band < keys.size(); ++band)
        data += fmt::format("\"{}\": {}, ", keys[band], counts(file.words[band]));
    return fmt::format(R"({{"projectName": "{}", "analyseLanguageParts": [{{"sourceLang": "en_us", )"
                       R"("targetLang": "de_de", "data": {{{}"total": {}}}, "jobs": [{{"fileName": "{}"}}]}}]}})",
        file.name, data, counts(total(file)), file.name);
}

std::string sampleMemoQReport(const std::vector<SampleFile>& files)
{
    constexpr std::array bands { "X-translated", "101%", "Repetitions", "100%", "95% - 99%", "85% - 94%",
        "75% - 84%", "50% - 74%", "No match", "Fragments", "Total" };
    std::string text = ";";
    for (const auto* band : bands)
        text += fmt::format(";{};;", band);
    text += ";\nFile;Char/Word";
    for (std::size_t band = 0; band < bands.size(); ++band)
        text += ";Segments;Words;Characters";
    text += ";\n";
    for (const auto& file : files) {
        text += fmt::format("\"[ger] C:\\Projects\\{}\";6", file.name);
        const auto add = [&](std::int64_t words) {
            text += fmt::format(";{};{};{}", segments(words), words, characters(words));
        };
        for (const auto words : file.words)
            add(words);
        add(0);
        add(total(file));
        text += ";\n";
    }
    return text;
}

std::string sampleTable(const std::vector<SampleFile>& files)
{
    std::string text = "Document;ICE;Rep;100;95-99;85-94;75-84;50-74;New;Sum\n";
    for (const auto& file : files) {
        text += file.name;
        for (std::size_t band = 1; band < file.words.size(); ++band)
            text += fmt::format(";{}", file.words[band]);
        text += fmt::format(";{}\n", total(file));
    }
    return text;
}

} // namespace Pallisande
