#pragma once

#include "PallisandeKit/Library/LibrarySession.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Pallisande {

// A library to look around in: four invented clients and their jobs in every lane and status, reports of
// every source, invoices in every state. It is made by the operations that make any other, one after the
// other through the months before `moment`, so that what is due or overdue is so today.
Library sampleLibrary(const Base::Moment& moment);

// The same in a new folder, with the copies of its reports, its PDFs and its backups. Gives what was done, a
// sentence each. Refused with a SessionError when the folder already holds something.
std::vector<std::string> makeSampleFolder(
    const std::filesystem::path& folder, const SessionServices& services);

// Marks every document as a sample: nobody shall take it for an invoice.
class SampleRenderer final : public DocumentRenderer {
public:
    explicit SampleRenderer(DocumentRenderer& renderer)
        : m_renderer(renderer)
    {
    }

    std::string render(const Tamberlin::PrintedDocument& document) override;

private:
    DocumentRenderer& m_renderer;
};

} // namespace Pallisande
