#include "Printing/DocumentLayout.h"

#include "Printing/ItemTable.h"
#include "Printing/LogoImage.h"
#include "Printing/PageFlow.h"
#include "Printing/TypeSetter.h"

#include <algorithm>
#include <string_view>

namespace Pallisande {

namespace {

using Side = TypeStyle::Side;

// Sender, facts and totals share one axis, this far from the right edge.
constexpr double sideWidth = millimetres(67);
constexpr double windowWidth = millimetres(85);
constexpr double windowHeight = millimetres(45);
constexpr double returnAddressHeight = millimetres(5);
constexpr double aboveReturnRule = millimetres(0.4);
constexpr double remarksWidth = millimetres(125); // Longer lines are hard to follow.
constexpr double hairline = points(0.35);
constexpr double aboveRule = millimetres(0.8); // The one that closes the table.
constexpr double belowRule = millimetres(1.6);
constexpr double betweenTotals = millimetres(0.7);

constexpr TypeStyle senderNameStyle { .size = 10, .strong = true };
constexpr TypeStyle senderStyle { .size = 8, .colour = mutedInk };
constexpr TypeStyle returnAddressStyle { .size = 6.5, .colour = mutedInk };
constexpr TypeStyle recipientStyle { .size = 10 };
constexpr TypeStyle factStyle { .size = 9 };
constexpr TypeStyle factLabelStyle { .size = 9, .colour = mutedInk };
constexpr TypeStyle titleStyle { .size = 20, .strong = true };
constexpr TypeStyle subtitleStyle { .size = 9, .colour = mutedInk };
constexpr TypeStyle totalLabelStyle { .size = 9 };
constexpr TypeStyle totalStyle { .size = 9, .side = Side::right };
constexpr TypeStyle grandTotalLabelStyle { .size = 11, .strong = true };
constexpr TypeStyle grandTotalStyle { .size = 11, .strong = true, .side = Side::right };
constexpr TypeStyle remarkStyle { .size = 9 };
constexpr TypeStyle footerStyle { .size = 7.5, .colour = mutedInk };
constexpr TypeStyle pageNumberStyle { .size = 7.5, .colour = mutedInk, .side = Side::right };

std::string replaced(std::string text, std::string_view insert, std::string_view value)
{
    if (const auto at = text.find(insert); at != std::string::npos)
        text.replace(at, insert.size(), value);
    return text;
}

class Composer {
public:
    explicit Composer(const Tamberlin::PrintedDocument& document)
        : m_document(document)
        , m_sheet(sheetOf(document.paper))
        , m_setter(document.language)
        // The footer’s height is needed before the number of pages is known; no document has a million.
        , m_footerHeight(std::min(footer("000000", "000000").height(), (m_sheet.bottom - m_sheet.top) / 4))
        , m_flow(m_sheet, m_sheet.bottom - m_footerHeight - millimetres(6))
    {
    }

    DocumentLayout compose()
    {
        DocumentLayout layout { .sheet = m_sheet };
        if (m_document.logo)
            layout.logo = placeLogo();
        Spot spot = placeLetterhead();
        const auto totals = setTotals();
        const ItemTable table(m_document, m_setter, m_sheet);
        spot = placeTitle(spot, table.firstHeight(m_flow, totalsHeight(totals)));
        spot = table.place(m_flow, spot, totalsHeight(totals));
        spot = placeTotals(totals, spot);
        placeRemarks(spot);
        placeFooters();
        layout.pages = std::move(m_flow.pages());
        layout.missingCharacters = m_setter.missingCharacters().toStdString();
        return layout;
    }

private:
    QImage placeLogo()
    {
        QImage logo = readLogo(*m_document.logo);
        m_flow.pages()[0].logo = QRectF({ m_sheet.left, m_sheet.top }, logoSize(logo));
        return logo;
    }

    // Logo, sender, address window and facts; gives the spot below all of them.
    Spot placeLetterhead()
    {
        Bands sender;
        sender.append(m_setter.set(m_document.senderName, senderNameStyle, sideWidth), axis());
        for (const auto& line : m_document.senderDetails)
            sender.append(m_setter.set(line, senderStyle, sideWidth), axis());
        const Spot senderEnd = m_flow.place(sender, { 0, m_sheet.top });

        const Spot address { 0, m_sheet.windowTop + returnAddressHeight + millimetres(2) };
        const Bands recipient = setLines(m_document.recipient, recipientStyle, m_sheet.left, windowWidth);
        Spot addressEnd { 0, m_sheet.top };
        if (const auto& logo = m_flow.pages()[0].logo)
            addressEnd.y = logo->bottom();
        if (!recipient.empty())
            addressEnd = std::max(placeAddress(recipient, address), { 0, m_sheet.windowTop + windowHeight });

        const Bands facts = setFacts();
        Spot factsEnd = senderEnd;
        if (!facts.empty()) {
            factsEnd = std::max(address, { senderEnd.page, senderEnd.y + millimetres(5) });
            if (!recipient.empty() && factsEnd == address) // The first lines share their baseline.
                factsEnd.y += recipient[0].above - facts[0].above;
            factsEnd = m_flow.place(facts, factsEnd);
        }
        return std::max({ senderEnd, addressEnd, factsEnd });
    }

    Spot placeAddress(const Bands& recipient, const Spot& address)
    {
        Bands returnAddress;
        returnAddress.append(
            m_setter.set(m_document.senderLine, returnAddressStyle, windowWidth), m_sheet.left);
        if (returnAddress.empty())
            return m_flow.place(recipient, address);
        const double above = std::max(0.0, returnAddressHeight - aboveReturnRule - returnAddress.height());
        Spot spot = m_flow.place(returnAddress, { 0, m_sheet.windowTop + above });
        spot.y += aboveReturnRule;
        m_flow.rule(spot, m_sheet.left, m_sheet.left + windowWidth, hairline, hairlineInk);
        spot.y += address.y - m_sheet.windowTop - returnAddressHeight;
        return m_flow.place(recipient, spot);
    }

    Bands setFacts()
    {
        double labelWidth = 0;
        std::vector<SetText> labels;
        for (const auto& fact : m_document.facts) {
            labels.push_back(m_setter.set(fact.label, factLabelStyle));
            labelWidth = std::max(labelWidth, labels.back().naturalWidth() + 1);
        }
        labelWidth = std::min(labelWidth, sideWidth * 0.5);
        const double valueLeft = labelWidth + millimetres(4);
        Bands facts;
        for (std::size_t index = 0; index < labels.size(); ++index) {
            const auto first = facts.size();
            labels[index].breakAt(labelWidth);
            facts.add(labels[index], axis(), first);
            facts.add(m_setter.set(m_document.facts[index].value, factStyle, sideWidth - valueLeft),
                axis() + valueLeft, first);
        }
        return facts;
    }

    // `following` is the height of what must stay with the title.
    Spot placeTitle(Spot spot, double following)
    {
        const double width = m_sheet.right - m_sheet.left;
        Bands title;
        title.append(m_setter.set(m_document.title, titleStyle, width), m_sheet.left);
        title.append(m_setter.set(m_document.subtitle, subtitleStyle, width), m_sheet.left);
        const double gap = millimetres(6);
        const double needed = title.height() + gap + following;
        spot.y += millimetres(8);
        if (needed > m_flow.room(spot) && needed <= m_flow.wholeRoom())
            spot = m_flow.nextPage(spot);
        spot = m_flow.place(title, spot);
        spot.y += gap;
        return spot;
    }

    std::vector<Bands> setTotals()
    {
        double labelWidth = 0;
        double amountWidth = 0;
        std::vector<std::pair<SetText, SetText>> lines;
        for (const auto& total : m_document.totals) {
            const bool stands = &total == &m_document.totals.back();
            lines.emplace_back(m_setter.set(total.label, stands ? grandTotalLabelStyle : totalLabelStyle),
                m_setter.set(total.amount, stands ? grandTotalStyle : totalStyle));
            labelWidth = std::max(labelWidth, lines.back().first.naturalWidth() + 1);
            amountWidth = std::max(amountWidth, lines.back().second.naturalWidth() + 1);
        }
        const double gap = millimetres(5);
        const double most = (m_sheet.right - m_sheet.left) * 0.75;
        m_totalsWidth = std::clamp(labelWidth + gap + amountWidth, sideWidth, most);
        amountWidth = std::min(amountWidth, m_totalsWidth * 0.6);
        const double left = m_sheet.right - m_totalsWidth;
        std::vector<Bands> totals;
        for (auto& [label, amount] : lines) {
            label.breakAt(m_totalsWidth - gap - amountWidth);
            amount.breakAt(amountWidth);
            Bands& bands = totals.emplace_back();
            bands.add(label, left);
            bands.add(amount, m_sheet.right - amountWidth);
        }
        return totals;
    }

    static double totalsHeight(const std::vector<Bands>& totals)
    {
        double height = aboveRule + belowRule;
        for (const auto& bands : totals)
            height += bands.height() + betweenTotals;
        return height + (totals.size() > 1 ? 2 * betweenTotals : 0);
    }

    Spot placeTotals(const std::vector<Bands>& totals, Spot spot)
    {
        spot.y += aboveRule;
        m_flow.rule(spot, m_sheet.left, m_sheet.right, hairline, hairlineInk);
        spot.y += belowRule;
        for (const auto& bands : totals) {
            if (&bands == &totals.back() && totals.size() > 1) {
                spot.y += betweenTotals;
                m_flow.rule(spot, m_sheet.right - m_totalsWidth, m_sheet.right, points(0.5), ink);
                spot.y += betweenTotals;
            }
            spot = m_flow.place(bands, spot);
            spot.y += betweenTotals;
        }
        return spot;
    }

    void placeRemarks(Spot spot)
    {
        double gap = millimetres(9);
        for (const auto& text : m_document.remarks) {
            Bands remark;
            remark.append(m_setter.set(text, remarkStyle, remarksWidth), m_sheet.left);
            if (remark.empty())
                continue;
            if (!m_flow.isFresh(spot))
                spot.y += gap;
            spot = m_flow.placeParagraph(remark, spot);
            gap = millimetres(2.5);
        }
    }

    Bands footer(std::string_view page, std::string_view pages)
    {
        const auto number = replaced(replaced(m_document.pageLabel, "{n}", page), "{m}", pages);
        const auto& before = m_document.footerRight;
        auto right = m_setter.set(before.empty() ? number : before + " · " + number, pageNumberStyle);
        const double width = m_sheet.right - m_sheet.left;
        const double rightWidth = std::min(right.naturalWidth() + 1, width * 0.6);
        right.breakAt(rightWidth);
        Bands bands;
        bands.add(m_setter.set(m_document.footerLeft, footerStyle, width - rightWidth - millimetres(6)),
            m_sheet.left);
        bands.add(right, m_sheet.right - rightWidth);
        return bands;
    }

    void placeFooters()
    {
        const auto count = std::to_string(m_flow.pages().size());
        for (std::size_t page = 0; page < m_flow.pages().size(); ++page) {
            const Bands bands = footer(std::to_string(page + 1), count);
            Spot spot { page, m_sheet.bottom - m_footerHeight };
            // A footer that would take up the page is cut.
            for (std::size_t index = 0; index < bands.size(); ++index) {
                if (spot.y + bands[index].height() <= m_sheet.bottom + 1)
                    m_flow.put(bands[index], spot);
                spot.y += bands[index].height();
            }
        }
    }

    Bands setLines(const std::vector<std::string>& lines, const TypeStyle& style, double left, double width)
    {
        Bands bands;
        for (const auto& line : lines)
            bands.append(m_setter.set(line, style, width), left);
        return bands;
    }

    double axis() const { return m_sheet.right - sideWidth; }

    const Tamberlin::PrintedDocument& m_document;
    PaperSheet m_sheet;
    TypeSetter m_setter;
    double m_footerHeight;
    PageFlow m_flow;
    double m_totalsWidth = 0;
};

} // namespace

DocumentLayout layOut(const Tamberlin::PrintedDocument& document) { return Composer(document).compose(); }

} // namespace Pallisande
