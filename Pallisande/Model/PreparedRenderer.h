#pragma once

#include "PallisandeKit/Library/DocumentRenderer.h"

#include <optional>
#include <string>
#include <utility>

namespace Pallisande {

// Hands the session a PDF that was drawn off the main thread before it is asked for, once.
class PreparedRenderer final : public DocumentRenderer {
public:
    explicit PreparedRenderer(DocumentRenderer* renderer)
        : m_renderer(renderer)
    {
    }

    void prepare(std::string pdf) { m_pdf = std::move(pdf); }
    void refuse(std::string reason) { m_refusal = std::move(reason); }
    void forget()
    {
        m_pdf.reset();
        m_refusal.reset();
    }

    std::string render(const Tamberlin::PrintedDocument& document) override
    {
        if (m_refusal)
            throw RenderError(*std::exchange(m_refusal, std::nullopt));
        if (m_pdf)
            return *std::exchange(m_pdf, std::nullopt);
        if (!m_renderer)
            throw RenderError("there is no program to draw it");
        return m_renderer->render(document);
    }

private:
    DocumentRenderer* m_renderer;
    std::optional<std::string> m_pdf, m_refusal;
};

} // namespace Pallisande
