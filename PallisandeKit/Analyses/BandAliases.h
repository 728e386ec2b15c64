#pragma once

#include "PallisandeKit/Analyses/BandLabel.h"

// Labels of real exports that BandLabel doesn't know. Its own answer always goes first; these functions are
// what the readers of reports ask.
namespace Pallisande::BandAliases {

BandLabel label(std::string_view label);
BandLabel::Metric metric(std::string_view header);
BandLabel::Split split(std::string_view header);

} // namespace Pallisande::BandAliases
