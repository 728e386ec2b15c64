#pragma once

#include "PallisandeKit/Analyses/Analysis.h"
#include "PallisandeKit/Analyses/ColumnMapping.h"

#include <QString>

#include <span>
#include <vector>

namespace Pallisande {

QString title(CountMetric metric); // "Words"
QString shortHead(MatchBand band); // "95–99", where nine columns stand side by side.

const BandMap<std::int64_t>& figuresOf(const BandCounts& counts, CountMetric metric);
std::optional<std::int64_t> statedIn(const AnalysisRow& row, CountMetric metric); // The report's total.

// What tells the files apart: their paths without the folders that all of them are in.
std::vector<QString> fileTitles(std::span<const AnalysisRow> rows);

} // namespace Pallisande
