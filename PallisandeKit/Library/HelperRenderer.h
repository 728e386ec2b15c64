#pragma once

#include "PallisandeKit/Library/DocumentRenderer.h"

#include <filesystem>

namespace Pallisande {

// Renders through the program pallisande-print, so that whoever uses it needs nothing of the drawing.
class HelperRenderer final : public DocumentRenderer {
public:
    explicit HelperRenderer(std::filesystem::path program);

    // The helper beside the running program.
    static HelperRenderer besideThisProgram();

    std::string render(const Tamberlin::PrintedDocument& document) override;

private:
    std::filesystem::path m_program;
};

} // namespace Pallisande
