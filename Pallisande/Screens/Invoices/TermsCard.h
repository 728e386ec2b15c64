#pragma once

#include "Base/Uuid.h"
#include "Pallisande/Widgets/Card.h"
#include "PallisandeKit/Records/Invoice.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Pallisande {

class AppModel;
class DateEdit;
class DecimalEdit;
class FormLayout;
class LockedText;
class NoteLine;

// A card whose rows are fields on a draft, and text on what is issued or where a credit note takes them over
// from its invoice.
class DocumentCard : public Card {
    Q_OBJECT

public:
    void show(const Base::Uuid& id);
    void refresh();

protected:
    DocumentCard(const QString& heading, AppModel& model, QWidget* parent);

    enum class Scope { invoices, allDocuments }; // On the drafts of which it is a field.
    using Text = std::function<std::string&(Invoice&)>;
    void addText(const QString& label, Scope scope, Text text);
    void addArea(const QString& label, Scope scope, Text text);
    void addRow(const QString& label, QWidget* field, Scope scope, std::function<void(const Invoice&)> fill,
        std::function<std::string(const Invoice&)> words);
    void hideLastWhenLocked(); // Another row’s text says it too.
    void edit(const QString& label, const std::function<void(Invoice&)>& change);
    virtual void showMore(const Invoice&) { }

    AppModel& m_model;
    std::optional<Base::Uuid> m_id;

private:
    struct Row {
        QWidget* field;
        LockedText* text;
        Scope scope;
        std::function<void(const Invoice&)> fill;
        std::function<std::string(const Invoice&)> words; // What the text says; empty hides it.
    };

    FormLayout *m_texts, *m_fields;
    std::vector<Row> m_rows;
};

// Days, tax, terms and notes.
class TermsCard : public DocumentCard {
    Q_OBJECT

public:
    TermsCard(AppModel& model, QWidget* parent);

private:
    DateEdit* addDay(const QString& label, std::optional<Base::Instant> Invoice::*day);
    void showMore(const Invoice& invoice) override;

    DateEdit* m_due;
};

// The client as printed on this document.
class PartyCard : public DocumentCard {
    Q_OBJECT

public:
    PartyCard(AppModel& model, QWidget* parent);

private:
    void showMore(const Invoice& invoice) override;

    NoteLine* m_outdated;
};

} // namespace Pallisande
