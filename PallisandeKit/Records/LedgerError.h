#pragma once

#include "PallisandeKit/Records/Job.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace Pallisande {

// A ledger operation was refused; the library is as it was. `what()` is the sentence that the user reads.
class LedgerError : public std::runtime_error {
public:
    enum class Case {
        locked,
        jobOnInvoice,
        clientInUse,
        numberTaken,
        invalidStatus,
        alreadyCredited,
        invalid,
        notDraft,
        noLines,
        notFound,
        mixedClients,
        nothingToCredit,
    };

    static LedgerError locked(std::string_view number);
    static LedgerError jobOnInvoice(std::string_view number);
    static LedgerError clientInUse(std::string_view name);
    static LedgerError numberTaken(std::string_view number);
    static LedgerError invalidStatus(JobStatus from, JobStatus to);
    static LedgerError alreadyCredited(std::string_view number);
    static LedgerError notDraft() { return { Case::notDraft, "Only a draft can be changed." }; }
    static LedgerError noLines() { return { Case::noLines, "Add at least one line before issuing." }; }
    static LedgerError notFound() { return { Case::notFound, "That item no longer exists." }; }
    static LedgerError mixedClients()
    {
        return { Case::mixedClients, "An invoice holds jobs for one client." };
    }
    static LedgerError nothingToCredit()
    {
        return { Case::nothingToCredit, "Nothing is left to credit on this invoice." };
    }

    static LedgerError totalBelowZero()
    {
        return { Case::invalid, "An invoice’s total can’t be below zero; make a credit note instead." };
    }
    static LedgerError creditNotBelowZero()
    {
        return { Case::invalid, "A credit note’s total must be below zero." };
    }
    static LedgerError creditAboveRest(std::string_view number);
    static LedgerError creditDraftOpen(std::string_view number);
    static LedgerError paymentOnDraft() { return { Case::invalid, "Payments go on issued invoices." }; }
    static LedgerError paymentNotPositive() { return { Case::invalid, "A payment must be more than zero." }; }
    static LedgerError numberBelowOne() { return { Case::invalid, "Numbers start at 1." }; }
    static LedgerError numberTooLarge() { return { Case::invalid, "Numbers end at 999,999,999." }; }
    static LedgerError seriesContinues()
    {
        return { Case::invalid,
            "Numbers were already issued in this series, so it continues from the last one." };
    }
    // A refusal that has only a sentence.
    static LedgerError invalid(const std::string& sentence) { return { Case::invalid, sentence }; }

    Case kind() const { return m_kind; }

private:
    LedgerError(Case kind, const std::string& sentence)
        : std::runtime_error(sentence)
        , m_kind(kind)
    {
    }

    Case m_kind;
};

} // namespace Pallisande
