#pragma once

namespace Pallisande {

// Gives the widgets that are painted whole their roles for screen readers. Their constructors call it.
void installAccessibility();

} // namespace Pallisande
